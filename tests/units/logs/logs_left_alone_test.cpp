#include <sys/file.h>

#include <algorithm>

#include "base/descriptor.h"
#include "units/logs/pruning_region.h"

// Logs behind links, and logs and files that are to be left as they are.

namespace {

class LogsLeftAlone : public Pruning {
  protected:
    static void give(const std::string& path, uid_t user) {
        ASSERT_EQ(lchown(path.c_str(), user, user), 0);
    }
    static bool is_root() { return geteuid() == 0; }
    static std::string elsewhere(const std::string& name) {
        fs::create_directory(logging_dir + "/elsewhere");
        return logging_dir + "/elsewhere/" + name;
    }
    static std::size_t files_elsewhere() {
        return static_cast<std::size_t>(
            std::distance(fs::directory_iterator(logging_dir + "/elsewhere"), {}));
    }
};

TEST_F(LogsLeftAlone, ALinkToALogStaysALink) {
    fs::create_directory(logging_dir + "/elsewhere");
    write_file(logging_dir + "/elsewhere/real.txt", old(1) + fresh(1));
    fs::create_symlink("elsewhere/real.txt", log_file_path(3));
    write_file(pruning_companion_path(3), fresh(2));
    EXPECT_EQ(said_by_pruning(), result(1, 3));
    EXPECT_TRUE(fs::is_symlink(log_file_path(3)));
    EXPECT_EQ(file_text(logging_dir + "/elsewhere/real.txt"), fresh(1) + fresh(2));
    EXPECT_EQ(std::distance(fs::directory_iterator(logging_dir + "/elsewhere"), {}), 1);
}

TEST_F(LogsLeftAlone, ACompanionMakesTheLogThatALinkLeadsTo) {
    fs::create_directory(logging_dir + "/elsewhere");
    fs::create_symlink("elsewhere/real.txt", log_file_path(3));
    write_file(pruning_companion_path(3), fresh(1));
    EXPECT_EQ(said_by_pruning(), result(0, 1));
    EXPECT_TRUE(fs::is_symlink(log_file_path(3)));
    EXPECT_EQ(file_text(logging_dir + "/elsewhere/real.txt"), fresh(1));
}

TEST_F(LogsLeftAlone, ALinkThatLeadsNowhereIsSkipped) {
    write_log(0, old(1));
    write_file(logging_dir + "/file", "");
    fs::create_symlink("missing/real.txt", log_file_path(1));
    fs::create_symlink("file/real.txt", log_file_path(2));
    fs::create_symlink("logging_3.txt/real.txt", log_file_path(3));
    fs::create_symlink(std::string(300, 'x'), log_file_path(4));
    write_log(5, old(1));
    const std::string said = said_by_pruning();
    // A log that is not there is none.
    EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 4) << said;
    EXPECT_NE(said.find("/real.txt) was left as it is: Too many levels"), std::string::npos);
    EXPECT_TRUE(said.ends_with(": File name too long.\n" + result(2, 2))) << said;
    for (int number = 1; number <= 4; ++number) EXPECT_TRUE(fs::is_symlink(log_file_path(number)));
}

TEST_F(LogsLeftAlone, ACompanionWithoutAPlaceForItsLogIsKept) {
    fs::create_symlink("missing/real.txt", log_file_path(1));
    write_file(pruning_companion_path(1), fresh(1));
    EXPECT_GRIPE(prune(), "Could not create needed logging file");
    EXPECT_EQ(file_text(pruning_companion_path(1)), fresh(1));
    fs::create_directory(logging_dir + "/missing");
    EXPECT_EQ(said_by_pruning(), result(0, 1));
    EXPECT_EQ(file_text(logging_dir + "/missing/real.txt"), fresh(1));
}

