#include <dlfcn.h>
#include <sys/file.h>

#include <cerrno>
#include <functional>

#include "support/failing_sync.h"
#include "units/logs/pruning_region.h"

// A system that refuses, or fails, in the middle of a pruning.

namespace {

/// What happens before a call: 0, or the errno with which it fails instead. They are told the path,
/// where there is one; of two the second.
struct Calls {
    std::function<int(const std::string& path)> link;
    std::function<int(const std::string& path)> unlink;
    std::function<int(const std::string& path)> rename;
    std::function<int(const std::string& path)> lstat;
    std::function<int()> fallocate;
};
Calls& before() {
    static Calls calls;
    return calls;
}

/// The result of a call that fails with `error`, or is made.
template <typename Call>
int unless(int error, const Call& call) {
    if (error == 0) return static_cast<int>(call());
    errno = error;
    return -1;
}

int asked(const std::function<int(const std::string&)>& what, const char* path) {
    return what ? what(path) : 0;
}

}  // namespace

// These take the place of the C library's.
extern "C" {

int link(const char* from, const char* to) noexcept {
    return unless(asked(before().link, to),
                  [&] { return linkat(AT_FDCWD, from, AT_FDCWD, to, 0); });
}
int unlink(const char* path) noexcept {
    return unless(asked(before().unlink, path), [&] { return unlinkat(AT_FDCWD, path, 0); });
}
int rename(const char* from, const char* to) noexcept {
    return unless(asked(before().rename, to),
                  [&] { return renameat(AT_FDCWD, from, AT_FDCWD, to); });
}
int lstat(const char* path, struct stat* status) noexcept {
    return unless(asked(before().lstat, path),
                  [&] { return fstatat(AT_FDCWD, path, status, AT_SYMLINK_NOFOLLOW); });
}
int fallocate(int file, int mode, off_t from, off_t size) {
    const int error = before().fallocate ? before().fallocate() : 0;
    static void* const real = dlsym(RTLD_NEXT, sizeof size == 8 ? "fallocate64" : "fallocate");
    return unless(error, [&] {
        return reinterpret_cast<decltype(&fallocate)>(real)(file, mode, from, size);
    });
}
}

