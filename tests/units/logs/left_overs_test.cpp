#include "logs/left_overs.h"

#include <sys/stat.h>

#include <array>
#include <cstdlib>

#include "units/logs/pruning_region.h"

// What a pruning that was ended leaves behind, state by state.

namespace {

class LeftOvers : public Pruning {
  protected:
    /// The name of a left-over: where it goes on, the file whose numbers it bears, and its size.
    static std::string left_over(const std::string& of, off_t from, const std::string& log,
                                 off_t size) {
        struct stat status = {};
        stat(log.c_str(), &status);
        return of + ".to_add_" + std::to_string(from) + "_" + std::to_string(status.st_dev) + "_" +
               std::to_string(status.st_ino) + "_" + std::to_string(size);
    }
    /// Makes one that bears its own numbers: nothing of it has been added.
    static std::string make_left_over(const std::string& of, off_t from, const std::string& text) {
        write_file(logging_dir + "/new", text);
        const std::string path = left_over(of, from, logging_dir + "/new", 0);
        fs::rename(logging_dir + "/new", path);
        return path;
    }
    static off_t size_of(const std::string& text) { return static_cast<off_t>(text.size()); }
};

TEST_F(LeftOvers, AnIncompleteNewTextIsThrownAway) {
    write_log(0, fresh(1));
    write_file(pruning_scratch_path(), fresh(7));
    EXPECT_EQ(said_by_pruning(), result(0, 1));
    EXPECT_EQ(all_files(), (Files{{"logging_0.txt", fresh(1)}}));
}

TEST_F(LeftOvers, ACompanionTakenIsAdded) {
    write_log(0, fresh(1) + old(1));
    make_left_over(pruning_companion_path(0), 0, fresh(2) + old(2));
    write_file(pruning_companion_path(0), fresh(3));
    EXPECT_EQ(said_by_pruning(), result(2, 5));
    EXPECT_EQ(all_files(), (Files{{"logging_0.txt", fresh(1) + fresh(2) + fresh(3)}}));
}

TEST_F(LeftOvers, TheTokenOfRootKeepsNobodyFromPruning) {
    if (geteuid() != 0) GTEST_SKIP() << "needs root";
    ASSERT_EQ(chmod(logging_dir.c_str(), 0777), 0);
    write_log(0, old(1));
    write_file(pruning_scratch_path() + "/inside", "");
    EXPECT_GRIPE(prune(), "Could not create needed pruning file");
    ASSERT_TRUE(fs::exists(pruning_token_path()));
    fs::remove_all(pruning_scratch_path());
    EXPECT_EQ(said_to(OPERATOR), result(1, 1));
    EXPECT_EQ(all_files(), (Files{{"logging_0.txt", ""}}));
}

TEST_F(LeftOvers, WhatHasBeenAddedIsNotAddedOnceMore) {
    // Before byte S the same records are other ones.
    const std::string before = fresh(2) + fresh(3);
    write_log(0, before + fresh(2) + fresh(3).substr(0, 20));
    write_file(left_over(pruning_companion_path(0), 0, log_file_path(0), size_of(before)),
               fresh(2) + fresh(3) + fresh(2) + fresh(4));
    said_by_pruning();
    // The torn piece of a record stays what it is: nobody can know whose it is.
    EXPECT_EQ(all_files(), (Files{{"logging_0.txt", before + fresh(2) + fresh(3).substr(0, 20) +
                                                        "\n" + fresh(3) + fresh(2) + fresh(4)}}));
}

TEST_F(LeftOvers, ToALogThatIsAnotherFileAllIsAddedAndNothingIsTouched) {
    write_file(logging_dir + "/moved_away", fresh(1));
    write_file(left_over(pruning_companion_path(0), 0, logging_dir + "/moved_away", 0),
               fresh(1) + fresh(2));
    write_log(0, fresh(1) + fresh(5));
    EXPECT_EQ(said_by_pruning(), result(0, 4));
    EXPECT_EQ(all_files(), (Files{{"logging_0.txt", fresh(1) + fresh(5) + fresh(1) + fresh(2)},
                                  {"moved_away", fresh(1)}}));
}

TEST_F(LeftOvers, ALogThatBecameShorterLosesNothing) {
    write_log(0, fresh(5));
    write_file(left_over(pruning_companion_path(0), 0, log_file_path(0), 1000),
               fresh(5) + fresh(1));
    EXPECT_EQ(said_by_pruning(), result(0, 3));
    EXPECT_EQ(file_text(log_file_path(0)), fresh(5) + fresh(5) + fresh(1));
}

TEST_F(LeftOvers, OfAnOldFileWhatIsBehindIsAdded) {
    write_log(0, fresh(1));
    const std::string before = old(1) + fresh(1);
    make_left_over(log_file_path(0), size_of(before), before + fresh(2) + old(2));
    EXPECT_EQ(said_by_pruning(), result(1, 3));
    EXPECT_EQ(all_files(), (Files{{"logging_0.txt", fresh(1) + fresh(2)}}));
}

TEST_F(LeftOvers, AnOldFileThatIsTheLogStillLosesItsOtherName) {
    write_log(0, fresh(1) + old(1));
    fs::create_hard_link(log_file_path(0), left_over(log_file_path(0), 5, log_file_path(0), 0));
    EXPECT_EQ(said_by_pruning(), result(1, 2));
    EXPECT_EQ(all_files(), (Files{{"logging_0.txt", fresh(1)}}));
}

TEST_F(LeftOvers, TheyMakeALogThatIsMissing) {
    make_left_over(pruning_companion_path(4), 0, fresh(1));
    EXPECT_EQ(said_by_pruning(), result(0, 1));
    EXPECT_EQ(all_files(), (Files{{"logging_4.txt", fresh(1)}}));
}

TEST_F(LeftOvers, ThoseWithNothingToAddNeedNoPermission) {
    if (geteuid() != 0) GTEST_SKIP() << "needs root";
    patience = LITTLE_PATIENCE;
    ASSERT_EQ(chmod(logging_dir.c_str(), 0777), 0);
    write_log(0, old(1) + fresh(1));
    make_left_over(log_file_path(0), size_of(fresh(1)), fresh(1));
    EXPECT_EQ(said_to(OPERATOR), result(1, 2));
    EXPECT_EQ(all_files(), (Files{{"logging_0.txt", fresh(1)}}));
}

TEST_F(LeftOvers, WhatIsPartlyAddedKeepsItsLogFromBeingReplaced) {
    if (geteuid() != 0) GTEST_SKIP() << "needs root";
    patience = LITTLE_PATIENCE;
    ASSERT_EQ(chmod(logging_dir.c_str(), 0777), 0);
    // Of its two records one has been added, and to this log the operator cannot add the other.
    write_log(0, old(1) + fresh(1));
    const std::string path = left_over(pruning_companion_path(0), 0, log_file_path(0), 0);
    write_file(path, fresh(1) + fresh(2));
    EXPECT_EQ(said_to(OPERATOR), left_alone(log_file_path(0), "Permission denied") +
                                     "The next pruning adds to its log what is left in (" + path +
                                     "): Permission denied.\n" + result(0, 0));
    EXPECT_EQ(said_by_pruning(), result(1, 3));
    EXPECT_EQ(all_files(), (Files{{"logging_0.txt", fresh(1) + fresh(2)}}));
}

TEST_F(LeftOvers, OfALinkedLogStandBesideIt) {
    fs::create_directory(logging_dir + "/elsewhere");
    const std::string real = logging_dir + "/elsewhere/real.txt";
    write_file(real, fresh(1));
    fs::create_symlink("elsewhere/real.txt", log_file_path(3));
    make_left_over(real, 0, fresh(2));
    EXPECT_EQ(said_by_pruning(), result(0, 2));
    EXPECT_EQ(file_text(real), fresh(1) + fresh(2));
    EXPECT_EQ(std::distance(fs::directory_iterator(logging_dir + "/elsewhere"), {}), 1);
}

TEST_F(LeftOvers, FilesWithOtherNamesAreSomebodyElses) {
    const Files files = {{"logging_0.txt", fresh(1)},
                         {"logging_0.txt.to_add_", fresh(2)},
                         {"logging_0.txt.to_add_0_1_2", fresh(2)},
                         {"logging_0.txt.to_add_0_1_2_03", fresh(2)},
                         {"logging_0.txt.to_add_0_1_2_3x", fresh(2)},
                         {"logging_0.txt.to_add_-1_1_2_3", fresh(2)},
                         {"logging__0.txt.to_add_0_1_2_3.bak", fresh(2)}};
    for (const auto& [name, text] : files) write_file(logging_dir + "/" + name, text);
    EXPECT_EQ(said_by_pruning(), result(0, 1));
    EXPECT_EQ(all_files(), files);
}

TEST_F(LeftOvers, ACompanionKeptOpenIsAddedAndDoesNotShieldItsLog) {
    if (!has_leases()) GTEST_SKIP() << "no leases here";
    patience = LITTLE_PATIENCE;
    write_log(3, old(1) + fresh(1));
    write_file(pruning_companion_path(3), fresh(2) + old(2));
    const SlowWriter writer(pruning_companion_path(3));
    writer.write(fresh(3).substr(0, 20));
    const std::string said = said_by_pruning();
    EXPECT_TRUE(said.starts_with("The next pruning adds to its log what is left in (" +
                                 pruning_companion_path(3) + ".to_add_"))
        << said;
    EXPECT_TRUE(said.ends_with("): Somebody keeps it open for writing.\n" + result(2, 4))) << said;
    EXPECT_EQ(file_text(log_file_path(3)), fresh(1) + fresh(2));
    EXPECT_FALSE(fs::exists(pruning_token_path()));
    writer.write(fresh(3).substr(20));
    writer.end();
    // Another companion has come meanwhile.
    write_file(pruning_companion_path(3), fresh(4));
    EXPECT_EQ(said_by_pruning(), result(0, 4));
    EXPECT_EQ(all_files(), (Files{{"logging_3.txt", fresh(1) + fresh(2) + fresh(3) + fresh(4)}}));
}

TEST_F(LeftOvers, WhereTheSystemDoesNotTellACompanionIsWaitedForFromItsTakingOn) {
    if (geteuid() != 0) GTEST_SKIP() << "needs root";
    ASSERT_EQ(chmod(logging_dir.c_str(), 0777), 0);
    write_log(3, fresh(1));
    write_file(pruning_companion_path(3), fresh(2));
    for (const std::string& path : {log_file_path(3), pruning_companion_path(3)}) {
        ASSERT_EQ(chmod(path.c_str(), 0666), 0);
    }
    const SlowWriter writer(pruning_companion_path(3));
    patience.latest_writer = std::chrono::seconds(1);
    // The log has been waited for by then.
    const Later record([&] {
        usleep(1'400'000);
        writer.write(fresh(3));
        writer.end();
    });
    EXPECT_EQ(said_to(OPERATOR), result(0, 3));
    EXPECT_EQ(file_text(log_file_path(3)), fresh(1) + fresh(2) + fresh(3));
}

TEST_F(LeftOvers, HowFarTheAddingHasComeIsShown) {
    write_log(0, fresh(1));
    LeftOver companion = {pruning_companion_path(0)};
    write_file(companion.path(), fresh(2));
    const Descriptor screen(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC));
    ASSERT_EQ(grantpt(screen.get()), 0);
    ASSERT_EQ(unlockpt(screen.get()), 0);
    const Descriptor terminal(open(ptsname(screen.get()), O_RDWR | O_NOCTTY | O_CLOEXEC));
    Work work = {KeptRecords(0), Progress(1'000'000, terminal.get(), std::chrono::milliseconds(0)),
                 patience.deadline()};
    const Descriptor log(open(log_file_path(0).c_str(), O_RDONLY | O_CLOEXEC));
    add_left_over(&companion, log_file_path(0), log, &work);
    EXPECT_EQ(file_text(log_file_path(0)), fresh(1) + fresh(2));
    std::array<char, 100> shown = {};
    ASSERT_GT(read(screen.get(), shown.data(), shown.size() - 1), 0);
    EXPECT_TRUE(std::string(shown.data()).starts_with("\r0 of 1 MB, ")) << shown.data();
}