TEST_F(LogsLeftAlone, DirectoriesUnderALogsNameAreLeftAlone) {
    fs::create_directory(log_file_path(2));
    const mode_t mode = mode_of(log_file_path(2));
    EXPECT_EQ(said_by_pruning(), left_alone(log_file_path(2), "Not a regular file") + result(0, 0));
    EXPECT_EQ(mode_of(log_file_path(2)), mode);
}

TEST_F(LogsLeftAlone, ALinkThatLeadsInARingIsSkipped) {
    fs::create_symlink("logging_4.txt", log_file_path(3));
    fs::create_symlink("logging_3.txt", log_file_path(4));
    const std::string said = said_by_pruning();
    EXPECT_NE(said.find("Too many levels of symbolic links"), std::string::npos);
    EXPECT_TRUE(said.ends_with(".\n" + result(0, 0))) << said;
    EXPECT_TRUE(fs::is_symlink(log_file_path(3)));
}

TEST_F(LogsLeftAlone, ALeftOverOfALogThatIsLeftAloneSaysWhyItStays) {
    fs::create_symlink("logging_3.txt", log_file_path(3));
    const std::string left_over = pruning_companion_path(3) + ".to_add_0_1_2_3";
    std::ofstream(left_over) << fresh(0);
    const std::string said = said_by_pruning();
    EXPECT_NE(said.find("(" + left_over + "): Too many levels of symbolic links."),
              std::string::npos)
        << said;
    EXPECT_EQ(file_text(left_over), fresh(0));
}

TEST_F(LogsLeftAlone, OtherNamesOfALogKeepTheOldText) {
    write_log(3, old(1) + fresh(1));
    fs::create_hard_link(log_file_path(3), logging_dir + "/twin");
    write_file(pruning_companion_path(3), fresh(2));
    EXPECT_EQ(said_by_pruning(), result(1, 3));
    EXPECT_EQ(all_files(),
              (Files{{"logging_3.txt", fresh(1) + fresh(2)}, {"twin", old(1) + fresh(1)}}));
}

TEST_F(LogsLeftAlone, AFileUnderAnotherNameDoesNotBecomePublic) {
    write_file(logging_dir + "/private", "");
    ASSERT_EQ(chmod((logging_dir + "/private").c_str(), 0600), 0);
    fs::create_hard_link(logging_dir + "/private", log_file_path(3));
    EXPECT_EQ(said_by_pruning(), result(0, 0));
    EXPECT_EQ(mode_of(logging_dir + "/private"), mode_t{0600});
}

TEST_F(LogsLeftAlone, LogsOfOthersAreReplacedToo) {
    if (!is_root()) GTEST_SKIP() << "needs root";
    patience = LITTLE_PATIENCE;
    write_log(3, old(1) + fresh(1));
    give(log_file_path(3), SOMEBODY_ELSE);
    ASSERT_EQ(chmod(logging_dir.c_str(), 0777), 0);
    const ino_t before = inode_of(log_file_path(3));
    EXPECT_EQ(said_to(OPERATOR), result(1, 2));
    EXPECT_NE(inode_of(log_file_path(3)), before);
    EXPECT_EQ(mode_of(log_file_path(3)), mode_t{0666});
    EXPECT_EQ(all_files(), (Files{{"logging_3.txt", fresh(1)}}));
}

TEST_F(LogsLeftAlone, ALogThatIsItsOwnersOnlyBecomesEverybodys) {
    if (!is_root()) GTEST_SKIP() << "needs root";
    patience = LITTLE_PATIENCE;
    write_log(3, fresh(1));
    write_file(pruning_companion_path(3), fresh(2));
    ASSERT_EQ(chmod(logging_dir.c_str(), 0777), 0);
    EXPECT_EQ(said_to(OPERATOR), result(0, 2));
    EXPECT_EQ(mode_of(log_file_path(3)), mode_t{0666});
    EXPECT_EQ(all_files(), (Files{{"logging_3.txt", fresh(1) + fresh(2)}}));
}

