#include "pruning/left_overs.h"

#include <csignal>

#include "base/descriptor.h"
#include "base/file_identity.h"
#include "messages/log_texts.h"
#include "support/few_descriptors.h"
#include "units/pruning/pruning_region.h"

namespace gatescope {

// The files that an earlier pruning has left, state by state.

namespace {

class LeftOvers : public Pruning {
  protected:
    /// Creates a ready file for the first `size` bytes of the present log.
    static std::string make_ready_file(int number, std::size_t size, const std::string& text) {
        const Descriptor log(open(log_file_path(number).c_str(), O_RDONLY | O_CLOEXEC));
        std::uint64_t fingerprint = 0;
        EXPECT_EQ(fingerprint_of(log.get(), static_cast<off_t>(size), &fingerprint), 0);
        const std::string path = log_file_path(number) + ".ready_" + std::to_string(size) + "_" +
                                 std::to_string(fingerprint);
        write_file(path, text);
        EXPECT_EQ(chmod(path.c_str(), 0666), 0);
        return path;
    }
};

TEST_F(LeftOvers, RemovesTheScratchFile) {
    write_log(0, fresh(1));
    write_file(pruning_scratch_path(), fresh(7));
    EXPECT_EQ(output_of_prune(), result(0, 1));
    EXPECT_EQ(all_files(), (Files{{"logging_0.txt", fresh(1)}}));
}

TEST_F(LeftOvers, RemovesTheScratchFileWhenNoLogIsUsable) {
    write_file(pruning_scratch_path(), fresh(7));
    fs::create_symlink("elsewhere", log_file_path(0));
    output_of_prune();
    EXPECT_FALSE(fs::exists(pruning_scratch_path()));
}

TEST_F(LeftOvers, MergesAllOfTakenFiles) {
    write_log(0, fresh(1) + old(1));
    write_file(taken(0), fresh(2) + old(2));
    write_file(taken(0, 7), fresh(3));
    write_file(pruning_companion_path(0), fresh(4));
    EXPECT_EQ(output_of_prune(), result(2, 6));
    std::string text = file_text(log_file_path(0));
    for (int i = 1; i <= 4; ++i) EXPECT_NE(text.find(fresh(i)), std::string::npos) << i;
    EXPECT_EQ(text.size(), 4 * fresh(1).size());
    EXPECT_EQ(all_files().size(), 1u);
}

TEST_F(LeftOvers, MergesMoreTakenFilesThanDescriptors) {
    for (int k = 0; k < 30; ++k) write_file(taken(0, k), fresh(k));
    const FewDescriptors few(10);
    EXPECT_EQ(output_of_prune(), result(0, 30));
    EXPECT_EQ(file_text(log_file_path(0)).size(), 30 * fresh(1).size());
    EXPECT_EQ(all_files().size(), 1u);
}

TEST_F(LeftOvers, MergesWhatWasAppendedToAnOldFile) {
    write_log(0, fresh(1));
    const std::string before = old(1) + fresh(1);
    write_file(old_file(0, before.size()), before + fresh(2) + old(2));
    EXPECT_EQ(output_of_prune(), result(1, 3));
    EXPECT_EQ(all_files(), (Files{{"logging_0.txt", fresh(1) + fresh(2)}}));
}

TEST_F(LeftOvers, RemovesThoseWithoutNewRecordsAndKeepsTheInodeOfTheLog) {
    write_log(0, fresh(1));
    ASSERT_EQ(chmod(log_file_path(0).c_str(), 0666), 0);
    write_file(old_file(0, 5), "12345");
    write_file(old_file(0, 500), "shorter");
    write_file(taken(0), "");
    const ino_t before = inode_of(log_file_path(0));
    EXPECT_EQ(output_of_prune(), result(0, 1));
    EXPECT_EQ(inode_of(log_file_path(0)), before);
    EXPECT_EQ(all_files(), (Files{{"logging_0.txt", fresh(1)}}));
}

TEST_F(LeftOvers, RemovesHardLinksOfTheLogWithoutMergingThem) {
    write_log(0, fresh(1) + old(1));
    fs::create_hard_link(log_file_path(0), old_file(0, 5));
    write_log(1, fresh(1));
    fs::create_hard_link(log_file_path(1), pruning_companion_path(1));
    EXPECT_EQ(output_of_prune(), result(1, 3));
    EXPECT_EQ(all_files(), (Files{{"logging_0.txt", fresh(1)}, {"logging_1.txt", fresh(1)}}));
}

TEST_F(LeftOvers, RenamesAReadyFileOverItsLog) {
    const std::string before = old(1) + fresh(1);
    write_log(0, before + fresh(5));
    make_ready_file(0, before.size(), fresh(1) + fresh(2));
    // The ready file includes these.
    write_file(taken(0), fresh(2));
    write_file(old_file(0, 3), "abc" + fresh(9));
    EXPECT_EQ(output_of_prune(), result(0, 3));
    EXPECT_EQ(all_files(), (Files{{"logging_0.txt", fresh(1) + fresh(2) + fresh(5)}}));
}

TEST_F(LeftOvers, MergesAReadyFileWhenItsLogWasRotated) {
    write_log(0, old(1) + fresh(1));
    const std::string ready = make_ready_file(0, (old(1) + fresh(1)).size(), fresh(1) + fresh(2));
    write_file(taken(0), fresh(2));
    // Rotated away.
    write_log(0, fresh(5));
    EXPECT_EQ(output_of_prune(), result(0, 3));
    EXPECT_EQ(all_files(), (Files{{"logging_0.txt", fresh(5) + fresh(1) + fresh(2)}}));
}

TEST_F(LeftOvers, RenamesAReadyFileOverACopyOfItsLog) {
    write_log(0, old(1) + fresh(1));
    make_ready_file(0, (old(1) + fresh(1)).size(), fresh(1) + fresh(2));
    write_file(taken(0), fresh(2));
    fs::rename(logging_dir, logging_dir + "_");
    fs::copy(logging_dir + "_", logging_dir);
    fs::remove_all(logging_dir + "_");
    EXPECT_EQ(output_of_prune(), result(0, 2));
    EXPECT_EQ(all_files(), (Files{{"logging_0.txt", fresh(1) + fresh(2)}}));
}

TEST_F(LeftOvers, AReadyFileBecomesAMissingLog) {
    write_log(0, fresh(1));
    make_ready_file(0, fresh(1).size(), fresh(1) + fresh(2));
    fs::remove(log_file_path(0));
    EXPECT_EQ(output_of_prune(), result(0, 2));
    EXPECT_EQ(all_files(), (Files{{"logging_0.txt", fresh(1) + fresh(2)}}));
    EXPECT_EQ(mode_of(log_file_path(0)), mode_t{0666});
}

// Where fs.protected_hardlinks is off, every user can create a hard link of it.
TEST_F(LeftOvers, RefusesAReadyFileWithTwoHardLinks) {
    write_log(0, old(1) + fresh(1));
    const std::string ready = make_ready_file(0, 0, fresh(2));
    fs::create_hard_link(ready, logging_dir + "/outside");
    const std::string reason = ready.substr(ready.rfind('/') + 1) + ": Too many links";
    EXPECT_EQ(output_of_prune(),
              not_merged(ready, reason) + skipped(log_file_path(0), reason) + result(0, 0));
    EXPECT_EQ(file_text(log_file_path(0)), old(1) + fresh(1));
    EXPECT_EQ(file_text(logging_dir + "/outside"), fresh(2));
}

TEST_F(LeftOvers, CreatesAMissingLogFromATakenFile) {
    write_file(taken(4), fresh(1) + old(1));
    EXPECT_EQ(output_of_prune(), result(1, 2));
    EXPECT_EQ(all_files(), (Files{{"logging_4.txt", fresh(1)}}));
    EXPECT_EQ(mode_of(log_file_path(4)), mode_t{0666});
}

TEST_F(LeftOvers, IgnoresFilesWithSimilarNames) {
    const Files files = {{"logging_0.txt", fresh(1)},
                         {"logging_0.txt.old_", fresh(2)},
                         {"logging_0.txt.old_03", fresh(2)},
                         {"logging_0.txt.old_-1", fresh(2)},
                         {"logging_0.txt.old_+1", fresh(2)},
                         {"logging_0.txt.taken_1x", fresh(2)},
                         {"logging_0.txt.taken_1_2", fresh(2)},
                         {"logging_0.txt.taken_99999999999999999999", fresh(2)},
                         {"logging_0.txt.ready_1", fresh(2)},
                         {"logging_0.txt.bak", fresh(2)},
                         {"logging_0.txt.bak_1", fresh(2)},
                         {"logging_00.txt.taken_1", fresh(2)}};
    for (const auto& [name, text] : files) write_file(logging_dir + "/" + name, text);
    ASSERT_EQ(chmod(log_file_path(0).c_str(), 0666), 0);
    EXPECT_EQ(output_of_prune(), result(0, 1));
    EXPECT_EQ(all_files(), files);
}

TEST_F(LeftOvers, ReportsThoseThatAreNotRegularAndPrunesTheLog) {
    write_log(0, old(1) + fresh(1));
    write_file(elsewhere("secret"), fresh(2));
    fs::create_symlink("elsewhere/secret", taken(0));
    fs::create_directory(old_file(0, 3));
    const std::string ready = log_file_path(0) + ".ready_3_4";
    fs::create_symlink("nowhere", ready);
    write_file(pruning_companion_path(0), fresh(3));
    EXPECT_EQ(output_of_prune(), skipped(old_file(0, 3), "Not a regular file") +
                                     skipped(ready, IS_A_SYMBOLIC_LINK) +
                                     skipped(taken(0), IS_A_SYMBOLIC_LINK) + result(1, 3));
    EXPECT_EQ(file_text(log_file_path(0)), fresh(1) + fresh(3));
    EXPECT_EQ(file_text(elsewhere("secret")), fresh(2));
    EXPECT_TRUE(fs::is_symlink(taken(0)));
    EXPECT_TRUE(fs::is_symlink(ready));
}

TEST_F(LeftOvers, KeepsThoseOfALogThatIsASymbolicLink) {
    fs::create_symlink("elsewhere", log_file_path(3));
    write_file(taken(3), fresh(0));
    const std::string said = output_of_prune();
    EXPECT_NE(said.find("in (" + taken(3) + "): It is a symbolic link"), std::string::npos) << said;
    EXPECT_EQ(file_text(taken(3)), fresh(0));
}

TEST_F(LeftOvers, AnOrdinaryUserPrunesDespiteATokenOfRoot) {
    if (!is_root()) GTEST_SKIP() << "needs root";
    ASSERT_EQ(chmod(logging_dir.c_str(), 0777), 0);
    write_log(0, old(1));
    ASSERT_EQ(chmod(log_file_path(0).c_str(), 0666), 0);
    write_file(pruning_scratch_path() + "/inside", "");
    EXPECT_GRIPE(prune(), "Could not create needed pruning file");
    ASSERT_TRUE(fs::exists(pruning_token_path()));
    fs::remove_all(pruning_scratch_path());
    patience = SHORT_PATIENCE;
    EXPECT_EQ(output_of_prune_as(OPERATOR), result(1, 1));
    EXPECT_EQ(all_files(), (Files{{"logging_0.txt", ""}}));
}

TEST_F(LeftOvers, ReportsThoseOfOtherUsersInAStickyDirectory) {
    if (!is_root()) GTEST_SKIP() << "needs root";
    patience = SHORT_PATIENCE;
    ASSERT_EQ(chmod(logging_dir.c_str(), 01777), 0);
    for (const int number : {3, 4}) {
        write_log(number, fresh(1) + old(1));
        ASSERT_EQ(chmod(log_file_path(number).c_str(), 0666), 0);
    }
    set_owner(log_file_path(4), OPERATOR);
    write_file(taken(3), fresh(2));
    EXPECT_EQ(output_of_prune_as(OPERATOR),
              not_merged(taken(3), "Operation not permitted") +
                  skipped(log_file_path(3), "Operation not permitted") + result(1, 2));
    EXPECT_EQ(file_text(log_file_path(4)), fresh(1));
    EXPECT_FALSE(fs::exists(pruning_token_path()));
    EXPECT_EQ(file_text(taken(3)), fresh(2));
    EXPECT_EQ(output_of_prune(), result(1, 4));
    EXPECT_EQ(file_text(log_file_path(3)), fresh(1) + fresh(2));
}

TEST_F(LeftOvers, MergesASparseCompanionWithoutItsHoles) {
    write_log(0, fresh(1));
    write_file(pruning_companion_path(0), fresh(2));
    fs::resize_file(pruning_companion_path(0), std::uintmax_t{16} << 20);
    EXPECT_EQ(file_text(log_file_path(0)), fresh(1));
    output_of_prune();
    EXPECT_EQ(file_text(log_file_path(0)), fresh(1) + fresh(2));
    struct stat status;
    ASSERT_EQ(stat(log_file_path(0).c_str(), &status), 0);
    EXPECT_LT(status.st_blocks, 64);
}

}  // namespace
}  // namespace gatescope
