#include <atomic>
#include <csignal>
#include <vector>

#include "units/pruning/pruning_region.h"

namespace gatescope {
namespace {

TEST_F(Pruning, RemovesOldRecordsAndKeepsTheOthers) {
    write_log(0, old(1) + fresh(1) + old(2) + fresh(2));
    write_log(20, old(3));
    EXPECT_EQ(output_of_prune(), result(3, 5));
    EXPECT_EQ(all_files(), (Files{{"logging_0.txt", fresh(1) + fresh(2)}, {"logging_20.txt", ""}}));
}

TEST_F(Pruning, KeepsARecordAtTheCutOff) {
    const std::int64_t cut_off = end_of_day_time - 120 * SECONDS_A_DAY;
    write_log(1, record_at(cut_off, "S:a[1]-<->\n") + record_at(cut_off - 1, "S:a[1]-<->\n"));
    EXPECT_EQ(output_of_prune(), result(1, 2));
    EXPECT_EQ(file_text(log_file_path(1)), record_at(cut_off, "S:a[1]-<->\n"));
}

TEST_F(Pruning, CountsAndRemovesAWordWithoutANumber) {
    write_log(0, "rubbish here\n" + fresh(1));
    EXPECT_EQ(output_of_prune(), result(2, 3));
    EXPECT_EQ(file_text(log_file_path(0)), fresh(1));
}

TEST_F(Pruning, RemovesAllUpToTheEndOfTodayWithZeroDays) {
    const std::string tomorrow = record_at(end_of_day_time + 1, "S:a[1]-<->\n");
    const std::string midnight = record_at(end_of_day_time, "S:a[1]-<->\n");
    write_log(0, fresh(0) + midnight + tomorrow);
    EXPECT_EQ(output_of_prune(0), result(1, 3, 0));
    EXPECT_EQ(file_text(log_file_path(0)), midnight + tomorrow);
}

TEST_F(Pruning, KeepsUpTo255Days) {
    write_log(0, line(254, "S:a[1]-<->") + line(256, "S:a[1]-<->"));
    EXPECT_EQ(output_of_prune(255), result(1, 2, 255));
}

TEST_F(Pruning, CreatesNothingWithoutLogs) {
    EXPECT_EQ(output_of_prune(), result(0, 0));
    EXPECT_EQ(all_files(), Files{});
}

TEST_F(Pruning, WritesEachRecordOnItsOwnLine) {
    const std::string one = record_at(noon(1), "S:a[1]-<->");
    const std::string two = record_at(noon(2), "S:b[1]-<->");
    write_log(0, "  " + one + " \t" + two + "\r\n\n" + one);
    EXPECT_EQ(output_of_prune(), result(0, 3));
    EXPECT_EQ(file_text(log_file_path(0)), one + "\n" + two + "\n" + one + "\n");
}

TEST_F(Pruning, KeepsTheInodeOfALogWithNothingToRemove) {
    write_log(0, fresh(1) + fresh(2));
    ASSERT_EQ(chmod(log_file_path(0).c_str(), 0666), 0);
    const ino_t before = inode_of(log_file_path(0));
    EXPECT_EQ(output_of_prune(), result(0, 2));
    EXPECT_EQ(inode_of(log_file_path(0)), before);
    EXPECT_EQ(file_text(log_file_path(0)), fresh(1) + fresh(2));
}

TEST_F(Pruning, MakesLogsWritableForAll) {
    write_log(0, old(1) + fresh(1));
    write_log(1, fresh(1));
    ASSERT_EQ(chmod(log_file_path(0).c_str(), 0600), 0);
    ASSERT_EQ(chmod(log_file_path(1).c_str(), 0640), 0);
    output_of_prune();
    EXPECT_EQ(mode_of(log_file_path(0)), mode_t{0666});
    EXPECT_EQ(mode_of(log_file_path(1)), mode_t{0666});
}

TEST_F(Pruning, MergesCompanionsAfterTheirLogs) {
    write_log(0, fresh(1) + old(1));
    write_file(pruning_companion_path(0), old(2) + fresh(3) + " " + fresh(4));
    write_log(1, fresh(5));
    write_file(pruning_companion_path(1), fresh(6));
    EXPECT_EQ(output_of_prune(), result(2, 7));
    EXPECT_EQ(all_files(), (Files{{"logging_0.txt", fresh(1) + fresh(3) + fresh(4)},
                                  {"logging_1.txt", fresh(5) + fresh(6)}}));
}

TEST_F(Pruning, CreatesAMissingLogFromItsCompanion) {
    write_file(pruning_companion_path(9), fresh(1) + old(1));
    const mode_t mask = umask(022);
    EXPECT_EQ(output_of_prune(), result(1, 2));
    umask(mask);
    EXPECT_EQ(all_files(), (Files{{"logging_9.txt", fresh(1)}}));
    EXPECT_EQ(mode_of(log_file_path(9)), mode_t{0666});
}

TEST_F(Pruning, RemovesAnEmptyCompanion) {
    write_log(0, fresh(1));
    write_file(pruning_companion_path(0), "");
    EXPECT_EQ(output_of_prune(), result(0, 1));
    EXPECT_EQ(all_files(), (Files{{"logging_0.txt", fresh(1)}}));
}

TEST_F(Pruning, PrunesOnlyFiles0To20) {
    write_log(21, old(1));
    write_file(pruning_companion_path(21), old(1));
    EXPECT_EQ(output_of_prune(), result(0, 0));
    EXPECT_EQ(all_files(), (Files{{"logging_21.txt", old(1)}, {"logging__21.txt", old(1)}}));
}

TEST_F(Pruning, ShowsTheResultInADialog) {
    EXPECT_EQ(output_of_prune(120, true), result(0, 0) + "\n");
    write_log(0, old(1));
    EXPECT_EQ(output_of_prune(120, true), result(1, 1) + "\n");
}

TEST_F(Pruning, WaitsForAHalfWrittenRecord) {
    if (!has_leases()) GTEST_SKIP() << "no leases here";
    write_log(3, old(1));
    const SlowWriter writer(log_file_path(3));
    writer.write(fresh(1).substr(0, 15));
    {
        const Later rest([&] {
            writer.write(fresh(1).substr(15));
            writer.end();
        });
        EXPECT_EQ(output_of_prune(), result(1, 2));
    }
    EXPECT_EQ(all_files(), (Files{{"logging_3.txt", fresh(1)}}));
}

TEST_F(Pruning, WaitsForAWriterOfTheCompanion) {
    if (!has_leases()) GTEST_SKIP() << "no leases here";
    const SlowWriter writer(pruning_companion_path(3));
    {
        const Later record([&] {
            usleep(300'000);
            writer.write(fresh(1));
            writer.end();
        });
        EXPECT_EQ(output_of_prune(), result(0, 1));
    }
    EXPECT_EQ(all_files(), (Files{{"logging_3.txt", fresh(1)}}));
}

TEST_F(Pruning, LosesNoRecordOfAWriterThatNeverPauses) {
    if (!has_leases()) GTEST_SKIP() << "no leases here";
    patience = SHORT_PATIENCE;
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
    output_of_prune();
    stop = true;
    writing.join();
    writer.end();
    output_of_prune();
    std::map<std::string, int> seen;
    std::istringstream stream(file_text(log_file_path(3)));
    for (std::string one; std::getline(stream, one);) ++seen[one];
    EXPECT_EQ(seen.size(), static_cast<std::size_t>(written) + 1);
    for (const auto& [record, times] : seen) EXPECT_EQ(times, 1) << record;
    EXPECT_EQ(all_files().size(), 1u);
}

TEST_F(Pruning, CreatesTheLogInADirectoryWithATrailingSlash) {
    const std::string directory = logging_dir;
    logging_dir += "/";
    write_file(pruning_companion_path(5), fresh(1));
    EXPECT_EQ(output_of_prune(), result(0, 1));
    write_file(pruning_companion_path(5), fresh(2));
    EXPECT_EQ(output_of_prune(), result(0, 2));
    EXPECT_EQ(all_files(), (Files{{"logging_5.txt", fresh(1) + fresh(2)}}));
    logging_dir = directory;
}

TEST_F(Pruning, CreatesATokenThatNamesTheCutOff) {
    // A run that fails leaves the token.
    write_file(pruning_companion_path(0), fresh(1));
    fs::create_directory(log_file_path(0));
    EXPECT_GRIPE(prune(), "Could not create needed logging file");
    EXPECT_EQ(
        file_text(pruning_token_path()),
        "pruning records before:\n   " + time_text(end_of_day_time - 120 * SECONDS_A_DAY) + "\n");
    EXPECT_EQ(file_text(pruning_companion_path(0)), fresh(1));
}

TEST_F(Pruning, RemovesAnExistingToken) {
    write_file(pruning_token_path(), "pruning records before:\n   long ago\n");
    write_log(0, fresh(1));
    EXPECT_EQ(output_of_prune(), result(0, 1));
    EXPECT_FALSE(fs::exists(pruning_token_path()));
}

TEST_F(Pruning, LosesNoRecordOfWritersThatFollowTheToken) {
    // All records differ, so that each can be found.
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
        // An old record each time, so that the log is rewritten.
        const int log = open(log_file_path(4).c_str(), O_WRONLY | O_CREAT | O_APPEND, 0666);
        const std::string record = old(1);
        EXPECT_GT(write(log, record.data(), record.size()), 0);
        close(log);
        output_of_prune();
    }
    stop = true;
    writer.join();
    output_of_prune();
    std::map<std::string, int> seen;
    std::istringstream stream(file_text(log_file_path(4)));
    for (std::string one; std::getline(stream, one);) ++seen[one.substr(10)];
    EXPECT_EQ(seen.size(), static_cast<std::size_t>(written));
    for (const auto& [record, times] : seen) EXPECT_EQ(times, 1) << record;
    EXPECT_EQ(all_files().size(), 1u);
}

TEST_F(Pruning, MergesACompanionCreatedDuringTheTokensRemoval) {
    write_log(3, fresh(1));
    write_file(pruning_companion_path(3), fresh(2));
    // Long enough for the writer to run on a busy machine.
    patience.pause = std::chrono::milliseconds(300);
    // The writer creates the companion right after the removal of the token.
    const Later writer([] {
        while (!fs::exists(pruning_token_path())) usleep(100);
        while (fs::exists(pruning_token_path())) usleep(100);
        write_file(pruning_companion_path(3), fresh(3));
    });
    const SlowWriter slow(pruning_companion_path(3));
    const Later end([&] {
        usleep(200'000);
        slow.end();
    });
    EXPECT_EQ(output_of_prune(), result(0, 3));
    EXPECT_EQ(all_files(), (Files{{"logging_3.txt", fresh(1) + fresh(2) + fresh(3)}}));
}

TEST_F(Pruning, KeepsTheDefaultActionOfSigio) {
    write_log(3, old(1) + fresh(1));
    output_of_prune();
    struct sigaction action = {};
    sigaction(SIGIO, nullptr, &action);
    EXPECT_EQ(action.sa_handler, SIG_DFL);
}

TEST_F(Pruning, SurvivesWritersThatBreakItsLease) {
    if (!has_leases()) GTEST_SKIP() << "no leases here";
    std::atomic<bool> stop = false;
    write_log(3, fresh(1));
    std::thread opening([&] {
        while (!stop) close(open(log_file_path(3).c_str(), O_WRONLY | O_APPEND));
    });
    for (int i = 0; i < 20; ++i) EXPECT_EQ(output_of_prune(), result(0, 1));
    stop = true;
    opening.join();
}

}  // namespace
}  // namespace gatescope
