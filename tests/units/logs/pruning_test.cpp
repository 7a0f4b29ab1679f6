#include "logs/pruning.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <map>
#include <thread>
#include <vector>

#include "base/process_end.h"
#include "log_region.h"

namespace {

namespace fs = std::filesystem;

class Pruning : public LogRegion {
  protected:
    static std::string said_by_pruning(int days = 120, bool display = false) {
        testing::internal::CaptureStdout();
        prune_logging_files(static_cast<std::uint8_t>(days), display);
        return testing::internal::GetCapturedStdout();
    }

    static std::string result(int removed, int total, int days = 120) {
        return std::to_string(removed) + " of " + std::to_string(total) + " log entries " +
               (removed == 1 ? "was" : "were") +
               " removed from the Gatewarden LOGS for the Gatewarden Region (east).\n\n" +
               std::to_string(days) + " days of data retained.";
    }

    static std::map<std::string, std::string> all_files() {
        std::map<std::string, std::string> files;
        for (const auto& entry : fs::directory_iterator(logging_dir)) {
            files[entry.path().filename()] = file_text(entry.path());
        }
        return files;
    }
    using Files = std::map<std::string, std::string>;

    static void limit_file_sizes() {
        const rlimit limit = {4096, 4096};
        setrlimit(RLIMIT_FSIZE, &limit);
    }