TEST_F(LeftOvers, OneWhoseReadingFailsStays) {
    write_log(0, fresh(1));
    const std::string path = make_left_over(pruning_companion_path(0), 0, fresh(2));
    LeftOver companion =
        new_left_over(pruning_companion_path(0),
                      Descriptor(open(path.c_str(), O_WRONLY | O_CLOEXEC)));  // not to be read
    Work work = {KeptRecords(0), Progress(0), std::chrono::steady_clock::now()};
    const Descriptor log(open(log_file_path(0).c_str(), O_RDONLY | O_CLOEXEC));
    add_left_over(&companion, log_file_path(0), log, &work);
    EXPECT_EQ(companion.stays, "Bad file descriptor");
    EXPECT_EQ(companion.log, id_of(log));
    companion.file.close();
    EXPECT_EQ(said_by_pruning(), result(0, 2));
    EXPECT_EQ(all_files(), (Files{{"logging_0.txt", fresh(1) + fresh(2)}}));
}

// The other logs are pruned all the same, whether some of it has been added or nothing yet.
TEST_F(LeftOvers, OfALogWhoseReadingFailsStay) {
    const std::string unreadable = "/sys/class/net/lo/speed";
    const Descriptor file(open(unreadable.c_str(), O_RDONLY | O_CLOEXEC));
    char byte;
    if (!file || read(file.get(), &byte, 1) != -1) GTEST_SKIP() << "no file of that kind here";
    patience = LITTLE_PATIENCE;
    for (const int number : {3, 5}) fs::create_symlink(unreadable, log_file_path(number));
    write_log(4, old(1) + fresh(1));
    const std::string added = left_over(pruning_companion_path(3), 0, unreadable, 0);
    const std::string taken = left_over(pruning_companion_path(5), 0, log_file_path(4), 0);
    write_file(added, fresh(2));
    write_file(taken, fresh(3));
    const std::string left = left_alone(unreadable, "Invalid argument");
    const auto stays = [](const std::string& path) {
        return "The next pruning adds to its log what is left in (" + path +
               "): Invalid argument.\n";
    };
    EXPECT_EQ(said_by_pruning(), left + stays(added) + left + stays(taken) + result(1, 2));
    EXPECT_EQ(file_text(log_file_path(4)), fresh(1));
    EXPECT_EQ(file_text(added), fresh(2));
    EXPECT_EQ(file_text(taken), fresh(3));
    EXPECT_FALSE(fs::exists(pruning_token_path()));
}

