#include "policy/file_chooser.h"

#include <gtest/gtest.h>

#include "units/on_stage.h"

namespace gatescope {
namespace {

using FileChooser = OnStage;

TEST_F(FileChooser, StartsInTheDirectoryOfTheGatebitsFile) {
    region.chooses_file("/some/where/x.txt");
    EXPECT_EQ(select_cb_file(gatebits_file, "Select an existing gatebits file to use..."),
              "/some/where/x.txt");
    EXPECT_EQ(region.shown_so_far().dialogs(), Dialogs{file_dialog_in(region.path(""))});
    EXPECT_TRUE(region.files_in("tmp").empty());
}

TEST_F(FileChooser, KeepsBackslashesInTheDirectory) {
    region.chooses_file("/x").chooses_file("/x");
    select_cb_file(R"(/a\b\\c/x.txt)", "prompt");
    setenv("ZUL_GATESCOPE_STRICT_QUOTING", "yes", 1);
    select_cb_file(R"(/a\b\\c/x.txt)", "prompt");
    unsetenv("ZUL_GATESCOPE_STRICT_QUOTING");
    const Dialogs dialogs = region.shown_so_far().dialogs();
    EXPECT_EQ(dialogs.at(0), file_dialog_in(R"(/a\b\\c/)"));
    EXPECT_EQ(dialogs.at(1).args.at(7), R"(/a\b\\c/)");
    EXPECT_EQ(dialogs.at(1).args.back(), R"(-directory "/a\b\\c/")");
}

TEST_F(FileChooser, HasNoDirectoryAndABlankPromptWithoutAFile) {
    region.chooses_file("/x");
    EXPECT_EQ(select_cb_file("", "prompt"), "/x");
    const Dialogs dialogs = region.shown_so_far().dialogs();
    EXPECT_EQ(dialogs, Dialogs{file_dialog_without_directory()});
    EXPECT_EQ(dialogs.at(0).args.back(), " ");
}

TEST_F(FileChooser, HasNoDirectoryForABareName) {
    region.chooses_file("/x");
    EXPECT_EQ(select_cb_file("gatebits.txt", "prompt"), "/x");
    EXPECT_EQ(region.shown_so_far().dialogs(), Dialogs{file_dialog_without_directory()});
}

TEST_F(FileChooser, CollapsesBlanksInTheChosenPath) {
    region.chooses_file("/a  b/c\td \n");
    EXPECT_EQ(select_cb_file(gatebits_file, "prompt"), "/a b/c d");
    region.shown_so_far();
}

TEST_F(FileChooser, ReturnsNothingIfNoFileIsChosen) {
    region.cancels();
    EXPECT_EQ(select_cb_file(gatebits_file, "prompt"), std::nullopt);
    region.chooses_file("");
    EXPECT_EQ(select_cb_file(gatebits_file, "prompt"), std::nullopt);
    region.chooses_file(" \n");
    EXPECT_EQ(select_cb_file(gatebits_file, "prompt"), std::nullopt);
    region.shown_so_far();
    EXPECT_TRUE(region.files_in("tmp").empty());
}

TEST_F(FileChooser, TakesTheAnswerFileWithAnyStatus) {
    region.answers({.kind = "file", .status = 1, .outfile = "/chosen"});
    EXPECT_EQ(select_cb_file(gatebits_file, "prompt"), "/chosen");
    region.shown_so_far();
}

}  // namespace
}  // namespace gatescope