TEST_F(LogsLeftAlone, InAStickyDirectoryTheLogsOfOthersStayAndTheRestIsDone) {
    if (!is_root()) GTEST_SKIP() << "needs root";
    patience = LITTLE_PATIENCE;
    ASSERT_EQ(chmod(logging_dir.c_str(), 01777), 0);
    for (const int number : {3, 4}) {
        write_log(number, old(1) + fresh(1));
        ASSERT_EQ(chmod(log_file_path(number).c_str(), 0666), 0);
    }
    give(log_file_path(4), OPERATOR);
    EXPECT_EQ(said_to(OPERATOR),
              left_alone(log_file_path(3), "Operation not permitted") + result(1, 2));
    EXPECT_EQ(all_files(),
              (Files{{"logging_3.txt", old(1) + fresh(1)}, {"logging_4.txt", fresh(1)}}));
}

TEST_F(LogsLeftAlone, InADirectoryWithoutPermissionTheyStayAndTheRestIsDone) {
    if (!is_root()) GTEST_SKIP() << "needs root";
    patience = LITTLE_PATIENCE;
    ASSERT_EQ(chmod(logging_dir.c_str(), 0777), 0);
    write_file(elsewhere("real.txt"), old(1) + fresh(1));
    ASSERT_EQ(chmod(elsewhere("real.txt").c_str(), 0666), 0);
    fs::create_symlink("elsewhere/real.txt", log_file_path(3));
    write_file(pruning_companion_path(3), fresh(2));
    write_log(4, old(1) + fresh(1));
    EXPECT_EQ(said_to(OPERATOR),
              left_alone(elsewhere("real.txt"), "Permission denied") + result(1, 3));
    // What can be done without a rename is done.
    EXPECT_EQ(file_text(elsewhere("real.txt")), old(1) + fresh(1) + fresh(2));
    EXPECT_EQ(file_text(log_file_path(4)), fresh(1));
    EXPECT_FALSE(fs::exists(pruning_token_path()));
    EXPECT_EQ(files_elsewhere(), 1u);
}

TEST_F(LogsLeftAlone, ALogThatCannotBeReadIsNamed) {
    if (!is_root()) GTEST_SKIP() << "needs root";
    patience = LITTLE_PATIENCE;
    ASSERT_EQ(chmod(logging_dir.c_str(), 0777), 0);
    write_log(3, old(1));
    ASSERT_EQ(chmod(log_file_path(3).c_str(), 0600), 0);
    write_log(4, old(1));
    EXPECT_EQ(said_to(OPERATOR), left_alone(log_file_path(3), "Permission denied") + result(1, 1));
    EXPECT_EQ(file_text(log_file_path(3)), old(1));
}

TEST_F(LogsLeftAlone, ALogWhoseReadingFailsIsNamed) {
    // Can be opened, and says that it holds something.
    const std::string unreadable = "/sys/class/net/lo/speed";
    const Descriptor file(open(unreadable.c_str(), O_RDONLY | O_CLOEXEC));
    char byte;
    if (!file || read(file.get(), &byte, 1) != -1) GTEST_SKIP() << "no file of that kind here";
    patience = LITTLE_PATIENCE;
    fs::create_symlink(unreadable, log_file_path(3));
    write_log(4, old(1) + fresh(1));
    EXPECT_EQ(said_by_pruning(), left_alone(unreadable, "Invalid argument") + result(1, 2));
    EXPECT_EQ(file_text(log_file_path(4)), fresh(1));
    EXPECT_FALSE(fs::exists(pruning_token_path()));
}

TEST_F(LogsLeftAlone, WhoIsLeftAloneIsNamedOnStandardErrorToo) {
    fs::create_directory(log_file_path(2));
    testing::internal::CaptureStderr();
    said_by_pruning();
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "gatescope: " + left_alone(log_file_path(2), "Not a regular file"));
}

