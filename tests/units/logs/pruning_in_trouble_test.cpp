#include <sys/file.h>
#include <sys/syscall.h>

#include <cerrno>

#include "support/failing_sync.h"
#include "units/logs/pruning_region.h"

// A system that refuses, or fails, in the middle of a pruning.

namespace {

/// Whether a second name for a file is given, and answered as if it had been there before.
bool links_are_answered_twice = false;

}  // namespace

/// Takes the place of the C library's, which knows no network that loses an answer.
extern "C" int link(const char* from, const char* to) noexcept {
    const auto result = static_cast<int>(syscall(SYS_link, from, to));
    if (!links_are_answered_twice) return result;
    errno = EEXIST;
    return -1;
}

namespace {

class PruningInTrouble : public Pruning {
  protected:
    static std::string stopped(const std::string& at) {
        return "ERROR: Pruning stopped, because it could not " + at +
               ".  No record is lost.  As long as the pruning token stands, log writers go on into "
               "companion files, which no query reads; a pruning that ends well brings their "
               "records back.";
    }
    static void prune_with(int good) {
        good_syncs = good;
        prune();
    }
};

TEST_F(PruningInTrouble, WithoutATokenNothingIsDone) {
    write_log(0, old(1));
    fs::create_directory(pruning_token_path());
    EXPECT_GRIPE(prune(), "Could not create needed pruning token");
    EXPECT_EQ(file_text(log_file_path(0)), old(1));
}

TEST_F(PruningInTrouble, WithoutAScratchFileNothingIsDone) {
    write_log(0, old(1));
    fs::create_directory(pruning_scratch_path());
    write_file(pruning_scratch_path() + "/inside", "");
    EXPECT_GRIPE(prune(), "Could not create needed pruning file");
    EXPECT_EQ(file_text(log_file_path(0)), old(1));
    EXPECT_TRUE(fs::exists(pruning_token_path()));
}

TEST_F(PruningInTrouble, TwoDoNotPruneAtOnce) {
    write_log(0, old(1));
    const int other = open(pruning_token_path().c_str(), O_WRONLY | O_CREAT, 0666);
    ASSERT_EQ(flock(other, LOCK_EX), 0);
    EXPECT_GRIPE(prune(),
                 "ERROR: The logs of the Gatewarden Region (east) are being pruned by another "
                 "process.  Nothing was changed.");
    close(other);
    EXPECT_EQ(file_text(log_file_path(0)), old(1));
    EXPECT_EQ(said_by_pruning(), result(1, 1));
}

TEST_F(PruningInTrouble, AFileThatIsTooLargeLeavesTheLogAsItWas) {
    std::string log = old(1);
    for (int i = 0; i < 200; ++i) log += fresh(i % 100);
    write_log(0, log);
    EXPECT_GRIPE(
        {
            limit_file_size(4096);
            prune();
        },
        stopped("write (" + pruning_scratch_path() + "): File too large"));
    EXPECT_EQ(file_text(log_file_path(0)), log);
    EXPECT_FALSE(fs::exists(pruning_scratch_path()));
    EXPECT_EQ(said_by_pruning(), result(1, 201));
}

TEST_F(PruningInTrouble, ASecondNameWhoseAnswerGetsLostGoesAllTheSame) {
    write_log(3, old(1) + fresh(1));
    links_are_answered_twice = true;
    EXPECT_EQ(said_by_pruning(), result(1, 2));
    links_are_answered_twice = false;
    EXPECT_EQ(all_files(), (Files{{"logging_3.txt", fresh(1)}}));
}

// What may not have reached the disk does not take the place of what has.
TEST_F(PruningInTrouble, ANewTextThatTheDiskDoesNotKeepDoesNotBecomeTheLog) {
    write_log(0, old(1) + fresh(1));
    EXPECT_GRIPE(prune_with(0),
                 stopped("write (" + pruning_scratch_path() + "): Input/output error"));
    EXPECT_EQ(file_text(log_file_path(0)), old(1) + fresh(1));
    EXPECT_GRIPE(prune_with(1), stopped("replace (" + log_file_path(0) + "): Input/output error"));
    EXPECT_EQ(file_text(log_file_path(0)), fresh(1));
    EXPECT_EQ(said_by_pruning(), result(0, 1));
    EXPECT_EQ(all_files(), (Files{{"logging_0.txt", fresh(1)}}));
}

TEST_F(PruningInTrouble, ALeftOverStaysUntilTheDiskKeepsItsRecords) {
    constexpr char FAILED[] = "): Input/output error";
    const std::string all = fresh(1) + fresh(2) + fresh(3);
    const std::string log = log_file_path(0);
    write_log(0, fresh(1));
    write_file(pruning_companion_path(0), fresh(2) + fresh(3));
    struct stat status = {};
    ASSERT_EQ(stat(log.c_str(), &status), 0);
    const std::string left_over =
        pruning_companion_path(0) + ".to_add_0_" + std::to_string(status.st_dev) + "_" +
        std::to_string(status.st_ino) + "_" + std::to_string(fresh(1).size());
    const std::string directory = "bring to the disk the directory of (";
    EXPECT_GRIPE(prune_with(0), stopped(directory + left_over + FAILED));
    EXPECT_EQ(file_text(log), fresh(1));
    EXPECT_GRIPE(prune_with(0), stopped("write (" + log + FAILED));
    EXPECT_GRIPE(prune_with(1), stopped(directory + log + FAILED));
    EXPECT_EQ(file_text(left_over), fresh(2) + fresh(3));
    EXPECT_GRIPE(prune_with(2), stopped(directory + pruning_companion_path(0) + FAILED));
    EXPECT_EQ(file_text(log), all);
    EXPECT_EQ(said_by_pruning(), result(0, 3));
    EXPECT_EQ(all_files(), (Files{{"logging_0.txt", all}}));
}

}  // namespace