namespace {

class PruningInTrouble : public Pruning {
  protected:
    void TearDown() override {
        before() = {};
        Pruning::TearDown();
    }
    static std::string stopped(const std::string& at) {
        return "ERROR: Pruning stopped, because it could not " + at +
               ".  No record is lost.  As long as the pruning token stands, log writers go on into "
               "companion files, which no query reads; a pruning that ends well brings their "
               "records back.";
    }
    /// The name of a left-over that bears the numbers of `log`, or its own.
    static std::string numbered(const std::string& source, const std::string& log = "",
                                std::size_t size = 0) {
        struct stat status = {};
        EXPECT_EQ(stat((log.empty() ? source : log).c_str(), &status), 0);
        return source + ".to_add_0_" + std::to_string(status.st_dev) + "_" +
               std::to_string(status.st_ino) + "_" + std::to_string(size);
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

// As where a network loses the answer, and the call is made once more.
TEST_F(PruningInTrouble, ASecondNameWhoseAnswerGetsLostGoesAllTheSame) {
    write_log(3, old(1) + fresh(1));
    before().link = [](const std::string& second) {
        EXPECT_EQ(linkat(AT_FDCWD, log_file_path(3).c_str(), AT_FDCWD, second.c_str(), 0), 0);
        return EEXIST;
    };
    EXPECT_EQ(said_by_pruning(), result(1, 2));
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
    const std::string left_over = numbered(pruning_companion_path(0), log, fresh(1).size());
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

TEST_F(PruningInTrouble, OnAFullDiskNothingIsBegunToBeAdded) {
    write_log(0, old(1) + fresh(1));
    write_file(pruning_companion_path(0), fresh(2));
    const std::string left_over = numbered(pruning_companion_path(0));
    before().fallocate = [] { return ENOSPC; };
    const std::string stays = "The next pruning adds to its log what is left in (" + left_over +
                              "): No space left on device.\n";
    EXPECT_EQ(said_by_pruning(), stays + result(1, 2));
    // The log can be pruned all the same, and has room again.
    write_log(0, old(1) + fresh(1));
    EXPECT_EQ(said_by_pruning(), stays + result(1, 2));
    before().fallocate = {};
    EXPECT_EQ(said_by_pruning(), result(0, 2));
    EXPECT_EQ(all_files(), (Files{{"logging_0.txt", fresh(1) + fresh(2)}}));
}

TEST_F(PruningInTrouble, WhatOnlyThisRunKnowsOfAndCannotAddIsToldOf) {
    write_log(0, old(1) + fresh(1));
    before().fallocate = [] { return ENOSPC; };
    before().link = [](const std::string&) {
        std::ofstream(log_file_path(0), std::ios::app) << fresh(2);
        return EPERM;
    };
    EXPECT_EQ(said_by_pruning(), "Records that somebody adds to the old file of the log (" +
                                     log_file_path(0) +
                                     ") may be lost: No space left on device.\n" + result(1, 2));
}

TEST_F(PruningInTrouble, WhatItDidNotMakeStays) {
    write_file(logging_dir + "/elsewhere/real", old(1) + fresh(1));
    fs::create_symlink("elsewhere/real", log_file_path(3));
    const std::string real = logging_dir + "/elsewhere/real";
    const std::string second = numbered(real);
    ASSERT_EQ(mkfifo(second.c_str(), 0666), 0);
    fs::create_directory(real + ".pruning_");
    EXPECT_EQ(said_by_pruning(), left_alone(real, "File exists") + result(0, 0));
    EXPECT_TRUE(fs::is_fifo(second));
    EXPECT_TRUE(fs::is_directory(real + ".pruning_"));
}

TEST_F(PruningInTrouble, ALeftOverThatCannotBeLookedAtIsNotForgotten) {
    write_log(0, old(1) + fresh(1));
    write_file(numbered(pruning_companion_path(0), log_file_path(0)), fresh(1) + fresh(2));
    before().lstat = [](const std::string& path) {
        if (path.find(".to_add_") == std::string::npos) return 0;
        before().lstat = {};
        return EIO;
    };
    EXPECT_EQ(said_by_pruning(), result(1, 3));
    EXPECT_EQ(all_files(), (Files{{"logging_0.txt", fresh(1) + fresh(2)}}));
}

TEST_F(PruningInTrouble, NoWriterGoesOnBehindHalfARecordOfTheLastMerge) {
    write_log(0, fresh(1));
    before().unlink = [](const std::string& path) {
        if (path == pruning_token_path()) write_file(pruning_companion_path(0), fresh(2));
        return 0;
    };
    EXPECT_GRIPE(prune_with(1), stopped("write (" + log_file_path(0) + "): Input/output error"));
    EXPECT_TRUE(fs::exists(pruning_token_path()));
    EXPECT_EQ(mode_of(pruning_token_path()), 0666u);
    before() = {};
    EXPECT_EQ(said_by_pruning(), result(0, 2));
    EXPECT_EQ(all_files(), (Files{{"logging_0.txt", fresh(1) + fresh(2)}}));
}

TEST_F(PruningInTrouble, WhatIsNotAddedYetIsNotCounted) {
    write_log(0, fresh(1));
    write_file(pruning_companion_path(0), old(2) + fresh(2));
    const std::string left_over =
        numbered(pruning_companion_path(0), log_file_path(0), fresh(1).size());
    before().unlink = [&](const std::string& path) { return path == left_over ? EIO : 0; };
    EXPECT_EQ(said_by_pruning(), "The next pruning adds to its log what is left in (" + left_over +
                                     "): Input/output error.\n" + result(0, 1));
    before() = {};
    EXPECT_EQ(said_by_pruning(), result(1, 3));
    EXPECT_EQ(file_text(log_file_path(0)), fresh(1) + fresh(2));
}

TEST_F(PruningInTrouble, NorIsWhatCameToAnOldFileThatStays) {
    write_log(0, old(1) + fresh(1));
    before().link = [](const std::string&) {
        std::ofstream(log_file_path(0), std::ios::app) << old(2) + fresh(2);
        return 0;
    };
    before().unlink = [](const std::string& path) {
        return path.starts_with(log_file_path(0) + ".to_add_") ? EIO : 0;
    };
    const std::string said = said_by_pruning();
    EXPECT_TRUE(said.ends_with("Input/output error.\n" + result(1, 2))) << said;
    before() = {};
    EXPECT_EQ(said_by_pruning(), result(1, 3));
    EXPECT_EQ(all_files(), (Files{{"logging_0.txt", fresh(1) + fresh(2)}}));
}

TEST_F(PruningInTrouble, ACompanionThatIsReplacedWhileItIsTakenLosesNothing) {
    write_log(0, fresh(1));
    write_file(pruning_companion_path(0), fresh(2));
    before().rename = [](const std::string& path) {
        if (path.find("logging__0.txt.to_add_") != std::string::npos) {
            before().rename = {};
            fs::remove(pruning_companion_path(0));
            write_file(pruning_companion_path(0), fresh(3));
        }
        return 0;
    };
    EXPECT_EQ(said_by_pruning(),
              left_alone(pruning_companion_path(0), "Another file took its place") + result(0, 1));
    EXPECT_EQ(said_by_pruning(), result(0, 2));
    EXPECT_EQ(all_files(), (Files{{"logging_0.txt", fresh(1) + fresh(3)}}));
}

}  // namespace