TEST_F(LogsLeftAlone, ALogThatSomebodyKeepsOpenStaysAsItIs) {
    if (!has_leases()) GTEST_SKIP() << "no leases here";
    patience = LITTLE_PATIENCE;
    write_log(3, old(1) + fresh(1));
    write_log(4, old(1) + fresh(1));
    write_file(pruning_companion_path(3), fresh(2));
    const SlowWriter writer(log_file_path(3));
    EXPECT_EQ(said_by_pruning(),
              left_alone(log_file_path(3), "Somebody keeps it open for writing") + result(1, 3));
    writer.write(fresh(3));
    writer.end();
    EXPECT_EQ(file_text(log_file_path(3)), old(1) + fresh(1) + fresh(2) + fresh(3));
    EXPECT_EQ(said_by_pruning(), result(1, 5));
    EXPECT_EQ(all_files(), (Files{{"logging_3.txt", fresh(1) + fresh(2) + fresh(3)},
                                  {"logging_4.txt", fresh(1)}}));
}

TEST_F(LogsLeftAlone, ARecordThatStaysHalfWrittenIsNotTorn) {
    if (!has_leases()) GTEST_SKIP() << "no leases here";
    patience = LITTLE_PATIENCE;
    write_log(3, old(1));
    write_file(pruning_companion_path(3), fresh(2));
    const SlowWriter writer(log_file_path(3));
    writer.write(fresh(1).substr(0, 15));
    said_by_pruning();
    writer.write(fresh(1).substr(15));
    writer.end();
    EXPECT_EQ(file_text(log_file_path(3)), old(1) + fresh(1));
    EXPECT_EQ(said_by_pruning(), result(1, 3));
    EXPECT_EQ(all_files(), (Files{{"logging_3.txt", fresh(1) + fresh(2)}}));
}

TEST_F(LogsLeftAlone, ALinkThatSomebodyElsePlantedIsNotFollowed) {
    if (!is_root()) GTEST_SKIP() << "needs root";
    write_file(elsewhere("secret"), old(1));
    ASSERT_EQ(chmod(elsewhere("secret").c_str(), 0600), 0);
    fs::create_symlink("elsewhere/secret", log_file_path(5));
    give(log_file_path(5), SOMEBODY_ELSE);
    write_file(pruning_companion_path(5), fresh(1));
    fs::create_symlink("elsewhere/secret", pruning_companion_path(6));
    give(pruning_companion_path(6), SOMEBODY_ELSE);
    write_log(7, old(1));
    EXPECT_EQ(said_by_pruning(),
              left_alone(elsewhere("secret"), "The link to it belongs to somebody else") +
                  left_alone(elsewhere("secret"), "The link to it belongs to somebody else") +
                  result(1, 1));
    EXPECT_EQ(file_text(elsewhere("secret")), old(1));
    EXPECT_EQ(mode_of(elsewhere("secret")), mode_t{0600});
    EXPECT_EQ(file_text(pruning_companion_path(5)), fresh(1));
    EXPECT_FALSE(fs::exists(log_file_path(6)));
}

TEST_F(LogsLeftAlone, TheLinkOfTheOwnerOfALogIsFollowed) {
    if (!is_root()) GTEST_SKIP() << "needs root";
    write_file(elsewhere("real.txt"), old(1) + fresh(1));
    fs::create_symlink("elsewhere/real.txt", log_file_path(5));
    give(log_file_path(5), SOMEBODY_ELSE);
    give(elsewhere("real.txt"), SOMEBODY_ELSE);
    EXPECT_EQ(said_by_pruning(), result(1, 2));
    EXPECT_EQ(file_text(elsewhere("real.txt")), fresh(1));
}

