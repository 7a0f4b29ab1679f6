#include <sys/file.h>

#include <algorithm>

#include "base/descriptor.h"
#include "faults/append_only.h"
#include "messages/log_texts.h"
#include "support/needs.h"
#include "units/pruning/pruning_region.h"

namespace gatescope {

// Logs that are not pruned, and files outside the directory, which are not changed.

namespace {

class SkippedLogs : public Pruning {
  protected:
    static constexpr char OPEN_FOR_WRITING[] = "Somebody keeps it open for writing";
};

TEST_F(SkippedLogs, ReportsASymbolicLinkAndTheRelocatedDirectory) {
    write_file(elsewhere("real.txt"), old(1) + fresh(1));
    fs::create_symlink("elsewhere/real.txt", log_file_path(3));
    write_log(4, old(1));
    EXPECT_EQ(output_of_prune(),
              skipped(log_file_path(3),
                      "It is a symbolic link, and only the directory of the logs may be one; to "
                      "keep them elsewhere, set the relocated logging directory (A24)") +
                  result(1, 1));
    EXPECT_TRUE(fs::is_symlink(log_file_path(3)));
    EXPECT_EQ(file_text(elsewhere("real.txt")), old(1) + fresh(1));
}

TEST_F(SkippedLogs, PrunesLogsInALinkedDirectory) {
    write_log(3, old(1) + fresh(1));
    const std::string real = logging_dir;
    ScratchDirectory other;
    logging_dir = other / "link";
    fs::create_symlink(real, logging_dir);
    EXPECT_EQ(output_of_prune(), result(1, 2));
    logging_dir = real;
    EXPECT_EQ(all_files(), (Files{{"logging_3.txt", fresh(1)}}));
}

TEST_F(SkippedLogs, AbortsOnACompanionOfALinkedLog) {
    write_file(elsewhere("real.txt"), fresh(1));
    fs::create_symlink("elsewhere/real.txt", log_file_path(3));
    write_file(pruning_companion_path(3), fresh(2));
    EXPECT_GRIPE(prune(), "Could not create needed logging file");
    EXPECT_EQ(file_text(pruning_companion_path(3)), fresh(2));
    EXPECT_EQ(file_text(elsewhere("real.txt")), fresh(1));
    // An empty companion is no reason to abort.
    write_file(pruning_companion_path(3), "");
    EXPECT_EQ(output_of_prune(), skipped(log_file_path(3), IS_A_SYMBOLIC_LINK) + result(0, 0));
}

// A run after the link is replaced merges it.
TEST_F(SkippedLogs, KeepsALateCompanionOfALinkedLog) {
    if (!has_leases()) GTEST_SKIP() << "no leases here";
    patience.writer_timeout = std::chrono::milliseconds(300);
    fs::create_symlink("elsewhere/real.txt", log_file_path(3));
    const SlowWriter writer(log_file_path(0));
    const Later record([] { write_file(pruning_companion_path(3), fresh(2)); });
    EXPECT_EQ(output_of_prune(), skipped(log_file_path(0), OPEN_FOR_WRITING) +
                                     skipped(log_file_path(3), IS_A_SYMBOLIC_LINK) + result(0, 0));
    writer.end();
    EXPECT_EQ(file_text(pruning_companion_path(3)), fresh(2));
}

TEST_F(SkippedLogs, ReportsDanglingAndCircularLinks) {
    fs::create_symlink("missing/real.txt", log_file_path(1));
    fs::create_symlink("logging_2.txt", log_file_path(2));
    write_log(5, old(1));
    EXPECT_EQ(output_of_prune(), skipped(log_file_path(1), IS_A_SYMBOLIC_LINK) +
                                     skipped(log_file_path(2), IS_A_SYMBOLIC_LINK) + result(1, 1));
}

TEST_F(SkippedLogs, ReportsALinkedCompanionAndPrunesItsLog) {
    write_file(elsewhere("secret"), fresh(1));
    fs::create_symlink("elsewhere/secret", pruning_companion_path(6));
    write_log(6, old(1));
    EXPECT_EQ(output_of_prune(),
              skipped(pruning_companion_path(6), IS_A_SYMBOLIC_LINK) + result(1, 1));
    EXPECT_EQ(file_text(log_file_path(6)), "");
    EXPECT_EQ(file_text(elsewhere("secret")), fresh(1));
}

TEST_F(SkippedLogs, MergesACompanionThatWasALinkAtFirst) {
    if (!has_leases()) GTEST_SKIP() << "no leases here";
    patience.writer_timeout = std::chrono::milliseconds(300);
    fs::create_symlink("elsewhere", pruning_companion_path(3));
    const SlowWriter writer(log_file_path(0));
    const Later record([] {
        fs::remove(pruning_companion_path(3));
        write_file(pruning_companion_path(3), fresh(2));
    });
    EXPECT_EQ(output_of_prune(), skipped(log_file_path(0), OPEN_FOR_WRITING) + result(0, 1));
    writer.end();
    EXPECT_EQ(file_text(log_file_path(3)), fresh(2));
}

TEST_F(SkippedLogs, ReportsDirectoriesAndPipesWithoutWaiting) {
    fs::create_directory(log_file_path(2));
    const mode_t mode = mode_of(log_file_path(2));
    for (const std::string& path :
         {log_file_path(3), pruning_companion_path(4), log_file_path(6) + ".taken_0"}) {
        ASSERT_EQ(mkfifo(path.c_str(), 0666), 0);
    }
    write_log(7, old(1));
    EXPECT_EQ(output_of_prune(), skipped(log_file_path(2), "Not a regular file") +
                                     skipped(log_file_path(3), "Not a regular file") +
                                     skipped(log_file_path(6) + ".taken_0", "Not a regular file") +
                                     skipped(pruning_companion_path(4), "Not a regular file") +
                                     result(1, 1));
    EXPECT_EQ(mode_of(log_file_path(2)), mode);
    EXPECT_TRUE(fs::is_fifo(log_file_path(6) + ".taken_0"));
}

TEST_F(SkippedLogs, AbortsOnATokenThatIsAPipe) {
    ASSERT_EQ(mkfifo(pruning_token_path().c_str(), 0666), 0);
    EXPECT_GRIPE(prune(), "Could not create needed pruning token");
    const int reader = open(pruning_token_path().c_str(), O_RDONLY | O_NONBLOCK);
    EXPECT_GRIPE(prune(), "Could not create needed pruning token");
    close(reader);
}

TEST_F(SkippedLogs, AbortsOnATokenWithTwoHardLinks) {
    write_file(elsewhere("secret"), "a text");
    fs::create_hard_link(elsewhere("secret"), pruning_token_path());
    write_log(0, old(1));
    EXPECT_GRIPE(prune(), "Could not create needed pruning token");
    EXPECT_EQ(file_text(elsewhere("secret")), "a text");
    EXPECT_EQ(file_text(log_file_path(0)), old(1));
}

TEST_F(SkippedLogs, AbortsOnATokenThatIsASymbolicLink) {
    fs::create_symlink("elsewhere", pruning_token_path());
    EXPECT_GRIPE(prune(), "Could not create needed pruning token");
    EXPECT_FALSE(fs::exists(logging_dir + "/elsewhere"));
}

TEST_F(SkippedLogs, OtherHardLinksOfALogKeepTheOldText) {
    write_log(3, old(1) + fresh(1));
    fs::create_hard_link(log_file_path(3), logging_dir + "/twin");
    write_file(pruning_companion_path(3), fresh(2));
    EXPECT_EQ(output_of_prune(), result(1, 3));
    EXPECT_EQ(all_files(),
              (Files{{"logging_3.txt", fresh(1) + fresh(2)}, {"twin", old(1) + fresh(1)}}));
}

TEST_F(SkippedLogs, KeepsTheModeOfAFileWithTwoHardLinks) {
    write_file(logging_dir + "/private", "");
    ASSERT_EQ(chmod((logging_dir + "/private").c_str(), 0600), 0);
    fs::create_hard_link(logging_dir + "/private", log_file_path(3));
    write_file(logging_dir + "/other", old(1));
    ASSERT_EQ(chmod((logging_dir + "/other").c_str(), 0600), 0);
    fs::create_hard_link(logging_dir + "/other", log_file_path(4));
    EXPECT_EQ(output_of_prune(), result(1, 1));
    EXPECT_EQ(mode_of(logging_dir + "/private"), mode_t{0600});
    EXPECT_EQ(mode_of(logging_dir + "/other"), mode_t{0600});
    EXPECT_EQ(file_text(logging_dir + "/other"), old(1));
}

// The owner of a directory in a link's target replaces it while the pruning waits for a log that he
// has open.
TEST_F(SkippedLogs, ChangesNothingBehindALinkThatIsReplacedMeanwhile) {
    if (!has_leases()) GTEST_SKIP() << "no leases here";
    patience.writer_timeout = std::chrono::milliseconds(500);
    write_file(elsewhere("mine/real.txt"), old(1));
    write_file(elsewhere("secret/real.txt"), old(2));
    ASSERT_EQ(chmod(elsewhere("secret/real.txt").c_str(), 0600), 0);
    fs::create_symlink("elsewhere/mine/real.txt", log_file_path(5));
    fs::create_symlink("elsewhere/mine/real.txt", pruning_companion_path(6));
    const SlowWriter writer(log_file_path(0));
    const Later exchange([] {
        fs::rename(elsewhere("mine"), elsewhere("away"));
        fs::create_symlink("secret", elsewhere("mine"));
    });
    output_of_prune();
    writer.end();
    EXPECT_EQ(file_text(elsewhere("secret/real.txt")), old(2));
    EXPECT_EQ(mode_of(elsewhere("secret/real.txt")), mode_t{0600});
    EXPECT_EQ(file_text(elsewhere("away/real.txt")), old(1));
}

// The directory of the logs itself is replaced in the same way.
TEST_F(SkippedLogs, ChangesNothingInADirectoryThatReplacesTheLogsMeanwhile) {
    if (!has_leases()) GTEST_SKIP() << "no leases here";
    patience.writer_timeout = std::chrono::milliseconds(500);
    const std::string directory = logging_dir;
    logging_dir = directory + "/logs";
    write_log(1, old(1) + fresh(1));
    const std::string other = directory + "/other";
    for (const std::string& path :
         {gatescope::log_file_path(other, 1), gatescope::pruning_token_path(other),
          gatescope::pruning_scratch_path(other), log_file_path(0)}) {
        write_file(path, old(2));
    }
    const SlowWriter writer(log_file_path(0));
    const Later exchange([&] {
        fs::rename(logging_dir, directory + "/away");
        fs::create_symlink("other", logging_dir);
    });
    output_of_prune();
    writer.end();
    EXPECT_EQ(file_text(gatescope::log_file_path(directory + "/away", 1)), fresh(1));
    EXPECT_FALSE(fs::exists(gatescope::pruning_token_path(directory + "/away")));
    for (const std::string& path :
         {gatescope::log_file_path(other, 1), gatescope::pruning_token_path(other),
          gatescope::pruning_scratch_path(other)}) {
        EXPECT_EQ(file_text(path), old(2)) << path;
    }
    logging_dir = directory;
}

TEST_F(SkippedLogs, AbortsInAnAppendOnlyDirectory) {
    NEEDS(GATESCOPE_HAS_STATX, "statx");
    const AppendOnly guard(logging_dir);
    if (!guard.is_set()) GTEST_SKIP() << "no append-only directories here";
    EXPECT_GRIPE(prune(), "Could not create needed pruning token");
    EXPECT_EQ(all_files(), Files{});
}

// The log itself has been pruned by then.
TEST_F(SkippedLogs, ReportsALateCompanionThatCannotBeRenamed) {
    if (!is_root()) GTEST_SKIP() << "needs root";
    patience.writer_timeout = std::chrono::milliseconds(600);
    write_log(0, old(1) + fresh(1));
    set_owner(log_file_path(0), OPERATOR);
    write_log(1, fresh(1));
    ASSERT_EQ(chmod(logging_dir.c_str(), 01777), 0);
    std::string said;
    {
        const SlowWriter writer(log_file_path(0));
        const Later companion([] {
            write_file(pruning_companion_path(0), fresh(2));
            ASSERT_EQ(chmod(pruning_companion_path(0).c_str(), 0666), 0);
        });
        const Later end([&] {
            usleep(100'000);
            writer.end();
        });
        said = output_of_prune_as(OPERATOR);
    }
    EXPECT_NE(said.find("logging__0.txt: Operation not permitted"), std::string::npos) << said;
    EXPECT_EQ(file_text(pruning_companion_path(0)), fresh(2));
}

TEST_F(SkippedLogs, ReplacesLogsOfOtherUsers) {
    if (!is_root()) GTEST_SKIP() << "needs root";
    patience = SHORT_PATIENCE;
    write_log(3, old(1) + fresh(1));
    ASSERT_EQ(chmod(log_file_path(3).c_str(), 0666), 0);
    set_owner(log_file_path(3), OTHER_USER);
    ASSERT_EQ(chmod(logging_dir.c_str(), 0777), 0);
    const ino_t before = inode_of(log_file_path(3));
    EXPECT_EQ(output_of_prune_as(OPERATOR), result(1, 2));
    EXPECT_NE(inode_of(log_file_path(3)), before);
    EXPECT_EQ(mode_of(log_file_path(3)), mode_t{0666});
    EXPECT_EQ(all_files(), (Files{{"logging_3.txt", fresh(1)}}));
}

TEST_F(SkippedLogs, MakesAMergedLogWritableForAll) {
    write_log(3, fresh(1));
    write_file(pruning_companion_path(3), fresh(2));
    ASSERT_EQ(chmod(log_file_path(3).c_str(), 0640), 0);
    EXPECT_EQ(output_of_prune(), result(0, 2));
    EXPECT_EQ(mode_of(log_file_path(3)), mode_t{0666});
    EXPECT_EQ(all_files(), (Files{{"logging_3.txt", fresh(1) + fresh(2)}}));
}

TEST_F(SkippedLogs, ReportsLogsOfOtherUsersInAStickyDirectory) {
    if (!is_root()) GTEST_SKIP() << "needs root";
    patience = SHORT_PATIENCE;
    ASSERT_EQ(chmod(logging_dir.c_str(), 01777), 0);
    for (const int number : {3, 4}) {
        write_log(number, old(1) + fresh(1));
        ASSERT_EQ(chmod(log_file_path(number).c_str(), 0666), 0);
    }
    set_owner(log_file_path(4), OPERATOR);
    EXPECT_EQ(output_of_prune_as(OPERATOR),
              skipped(log_file_path(3), "Operation not permitted") + result(1, 2));
    EXPECT_EQ(all_files(),
              (Files{{"logging_3.txt", old(1) + fresh(1)}, {"logging_4.txt", fresh(1)}}));
}

TEST_F(SkippedLogs, ReportsAnUnreadableLog) {
    if (!is_root()) GTEST_SKIP() << "needs root";
    patience = SHORT_PATIENCE;
    ASSERT_EQ(chmod(logging_dir.c_str(), 0777), 0);
    write_log(3, old(1));
    ASSERT_EQ(chmod(log_file_path(3).c_str(), 0600), 0);
    write_log(4, old(1));
    ASSERT_EQ(chmod(log_file_path(4).c_str(), 0666), 0);
    EXPECT_EQ(output_of_prune_as(OPERATOR),
              skipped(log_file_path(3), "Permission denied") + result(1, 1));
    EXPECT_EQ(file_text(log_file_path(3)), old(1));
}

TEST_F(SkippedLogs, ReportsThemOnStandardErrorToo) {
    fs::create_directory(log_file_path(2));
    testing::internal::CaptureStderr();
    output_of_prune();
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "gatescope: " + skipped(log_file_path(2), "Not a regular file"));
}

TEST_F(SkippedLogs, KeepsALogThatStaysOpenForWriting) {
    if (!has_leases()) GTEST_SKIP() << "no leases here";
    patience = SHORT_PATIENCE;
    write_log(3, old(1) + fresh(1));
    write_log(4, old(1) + fresh(1));
    write_file(pruning_companion_path(3), fresh(2));
    const SlowWriter writer(log_file_path(3));
    EXPECT_EQ(output_of_prune(), not_merged(taken(3), OPEN_FOR_WRITING) +
                                     skipped(log_file_path(3), OPEN_FOR_WRITING) + result(1, 2));
    writer.write(fresh(3));
    writer.end();
    EXPECT_EQ(file_text(log_file_path(3)), old(1) + fresh(1) + fresh(3));
    EXPECT_EQ(output_of_prune(), result(1, 5));
    EXPECT_EQ(all_files(), (Files{{"logging_3.txt", fresh(1) + fresh(3) + fresh(2)},
                                  {"logging_4.txt", fresh(1)}}));
}

TEST_F(SkippedLogs, MergesACompanionThatStayedOpenInTheNextRun) {
    if (!has_leases()) GTEST_SKIP() << "no leases here";
    patience = SHORT_PATIENCE;
    write_log(3, old(1) + fresh(1));
    write_file(pruning_companion_path(3), fresh(2) + old(2));
    const SlowWriter writer(pruning_companion_path(3));
    writer.write(fresh(3).substr(0, 20));
    const std::string reason = "logging_3.txt.taken_0: " + std::string(OPEN_FOR_WRITING);
    EXPECT_EQ(output_of_prune(),
              not_merged(taken(3), reason) + skipped(log_file_path(3), reason) + result(0, 0));
    EXPECT_FALSE(fs::exists(pruning_token_path()));
    writer.write(fresh(3).substr(20));
    writer.end();
    write_file(pruning_companion_path(3), fresh(4));
    EXPECT_EQ(output_of_prune(), result(2, 6));
    EXPECT_EQ(all_files(), (Files{{"logging_3.txt", fresh(1) + fresh(2) + fresh(3) + fresh(4)}}));
}

// The record that is written in two pieces and the merged one are both complete.
TEST_F(SkippedLogs, KeepsAHalfWrittenRecordWhole) {
    if (!has_leases()) GTEST_SKIP() << "no leases here";
    patience = SHORT_PATIENCE;
    write_log(3, old(1));
    write_file(pruning_companion_path(3), fresh(2));
    const SlowWriter writer(log_file_path(3));
    writer.write(fresh(1).substr(0, 15));
    output_of_prune();
    writer.write(fresh(1).substr(15));
    writer.end();
    EXPECT_EQ(file_text(log_file_path(3)), old(1) + fresh(1));
    EXPECT_EQ(output_of_prune(), result(1, 3));
    EXPECT_EQ(all_files(), (Files{{"logging_3.txt", fresh(1) + fresh(2)}}));
}

TEST_F(SkippedLogs, WaitsForALeaseOnlyUntilTheTimeout) {
    if (!has_leases()) GTEST_SKIP() << "no leases here";
    patience.writer_timeout = std::chrono::milliseconds(100);
    write_log(3, old(1));
    const Descriptor other(open(log_file_path(3).c_str(), O_RDWR | O_CLOEXEC));
    fcntl(other.get(), F_SETSIG, SIGURG);
    ASSERT_EQ(fcntl(other.get(), F_SETLEASE, F_WRLCK), 0);
    const auto begun = std::chrono::steady_clock::now();
    EXPECT_EQ(output_of_prune(), skipped(log_file_path(3), OPEN_FOR_WRITING) + result(0, 0));
    // Well below the 45 seconds after which the system breaks the lease.
    EXPECT_LT(std::chrono::steady_clock::now() - begun, std::chrono::seconds(20));
}

// A backup program, for example, may hold one.
TEST_F(SkippedLogs, PrunesDespiteAReadLeaseOfAnotherProcess) {
    if (!has_leases()) GTEST_SKIP() << "no leases here";
    write_log(3, old(1) + fresh(1));
    const Descriptor other(open(log_file_path(3).c_str(), O_RDONLY | O_CLOEXEC));
    fcntl(other.get(), F_SETSIG, SIGURG);
    ASSERT_EQ(fcntl(other.get(), F_SETLEASE, F_RDLCK), 0);
    EXPECT_EQ(output_of_prune(), result(1, 2));
    fcntl(other.get(), F_SETLEASE, F_UNLCK);
}

TEST_F(SkippedLogs, ReportsThemWithATokenThatCannotBeRemoved) {
    if (!has_leases()) GTEST_SKIP() << "no leases here";
    patience.writer_timeout = std::chrono::milliseconds(500);
    const SlowWriter writer(log_file_path(0));
    const auto prune_while_the_token_is_replaced = [] {
        const Later other_token([] {
            fs::remove(pruning_token_path());
            fs::create_directory(pruning_token_path());
        });
        prune();
    };
    EXPECT_GRIPE(prune_while_the_token_is_replaced(),
                 skipped(log_file_path(0), OPEN_FOR_WRITING) +
                     "ERROR: The logs are pruned, but the pruning token (" + pruning_token_path() +
                     ") could not be removed: Is a directory.  New records are kept "
                     "aside until it is.");
    writer.end();
}

}  // namespace
}  // namespace gatescope
