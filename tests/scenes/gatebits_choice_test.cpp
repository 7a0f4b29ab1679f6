// The choice of the gatebits file, and the question when there is none.

#include <gtest/gtest.h>

#include "scenes/region.h"

namespace gatescope {
namespace {

const std::string CREATE_OR_OPEN =
    "\n\nDo you wish to Create a New gatebits file or open an existing one? \n\n"
    "Yes (New)          No (Existing)           Abort";
const std::string VARIABLE = "ZUL_GATESCOPE_GATEBITS_FILE";
const std::string MENU_TITLE = "Select Query or Action for (east)";

std::string title_of_menu(const Result& result) {
    return result.dialogs().empty() ? "" : result.dialogs().back().args.back();
}

TEST(GatebitsChoice, AsksWithoutArgumentAndVariable) {
    Region east = a_region().without_env(VARIABLE);
    east.aborts();
    const Result result = east.run();
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.dialogs(),
              Dialogs{asked("No valid gatebits file was passed in at the command line and the "
                            "environmental variable\nZUL_GATESCOPE_GATEBITS_FILE was not set to "
                            "compensate." +
                            CREATE_OR_OPEN)});
}

TEST(GatebitsChoice, NamesUnreadableFileOfVariable) {
    Region east = a_region().with_env(VARIABLE, "/no/such/file");
    east.aborts();
    const Result result = east.run();
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(
        result.dialogs(),
        Dialogs{asked("The gatebits file (/no/such/file)\nread from the environmental variable "
                      "(ZUL_GATESCOPE_GATEBITS_FILE)\ndoes not exist or could not be read." +
                      CREATE_OR_OPEN)});
}

TEST(GatebitsChoice, IgnoresEmptyVariable) {
    Region east = a_region().with_env(VARIABLE, "");
    east.aborts();
    EXPECT_EQ(east.run().status, 1);
}

TEST(GatebitsChoice, NamesUnreadableArgumentWithoutTryingVariable) {
    Region east = a_region();
    east.aborts();
    const Result result = east.run({"F=/no/such/file"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(
        result.dialogs(),
        Dialogs{asked("The gatebits file (/no/such/file)\n passed in at the command line does "
                      "not exist or could not be read." +
                      CREATE_OR_OPEN)});
}

TEST(GatebitsChoice, AsksByDialogEvenWithoutDialogs) {
    Region east = a_region().without_dialogs().without_env(VARIABLE);
    east.aborts();
    const Result result = east.run();
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.dialogs().size(), 1u);
}

TEST(GatebitsChoice, EndsWithOneWhenClearpromptCannotBeStarted) {
    Region east = a_region().without_env(VARIABLE).with_env("PATH", "/usr/bin:/bin");
    const Result result = east.run();
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.calls.empty());
}

TEST(GatebitsChoice, PrefersArgumentToVariable) {
    Region east = a_region().with_file("other.txt", "gatewarden;;;other;\n;{stage}/depot;O;\n;;\n");
    east.cancels();
    EXPECT_EQ(title_of_menu(east.run({"F=other.txt"})), "Select Query or Action for (other)");
}

TEST(GatebitsChoice, OpensExistingFileOnNo) {
    Region east = a_region().without_env(VARIABLE);
    east.answers_no().chooses_file(east.gatebits_path()).cancels();
    const Result result = east.run();
    EXPECT_EQ(result.status, 0);
    ASSERT_EQ(result.dialogs().size(), 4u);
    EXPECT_EQ(result.dialogs().at(1), file_dialog_without_directory());
    EXPECT_EQ(title_of_menu(result), MENU_TITLE);
}

TEST(GatebitsChoice, EndsWithOneWhenFileDialogIsCancelled) {
    Region east = a_region().without_env(VARIABLE);
    east.answers_no().cancels();
    EXPECT_EQ(east.run().status, 1);

    Region west = a_region().without_env(VARIABLE);
    west.answers_yes().cancels();
    EXPECT_EQ(west.run().status, 1);
}

TEST(GatebitsChoice, StartsFileDialogWithoutDirectoryForUnreadableFile) {
    Region east = a_region();
    east.answers_no().cancels();
    const Result result = east.run({"F=/no/such/file"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.dialogs().back(), file_dialog_without_directory());
}

}  // namespace
}  // namespace gatescope