TEST_F(LeftOvers, LogsMovedAwayAfterAKillLoseNothing) {
    // The first pruning was ended when the new text had become the log.
    write_log(0, fresh(1));
    const std::string before = old(1) + fresh(1);
    make_left_over(log_file_path(0), size_of(before), before);
    fs::rename(log_file_path(0), logging_dir + "/moved_away");
    std::string text;
    for (int day = 0; day < 15; ++day) text += fresh(day);
    write_log(0, text);
    EXPECT_EQ(said_by_pruning(), result(0, 15));
    EXPECT_EQ(file_text(log_file_path(0)), text);
}

TEST_F(LeftOvers, OfALogThatALinkHasComeToLeadToAreAddedToo) {
    // After the pruning was ended the log was moved to another place.
    const std::string before = old(1) + fresh(1);
    make_left_over(log_file_path(3), size_of(before), before + fresh(2));
    fs::create_directory(logging_dir + "/elsewhere");
    write_file(logging_dir + "/elsewhere/real.txt", fresh(1));
    fs::create_symlink("elsewhere/real.txt", log_file_path(3));
    EXPECT_EQ(said_by_pruning(), result(0, 2));
    EXPECT_EQ(file_text(logging_dir + "/elsewhere/real.txt"), fresh(1) + fresh(2));
}