TEST_F(LogsLeftAlone, PipesAndDevicesHangNothing) {
    for (const std::string& path :
         {log_file_path(3), pruning_companion_path(4), pruning_scratch_path()}) {
        ASSERT_EQ(mkfifo(path.c_str(), 0666), 0);
    }
    fs::create_symlink("/dev/zero", log_file_path(5));
    ASSERT_EQ(mkfifo((log_file_path(6) + ".to_add_0_1_2_3").c_str(), 0666), 0);
    write_log(7, old(1));
    EXPECT_EQ(said_by_pruning(), left_alone(log_file_path(3), "Not a regular file") +
                                     left_alone(pruning_companion_path(4), "Not a regular file") +
                                     left_alone("/dev/zero", "Not a regular file") + result(1, 1));
}

TEST_F(LogsLeftAlone, APipeForATokenHangsNothing) {
    ASSERT_EQ(mkfifo(pruning_token_path().c_str(), 0666), 0);
    EXPECT_GRIPE(prune(), "Could not create needed pruning token");
    const int reader = open(pruning_token_path().c_str(), O_RDONLY | O_NONBLOCK);
    EXPECT_GRIPE(prune(), "Could not create needed pruning token");
    close(reader);
}

TEST_F(LogsLeftAlone, ScratchFilesOfLinkedLogsAreTheirOwn) {
    write_file(elsewhere("real.txt"), old(1) + fresh(1));
    write_file(elsewhere("pruning_.txt"), "of another region");
    write_file(elsewhere("real.txt.pruning_"), "of a killed pruning");
    fs::create_symlink("elsewhere/real.txt", log_file_path(3));
    EXPECT_EQ(said_by_pruning(), result(1, 2));
    EXPECT_EQ(file_text(elsewhere("pruning_.txt")), "of another region");
    EXPECT_EQ(files_elsewhere(), 2u);
}

TEST_F(LogsLeftAlone, ALogThatAnotherPruningWorksOnIsItsOwn) {
    patience = LITTLE_PATIENCE;
    write_log(3, old(1) + fresh(1));
    const int other = open(log_file_path(3).c_str(), O_RDONLY);
    ASSERT_EQ(flock(other, LOCK_EX), 0);
    EXPECT_EQ(said_by_pruning(),
              left_alone(log_file_path(3), "Another process is pruning it") + result(0, 0));
    close(other);
    EXPECT_EQ(said_by_pruning(), result(1, 2));
}

TEST_F(LogsLeftAlone, ALinkThatIsPlantedAsACompanionMeanwhileIsNotFollowed) {
    if (!has_leases()) GTEST_SKIP() << "no leases here";
    patience = {std::chrono::milliseconds(500)};
    write_file(elsewhere("secret"), fresh(1));
    // Holds the pruning up, so that the link comes when links have been looked at.
    const SlowWriter writer(log_file_path(0));
    const Later link([] { fs::create_symlink("elsewhere/secret", pruning_companion_path(5)); });
    const std::string said = said_by_pruning();
    writer.end();
    EXPECT_EQ(said, left_alone(log_file_path(0), "Somebody keeps it open for writing") +
                        left_alone(pruning_companion_path(5), "Another file took its place") +
                        result(0, 0));
    EXPECT_FALSE(fs::exists(log_file_path(5)));
    EXPECT_TRUE(fs::is_symlink(pruning_companion_path(5)));
}

TEST_F(LogsLeftAlone, TheyAreNamedToWhereTheTokenStays) {
    if (!has_leases()) GTEST_SKIP() << "no leases here";
    patience = {std::chrono::milliseconds(500)};
    const SlowWriter writer(log_file_path(0));
    const auto prune_while_the_token_is_replaced = [] {
        const Later other_token([] {
            fs::remove(pruning_token_path());
            fs::create_directory(pruning_token_path());
        });
        prune();
    };
    EXPECT_GRIPE(prune_while_the_token_is_replaced(),
                 left_alone(log_file_path(0), "Somebody keeps it open for writing") +
                     "ERROR: The logs are pruned, but the pruning token (" + pruning_token_path() +
                     ") could not be removed: Is a directory.  New records are kept "
                     "aside until it is.");
    writer.end();
}

}  // namespace