    static mode_t mode_of(const std::string& path) {
        struct stat status;
        return stat(path.c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
    }
    static ino_t inode_of(const std::string& path) {
        struct stat status;
        return stat(path.c_str(), &status) == 0 ? status.st_ino : 0;
    }

    static std::string fresh(int number) { return line(number, "S:ann[2]-<->"); }
    static std::string old(int number) { return line(200 + number, "S:ann[2]-<->"); }
};

TEST_F(Pruning, OldRecordsGoAndTheOthersStay) {
    write_log(0, old(1) + fresh(1) + old(2) + fresh(2));
    write_log(20, old(3));
    EXPECT_EQ(said_by_pruning(), result(3, 5));
    EXPECT_EQ(all_files(), (Files{{"logging_0.txt", fresh(1) + fresh(2)}, {"logging_20.txt", ""}}));
}

TEST_F(Pruning, ARecordAtTheCutOffIsKept) {
    const std::int64_t cut_off = end_of_day_time - 120 * SECONDS_A_DAY;
    write_log(1, record_at(cut_off, "S:a[1]-<->\n") + record_at(cut_off - 1, "S:a[1]-<->\n"));
    EXPECT_EQ(said_by_pruning(), result(1, 2));
    EXPECT_EQ(file_text(log_file_path(1)), record_at(cut_off, "S:a[1]-<->\n"));
}

TEST_F(Pruning, AWordWithoutANumberIsCountedAndRemoved) {
    write_log(0, "rubbish here\n" + fresh(1));
    EXPECT_EQ(said_by_pruning(), result(2, 3));
    EXPECT_EQ(file_text(log_file_path(0)), fresh(1));
}

TEST_F(Pruning, KeepingNoDaysRemovesAllUpToTheEndOfToday) {
    const std::string tomorrow = record_at(end_of_day_time + 1, "S:a[1]-<->\n");
    const std::string midnight = record_at(end_of_day_time, "S:a[1]-<->\n");
    write_log(0, fresh(0) + midnight + tomorrow);
    EXPECT_EQ(said_by_pruning(0), result(1, 3, 0));
    EXPECT_EQ(file_text(log_file_path(0)), midnight + tomorrow);
}

TEST_F(Pruning, KeepsUpTo255Days) {
    write_log(0, line(254, "S:a[1]-<->") + line(256, "S:a[1]-<->"));
    EXPECT_EQ(said_by_pruning(255), result(1, 2, 255));
}

TEST_F(Pruning, WithoutLogsNothingIsMade) {
    EXPECT_EQ(said_by_pruning(), result(0, 0));
    EXPECT_EQ(all_files(), Files{});
}

TEST_F(Pruning, EachRecordComesBackOnALineOfItsOwn) {
    const std::string one = record_at(noon(1), "S:a[1]-<->");
    const std::string two = record_at(noon(2), "S:b[1]-<->");
    write_log(0, "  " + one + " \t" + two + "\r\n\n" + one);
    EXPECT_EQ(said_by_pruning(), result(0, 3));
    EXPECT_EQ(file_text(log_file_path(0)), one + "\n" + two + "\n" + one + "\n");
}

TEST_F(Pruning, ALogWithNothingToDropStaysTheFileThatItIs) {
    write_log(0, fresh(1) + fresh(2));
    const ino_t before = inode_of(log_file_path(0));
    EXPECT_EQ(said_by_pruning(), result(0, 2));
    EXPECT_EQ(inode_of(log_file_path(0)), before);
    EXPECT_EQ(file_text(log_file_path(0)), fresh(1) + fresh(2));
}

TEST_F(Pruning, LogsBecomeWritableForAll) {
    write_log(0, old(1) + fresh(1));
    write_log(1, fresh(1));
    ASSERT_EQ(chmod(log_file_path(0).c_str(), 0600), 0);
    ASSERT_EQ(chmod(log_file_path(1).c_str(), 0640), 0);
    said_by_pruning();
    EXPECT_EQ(mode_of(log_file_path(0)), mode_t{0666});
    EXPECT_EQ(mode_of(log_file_path(1)), mode_t{0666});
}

TEST_F(Pruning, CompanionsAreMergedBehindTheirLogs) {
    write_log(0, fresh(1) + old(1));
    write_file(pruning_companion_path(0), old(2) + fresh(3) + " " + fresh(4));
    write_log(1, fresh(5));
    write_file(pruning_companion_path(1), fresh(6));
    EXPECT_EQ(said_by_pruning(), result(2, 7));
    EXPECT_EQ(all_files(), (Files{{"logging_0.txt", fresh(1) + fresh(3) + fresh(4)},
                                  {"logging_1.txt", fresh(5) + fresh(6)}}));
}

TEST_F(Pruning, ACompanionMakesItsLog) {
    write_file(pruning_companion_path(9), fresh(1) + old(1));
    const mode_t mask = umask(022);
    EXPECT_EQ(said_by_pruning(), result(1, 2));
    umask(mask);
    EXPECT_EQ(all_files(), (Files{{"logging_9.txt", fresh(1)}}));
    EXPECT_EQ(mode_of(log_file_path(9)), mode_t{0644});
}

TEST_F(Pruning, AnEmptyCompanionIsRemoved) {
    write_log(0, fresh(1));
    write_file(pruning_companion_path(0), "");
    EXPECT_EQ(said_by_pruning(), result(0, 1));
    EXPECT_EQ(all_files(), (Files{{"logging_0.txt", fresh(1)}}));
}

TEST_F(Pruning, OnlyFiles0To20ArePruned) {
    write_log(21, old(1));
    write_file(pruning_companion_path(21), old(1));
    EXPECT_EQ(said_by_pruning(), result(0, 0));
    EXPECT_EQ(all_files(), (Files{{"logging_21.txt", old(1)}, {"logging__21.txt", old(1)}}));
}

TEST_F(Pruning, DirectoriesUnderALogsNameAreLeftAlone) {
    fs::create_directory(log_file_path(2));
    const mode_t mode = mode_of(log_file_path(2));
    EXPECT_EQ(said_by_pruning(), result(0, 0));
    EXPECT_EQ(mode_of(log_file_path(2)), mode);
}

TEST_F(Pruning, TheResultIsShownInADialogUnlessDisplayIsOff) {
    EXPECT_EQ(said_by_pruning(120, true), result(0, 0) + "\n");
    write_log(0, old(1));
    EXPECT_EQ(said_by_pruning(120, true), result(1, 1) + "\n");
}

TEST_F(Pruning, ALinkToALogStaysALink) {
    fs::create_directory(logging_dir + "/elsewhere");
    write_file(logging_dir + "/elsewhere/real.txt", old(1) + fresh(1));
    fs::create_symlink("elsewhere/real.txt", log_file_path(3));
    write_file(pruning_companion_path(3), fresh(2));
    EXPECT_EQ(said_by_pruning(), result(1, 3));
    EXPECT_TRUE(fs::is_symlink(log_file_path(3)));
    EXPECT_EQ(file_text(logging_dir + "/elsewhere/real.txt"), fresh(1) + fresh(2));
    EXPECT_EQ(std::distance(fs::directory_iterator(logging_dir + "/elsewhere"), {}), 1);
}

TEST_F(Pruning, ALogWithHardLinksStaysTheirFile) {
    write_log(3, old(1) + fresh(1) + old(2));
    fs::create_hard_link(log_file_path(3), logging_dir + "/twin");
    write_file(pruning_companion_path(3), fresh(2) + fresh(3) + fresh(4));
    EXPECT_EQ(said_by_pruning(), result(2, 6));
    const std::string expected = fresh(1) + fresh(2) + fresh(3) + fresh(4);
    EXPECT_EQ(all_files(), (Files{{"logging_3.txt", expected}, {"twin", expected}}));
    EXPECT_TRUE(fs::equivalent(log_file_path(3), logging_dir + "/twin"));
}

TEST_F(Pruning, ALogThatSomebodyKeepsOpenStaysHisFile) {
    if (!has_leases()) GTEST_SKIP() << "no leases here";
    write_log(3, old(1) + fresh(1));
    const int writer = open(log_file_path(3).c_str(), O_WRONLY | O_APPEND);
    ASSERT_NE(writer, -1);
    EXPECT_EQ(said_by_pruning(), result(1, 2));
    const std::string later = fresh(2);
    EXPECT_EQ(write(writer, later.data(), later.size()), static_cast<ssize_t>(later.size()));
    close(writer);
    // Nothing is cut off a file that somebody may be writing to, so blank lines are left in it.
    const std::string blank(old(1).size(), '\n');
    EXPECT_EQ(all_files(), (Files{{"logging_3.txt", fresh(1) + blank + fresh(2)}}));
    EXPECT_EQ(said_by_pruning(), result(0, 2));
    EXPECT_EQ(all_files(), (Files{{"logging_3.txt", fresh(1) + fresh(2)}}));
}

TEST_F(Pruning, ALogThatSomebodyKeepsOpenGetsShorterByWholeBlocks) {
    if (!has_leases()) GTEST_SKIP() << "no leases here";
    std::string text;
    while (text.size() < 100'000) text += old(1);
    write_log(3, text + fresh(1));
    const int writer = open(log_file_path(3).c_str(), O_WRONLY | O_APPEND);
    ASSERT_NE(writer, -1);
    const int other = open((logging_dir + "/other").c_str(), O_RDWR | O_CREAT, 0600);
    EXPECT_EQ(write(other, text.data(), text.size()), static_cast<ssize_t>(text.size()));
    const bool can_shorten = fallocate(other, FALLOC_FL_COLLAPSE_RANGE, 0, 65'536) == 0;
    close(other);
    said_by_pruning();
    close(writer);
    const std::string left = file_text(log_file_path(3));
    EXPECT_EQ(left.substr(0, fresh(1).size()), fresh(1));
    EXPECT_EQ(left.find_first_not_of('\n', fresh(1).size()), std::string::npos);
    if (!can_shorten) GTEST_SKIP() << "this file system cannot shorten a file in its middle";
    EXPECT_LT(left.size(), 20'000u);
}

/// Does something a little later, while the test goes on.
class Later {
  public:
    template <typename Work>
    explicit Later(const Work& work)
        : thread_([work] {
              usleep(100'000);
              work();
          }) {}
    ~Later() { thread_.join(); }
    Later(const Later&) = delete;
    Later& operator=(const Later&) = delete;

  private:
    std::thread thread_;
};

/// Somebody who has opened a file, and has still to write.
class SlowWriter {
  public:
    explicit SlowWriter(const std::string& path)
        : file_(open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0666)) {
        EXPECT_NE(file_, -1);
    }
    void write(const std::string& text) const {
        EXPECT_EQ(::write(file_, text.data(), text.size()), static_cast<ssize_t>(text.size()));
    }
    void end() const { EXPECT_EQ(close(file_), 0); }

  private:
    int file_;
};

TEST_F(Pruning, ARecordThatIsHalfWrittenIsWaitedFor) {
    if (!has_leases()) GTEST_SKIP() << "no leases here";
    write_log(3, old(1));
    const SlowWriter writer(log_file_path(3));
    writer.write(fresh(1).substr(0, 15));
    {
        const Later rest([&] {
            writer.write(fresh(1).substr(15));
            writer.end();
        });
        EXPECT_EQ(said_by_pruning(), result(1, 2));
    }
    EXPECT_EQ(all_files(), (Files{{"logging_3.txt", fresh(1)}}));
}

TEST_F(Pruning, ARecordThatStaysHalfWrittenIsNotTouched) {
    if (!has_leases()) GTEST_SKIP() << "no leases here";
    write_log(3, old(1));
    const SlowWriter writer(log_file_path(3));
    writer.write(fresh(1).substr(0, 15));
    EXPECT_EQ(said_by_pruning(), result(1, 1));
    writer.write(fresh(1).substr(15));
    writer.end();
    EXPECT_EQ(said_by_pruning(), result(0, 1));
    EXPECT_EQ(all_files(), (Files{{"logging_3.txt", fresh(1)}}));
}

TEST_F(Pruning, AWriterThatHasOpenedTheCompanionIsWaitedFor) {
    if (!has_leases()) GTEST_SKIP() << "no leases here";
    const SlowWriter writer(pruning_companion_path(3));
    {
        const Later record([&] {
            usleep(300'000);
            writer.write(fresh(1));
            writer.end();
        });
        EXPECT_EQ(said_by_pruning(), result(0, 1));
    }
    EXPECT_EQ(all_files(), (Files{{"logging_3.txt", fresh(1)}}));
}

TEST_F(Pruning, ACompanionThatSomebodyKeepsOpenIsLeftForTheNextRun) {
    if (!has_leases()) GTEST_SKIP() << "no leases here";
    write_log(3, old(1) + fresh(1));
    write_file(pruning_companion_path(3), fresh(2));
    const SlowWriter writer(pruning_companion_path(3));
    EXPECT_EQ(said_by_pruning(), result(1, 2));
    writer.write(fresh(3));
    // Another companion does not take its place meanwhile.
    write_file(pruning_companion_path(3), fresh(4));
    EXPECT_EQ(said_by_pruning(), result(0, 0));
    writer.end();
    EXPECT_EQ(said_by_pruning(), result(0, 4));
    EXPECT_EQ(all_files(), (Files{{"logging_3.txt", fresh(1) + fresh(2) + fresh(3) + fresh(4)}}));
}

TEST_F(Pruning, AnOldFileThatSomebodyKeepsOpenStays) {
    if (!has_leases()) GTEST_SKIP() << "no leases here";
    const std::string taken_over = old(1) + fresh(1);
    const std::string path = log_file_path(0) + ".old_" + std::to_string(taken_over.size());
    write_log(0, fresh(1));
    write_file(path, taken_over);
    const SlowWriter writer(path);
    said_by_pruning();
    EXPECT_TRUE(fs::exists(path));
    writer.write(fresh(2));
    writer.end();
    said_by_pruning();
    EXPECT_EQ(all_files(), (Files{{"logging_0.txt", fresh(1) + fresh(2)}}));
}

TEST_F(Pruning, AWriterThatNeverPausesLosesNothing) {
    if (!has_leases()) GTEST_SKIP() << "no leases here";
    write_log(3, old(1));
    write_file(pruning_companion_path(3), fresh(0));
    const SlowWriter writer(log_file_path(3));
    std::atomic<bool> stop = false;
    int written = 0;
    std::thread writing([&] {
        for (; !stop; ++written) {
            writer.write(line(0, "S:user" + std::to_string(written) + "[1]-<->"));
            usleep(5'000);
        }
    });
    said_by_pruning();
    stop = true;
    writing.join();
    writer.end();
    said_by_pruning();
    std::map<std::string, int> seen;
    std::istringstream stream(file_text(log_file_path(3)));
    for (std::string one; std::getline(stream, one);) ++seen[one];
    EXPECT_EQ(seen.size(), static_cast<std::size_t>(written) + 1);
    for (const auto& [record, times] : seen) EXPECT_EQ(times, 1) << record;
    EXPECT_EQ(all_files().size(), 1u);
}

TEST_F(Pruning, ACompanionMakesTheLogHoweverItsDirectoryIsWritten) {
    const std::string directory = logging_dir;
    logging_dir += "/";
    write_file(pruning_companion_path(5), fresh(1));
    EXPECT_EQ(said_by_pruning(), result(0, 1));
    write_file(pruning_companion_path(5), fresh(2));
    EXPECT_EQ(said_by_pruning(), result(0, 2));
    EXPECT_EQ(all_files(), (Files{{"logging_5.txt", fresh(1) + fresh(2)}}));
    logging_dir = directory;
}

TEST_F(Pruning, ACompanionMakesTheLogThatALinkLeadsTo) {
    fs::create_directory(logging_dir + "/elsewhere");
    fs::create_symlink("elsewhere/real.txt", log_file_path(3));
    write_file(pruning_companion_path(3), fresh(1));
    EXPECT_EQ(said_by_pruning(), result(0, 1));
    EXPECT_TRUE(fs::is_symlink(log_file_path(3)));
    EXPECT_EQ(file_text(logging_dir + "/elsewhere/real.txt"), fresh(1));
}

TEST_F(Pruning, ALinkThatLeadsNowhereIsSkipped) {
    write_log(0, old(1));
    write_file(logging_dir + "/file", "");
    fs::create_symlink("missing/real.txt", log_file_path(1));
    fs::create_symlink("file/real.txt", log_file_path(2));
    fs::create_symlink("logging_3.txt/real.txt", log_file_path(3));
    fs::create_symlink(std::string(300, 'x'), log_file_path(4));
    write_log(5, old(1));
    EXPECT_EQ(said_by_pruning(), result(2, 2));
    for (int number = 1; number <= 4; ++number) EXPECT_TRUE(fs::is_symlink(log_file_path(number)));
}

TEST_F(Pruning, ACompanionWithoutAPlaceForItsLogIsKept) {
    fs::create_symlink("missing/real.txt", log_file_path(1));
    write_file(pruning_companion_path(1), fresh(1));
    EXPECT_EXIT(
        {
            stdout = stderr;
            prune_logging_files(120, false);
        },
        testing::ExitedWithCode(99), "Could not create needed logging file");
    EXPECT_EQ(file_text(pruning_companion_path(1)), fresh(1));
    fs::create_directory(logging_dir + "/missing");
    EXPECT_EQ(said_by_pruning(), result(0, 1));
    EXPECT_EQ(file_text(logging_dir + "/missing/real.txt"), fresh(1));
}

TEST_F(Pruning, ALinkThatLeadsInARingIsSkipped) {
    fs::create_symlink("logging_4.txt", log_file_path(3));
    fs::create_symlink("logging_3.txt", log_file_path(4));
    EXPECT_EQ(said_by_pruning(), result(0, 0));
    EXPECT_TRUE(fs::is_symlink(log_file_path(3)));
}

TEST_F(Pruning, TheTokenStandsWhileItRunsAndNamesTheCutOff) {
    // A pipe for a companion of a log that cannot be made holds nothing up, so the token is
    // looked at through what a run that fails leaves behind.
    write_file(pruning_companion_path(0), fresh(1));
    fs::create_directory(log_file_path(0));
    EXPECT_EXIT(
        {
            stdout = stderr;
            prune_logging_files(120, false);
        },
        testing::ExitedWithCode(99), "Could not create needed logging file");
    EXPECT_EQ(
        file_text(pruning_token_path()),
        "pruning records before:\n   " + time_text(end_of_day_time - 120 * SECONDS_A_DAY) + "\n");
    EXPECT_EQ(file_text(pruning_companion_path(0)), fresh(1));
}

TEST_F(Pruning, AnOldTokenIsAppendedToAndRemovedInTheEnd) {
    write_file(pruning_token_path(), "pruning records before:\n   long ago\n");
    write_log(0, fresh(1));
    EXPECT_EQ(said_by_pruning(), result(0, 1));
    EXPECT_FALSE(fs::exists(pruning_token_path()));
}

TEST_F(Pruning, WithoutATokenNothingIsDone) {
    write_log(0, old(1));
    fs::create_directory(pruning_token_path());
    EXPECT_EXIT(
        {
            stdout = stderr;
            prune_logging_files(120, false);
        },
        testing::ExitedWithCode(99), "^Could not create needed pruning token\n$");
    EXPECT_EQ(file_text(log_file_path(0)), old(1));
}

TEST_F(Pruning, WithoutAScratchFileNothingIsDone) {
    write_log(0, old(1));
    fs::create_directory(pruning_scratch_path());
    write_file(pruning_scratch_path() + "/inside", "");
    EXPECT_EXIT(
        {
            stdout = stderr;
            prune_logging_files(120, false);
        },
        testing::ExitedWithCode(99), "^Could not create needed pruning file\n$");
    EXPECT_EQ(file_text(log_file_path(0)), old(1));
    EXPECT_TRUE(fs::exists(pruning_token_path()));
}

TEST_F(Pruning, TwoDoNotPruneAtOnce) {
    write_log(0, old(1));
    const int other = open(pruning_token_path().c_str(), O_WRONLY | O_CREAT, 0666);
    ASSERT_EQ(flock(other, LOCK_EX), 0);
    EXPECT_EXIT(
        {
            stdout = stderr;
            prune_logging_files(120, false);
        },
        testing::ExitedWithCode(99), "\\(east\\) are being pruned by another process");
    close(other);
    EXPECT_EQ(file_text(log_file_path(0)), old(1));
    EXPECT_EQ(said_by_pruning(), result(1, 1));
}

TEST_F(Pruning, AFileThatIsTooLargeLeavesTheLogAsItWas) {
    std::string log = old(1);
    for (int i = 0; i < 200; ++i) log += fresh(i % 100);
    write_log(0, log);
    EXPECT_EXIT(
        {
            stdout = stderr;
            std::signal(SIGXFSZ, SIG_IGN);
            limit_file_sizes();
            prune_logging_files(120, false);
        },
        testing::ExitedWithCode(99), "could not write \\(.*pruning_.txt\\): File too large");
    EXPECT_EQ(file_text(log_file_path(0)), log);
    EXPECT_FALSE(fs::exists(pruning_scratch_path()));
    EXPECT_EQ(said_by_pruning(), result(1, 201));
}

// What a run that was killed leaves behind, state by state.

TEST_F(Pruning, AnIncompleteNewTextIsThrownAway) {
    write_log(0, fresh(1));
    write_file(pruning_scratch_path(), fresh(7));
    EXPECT_EQ(said_by_pruning(), result(0, 1));
    EXPECT_EQ(all_files(), (Files{{"logging_0.txt", fresh(1)}}));
}

TEST_F(Pruning, ACompanionTakenIsAdded) {
    write_log(0, fresh(1) + old(1));
    write_file(pruning_companion_path(0) + ".taken", fresh(2) + old(2));
    write_file(pruning_companion_path(0), fresh(3));
    EXPECT_EQ(said_by_pruning(), result(2, 5));
    EXPECT_EQ(all_files(), (Files{{"logging_0.txt", fresh(1) + fresh(2) + fresh(3)}}));
}

TEST_F(Pruning, ACompleteNewTextReplacesTheLogAndWhatItHolds) {
    // What was appended to the log since comes along.
    const std::string before = fresh(1) + old(1);
    write_log(0, before + fresh(5));
    write_file(log_file_path(0) + ".new_" + std::to_string(before.size()), fresh(1) + fresh(2));
    write_file(pruning_companion_path(0) + ".taken", fresh(2));
    write_file(log_file_path(0) + ".old_3", "xxx" + fresh(2));
    said_by_pruning();
    EXPECT_EQ(all_files(), (Files{{"logging_0.txt", fresh(1) + fresh(2) + fresh(5)}}));
}

TEST_F(Pruning, ACompleteNewTextThatIsTheLogAlreadyGoes) {
    write_log(0, fresh(1));
    fs::create_hard_link(log_file_path(0), log_file_path(0) + ".new_0");
    EXPECT_EQ(said_by_pruning(), result(0, 1));
    EXPECT_EQ(all_files(), (Files{{"logging_0.txt", fresh(1)}}));
}

TEST_F(Pruning, ACompleteNewTextMakesAMissingLog) {
    write_file(log_file_path(0) + ".new_0", fresh(1));
    said_by_pruning();
    EXPECT_EQ(all_files(), (Files{{"logging_0.txt", fresh(1)}}));
}

TEST_F(Pruning, AnOldFileThatIsTheLogStillGoes) {
    write_log(0, fresh(1));
    fs::create_hard_link(log_file_path(0), log_file_path(0) + ".old_3");
    EXPECT_EQ(said_by_pruning(), result(0, 1));
    EXPECT_EQ(all_files(), (Files{{"logging_0.txt", fresh(1)}}));
}

TEST_F(Pruning, WhatWasAppendedToAnOldFileIsAdded) {
    const std::string taken_over = old(1) + fresh(1);
    write_log(0, fresh(1));
    write_file(log_file_path(0) + ".old_" + std::to_string(taken_over.size()),
               taken_over + fresh(2));
    said_by_pruning();
    EXPECT_EQ(all_files(), (Files{{"logging_0.txt", fresh(1) + fresh(2)}}));
}

TEST_F(Pruning, AnOldFileWithoutATailGoes) {
    write_log(0, fresh(1));
    write_file(log_file_path(0) + ".old_5", "12345");
    EXPECT_EQ(said_by_pruning(), result(0, 1));
    EXPECT_EQ(all_files(), (Files{{"logging_0.txt", fresh(1)}}));
}

TEST_F(Pruning, AnInterruptedOverwritingIsDoneOnceMore) {
    const std::string half =
        fresh(1) + "half of the new text and a longer rest of the old" + old(1);
    write_log(0, half + fresh(3));
    write_file(log_file_path(0) + ".overwriting_" + std::to_string(half.size()),
               fresh(1) + fresh(2));
    EXPECT_EQ(said_by_pruning(), result(0, 3));
    EXPECT_EQ(all_files(), (Files{{"logging_0.txt", fresh(1) + fresh(2) + fresh(3)}}));
}

TEST_F(Pruning, AnOverwritingThatLacksNothingButItsCutIsDone) {
    write_log(0, fresh(1) + "\n\n\n\n");
    EXPECT_EQ(said_by_pruning(), result(0, 1));
    EXPECT_EQ(all_files(), (Files{{"logging_0.txt", fresh(1)}}));
}

TEST_F(Pruning, FilesWithOtherNamesBesideTheLogAreNobodysState) {
    const Files files = {{"logging_0.txt", fresh(1)},
                         {"logging_0.txt.new_", fresh(2)},
                         {"logging_0.txt.new_07", fresh(2)},
                         {"logging_0.txt.old_5x", fresh(2)},
                         {"logging_0.txt.new_-1x", fresh(2)}};
    for (const auto& [name, text] : files) write_file(logging_dir + "/" + name, text);
    EXPECT_EQ(said_by_pruning(), result(0, 1));
    EXPECT_EQ(all_files(), files);
}

TEST_F(Pruning, WritersThatFollowTheTokenLoseNothing) {
    // Every record is a different one, so that each can be looked for.
    constexpr int PRUNES = 15;
    std::atomic<bool> stop = false;
    int written = 0;
    std::thread writer([&] {
        while (!stop) {
            const std::string path =
                fs::exists(pruning_token_path()) ? pruning_companion_path(4) : log_file_path(4);
            const int log = open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0666);
            const std::string record =
                line(written % 100, "S:user" + std::to_string(written) + "[1]-<->");
            if (log == -1 ||
                write(log, record.data(), record.size()) != static_cast<ssize_t>(record.size())) {
                ADD_FAILURE() << "the writer could not write";
            }
            close(log);
            ++written;
        }
    });
    for (int i = 0; i < PRUNES; ++i) {
        // Something to drop each time, so that the log is rewritten.
        const int log = open(log_file_path(4).c_str(), O_WRONLY | O_CREAT | O_APPEND, 0666);
        const std::string record = old(1);
        EXPECT_GT(write(log, record.data(), record.size()), 0);
        close(log);
        said_by_pruning();
    }
    stop = true;
    writer.join();
    said_by_pruning();
    std::map<std::string, int> seen;
    std::istringstream stream(file_text(log_file_path(4)));
    for (std::string one; std::getline(stream, one);) ++seen[one.substr(10)];
    EXPECT_EQ(seen.size(), static_cast<std::size_t>(written));
    for (const auto& [record, times] : seen) EXPECT_EQ(times, 1) << record;
    EXPECT_EQ(all_files().size(), 1u);
}

}  // namespace