TEST_F(LeftOvers, InAStickyDirectoryThoseOfOthersStayAndTheRestIsDone) {
    if (geteuid() != 0) GTEST_SKIP() << "needs root";
    patience = LITTLE_PATIENCE;
    ASSERT_EQ(chmod(logging_dir.c_str(), 01777), 0);
    for (const int number : {2, 3, 4}) {
        write_log(number, fresh(1) + old(1));
        ASSERT_EQ(chmod(log_file_path(number).c_str(), 0666), 0);
    }
    ASSERT_EQ(chown(log_file_path(4).c_str(), OPERATOR, OPERATOR), 0);
    const std::string nothing = make_left_over(log_file_path(2), 0, "");
    const std::string companion = make_left_over(pruning_companion_path(3), 0, fresh(2));
    std::string said;
    for (const std::string& path : {nothing, companion}) {
        said += left_alone(log_file_path(path == nothing ? 2 : 3), "Operation not permitted");
        said += "The next pruning adds to its log what is left in (" + path +
                "): Operation not permitted.\n";
    }
    EXPECT_EQ(said_to(OPERATOR), said + result(1, 2));
    EXPECT_EQ(file_text(log_file_path(4)), fresh(1));
    EXPECT_FALSE(fs::exists(pruning_token_path()));
    EXPECT_EQ(file_text(companion), fresh(2));
    EXPECT_EQ(said_by_pruning(), result(2, 6));
    EXPECT_EQ(file_text(log_file_path(3)), fresh(1) + fresh(2));
}

TEST_F(LeftOvers, WhatIsPartlyAddedComesBeforeAllOthers) {
    if (geteuid() != 0) GTEST_SKIP() << "needs root";
    patience = LITTLE_PATIENCE;
    ASSERT_EQ(chmod(logging_dir.c_str(), 0777), 0);
    write_log(0, fresh(1));
    ASSERT_EQ(chmod(log_file_path(0).c_str(), 0666), 0);
    const std::string path =
        left_over(pruning_companion_path(0), 0, log_file_path(0), size_of(fresh(1)));
    write_file(path, fresh(2));
    ASSERT_EQ(chmod(path.c_str(), 0600), 0);
    write_file(pruning_companion_path(0), fresh(2) + fresh(3));
    said_to(OPERATOR);
    said_by_pruning();
    EXPECT_EQ(all_files(), (Files{{"logging_0.txt", fresh(1) + fresh(2) + fresh(2) + fresh(3)}}));
}

TEST_F(LeftOvers, ACompanionThatIsItsLogIsNotAddedToIt) {
    write_log(0, old(1) + fresh(1));
    write_log(1, old(1) + fresh(1));
    fs::create_symlink("logging_0.txt", pruning_companion_path(0));
    fs::create_hard_link(log_file_path(1), pruning_companion_path(1));
    write_log(2, old(1) + fresh(1));
    const Files before = all_files();
    const std::string said = left_alone(log_file_path(0), "It is its own companion") +
                             left_alone(log_file_path(1), "It is its own companion");
    EXPECT_EQ(said_by_pruning(), said + result(1, 2));
    EXPECT_EQ(said_by_pruning(), said + result(0, 1));
    Files after = before;
    after["logging_2.txt"] = fresh(1);
    EXPECT_EQ(all_files(), after);
}

}  // namespace
