#include "policy/tool_variables.h"

#include <gtest/gtest.h>

#include "units/on_stage.h"

namespace {

class ToolVariables : public OnStage {
  protected:
    ToolSettings tools;
};

const std::string EIGHT_LINES =
    "#!gatescope_unix_gatewarden_check=/c\n"
    "#!gatescope_windows_gatewarden_check=\n"
    "#!gatescope_unix_browser=/b\n"
    "#!gatescope_windows_browser=\n"
    "#!gatescope_relocated_logging_dir_unix=\n"
    "#!gatescope_relocated_logging_dir_windows=\n"
    "#!gatescope_relocated_results_dir_unix=\n"
    "#!gatescope_relocated_results_dir_windows=\n";

TEST_F(ToolVariables, BuildVarListEmptiesWhatHasNoLine) {
    tools.GS_VAR.fill("old");
    use_gatebits(
        "x;\n  #!gatescope_unix_browser=/a=b c \n#!gatescope_windows_browser=\n#!gatescope_"
        "unknown=1\n");
    build_var_list(gatebits_file, &tools);
    EXPECT_EQ(tools.GS_VAR[UNIX_BROWSER], "/a=b c ");
    for (const ToolVariable other :
         {UNIX_CHECKER, WINDOWS_CHECKER, WINDOWS_BROWSER, UNIX_LOGGING_DIR, WINDOWS_LOGGING_DIR,
          UNIX_RESULTS_DIR, WINDOWS_RESULTS_DIR}) {
        EXPECT_EQ(tools.GS_VAR[other], "") << other;
    }
}

TEST_F(ToolVariables, APrefixWithoutItsEqualsSignIsAComment) {
    use_gatebits("x;\n#!gatescope_unix_browser /b\n");
    build_var_list(gatebits_file, &tools);
    EXPECT_EQ(tools.GS_VAR[UNIX_BROWSER], "");
}

TEST_F(ToolVariables, EachPrefixHasItsPlace) {
    std::string text;
    for (const char* prefix : GS_VAR_NAME) text += prefix + std::string(prefix + 12) + "\n";
    use_gatebits(text);
    build_var_list(gatebits_file, &tools);
    for (std::size_t i = 0; i < tools.GS_VAR.size(); ++i)
        EXPECT_EQ(tools.GS_VAR[i], GS_VAR_NAME[i] + 12);
}

TEST_F(ToolVariables, AChangeBringsAllEightToTheTopAndLeavesForeignOnes) {
    use_gatebits(
        "# top\n"
        "gatewarden;;;east;\n"
        " #!gatescope_unix_browser=/old\n"
        "#!gatescope_foreign=1\n"
        "#!gatewarden_alias a b\n"
        "\n"
        "#!gatescope_unix_gatewarden_check=/c\n"
        "last;\n");
    build_var_list(gatebits_file, &tools);
    EXPECT_EQ(change_a_var(gatebits_file, &tools, UNIX_BROWSER, "/b"), ChangeResult::WRITTEN);
    EXPECT_EQ(region.gatebits(), EIGHT_LINES +
                                     "# top\n"
                                     "gatewarden;;;east;\n"
                                     "#!gatescope_foreign=1\n"
                                     "#!gatewarden_alias a b\n"
                                     "last;\n");
    EXPECT_EQ(tools.GS_VAR[UNIX_BROWSER], "/b");
}

TEST_F(ToolVariables, AChangeOfAFileThatHasNoneAddsThem) {
    use_gatebits("gatewarden;;;east;\n");
    tools.GS_VAR[UNIX_CHECKER] = "/c";
    change_a_var(gatebits_file, &tools, UNIX_BROWSER, "/b");
    EXPECT_EQ(region.gatebits(), EIGHT_LINES + "gatewarden;;;east;\n");
    change_a_var(gatebits_file, &tools, UNIX_BROWSER, "/b");
    EXPECT_EQ(region.gatebits(), EIGHT_LINES + "gatewarden;;;east;\n");
}

TEST_F(ToolVariables, WhatAnotherProcessHasSetMeanwhileStays) {
    use_gatebits("gatewarden;;;east;\n");
    build_var_list(gatebits_file, &tools);
    use_gatebits("#!gatescope_unix_gatewarden_check=/c\ngatewarden;;;east;\n");
    change_a_var(gatebits_file, &tools, UNIX_BROWSER, "/b");
    EXPECT_EQ(region.gatebits(), EIGHT_LINES + "gatewarden;;;east;\n");
    EXPECT_EQ(tools.GS_VAR[UNIX_CHECKER], "/c");
}

TEST_F(ToolVariables, AChangeOfOneThatIsNoLongerAsItWasIsNotWritten) {
    const std::string text = "#!gatescope_unix_browser=/a\n\n#!gatescope_unix_browser=/b\nx;\n";
    use_gatebits(text);
    EXPECT_EQ(stored_variable(gatebits_file, UNIX_BROWSER), "/b");
    EXPECT_FALSE(stored_variable(gatebits_file, WINDOWS_BROWSER).has_value());
    EXPECT_EQ(change_a_var(gatebits_file, &tools, UNIX_BROWSER, "/c", "/a"),
              ChangeResult::CHANGED_MEANWHILE);
    EXPECT_EQ(change_a_var(gatebits_file, &tools, WINDOWS_BROWSER, "/c", "/a"),
              ChangeResult::CHANGED_MEANWHILE);
    EXPECT_EQ(region.gatebits(), text);
    EXPECT_EQ(change_a_var(gatebits_file, &tools, UNIX_BROWSER, "/c", "/b"), ChangeResult::WRITTEN);
    EXPECT_EQ(change_a_var(gatebits_file, &tools, WINDOWS_BROWSER, "/d", ""),
              ChangeResult::WRITTEN);
    EXPECT_EQ(stored_variable(gatebits_file, UNIX_BROWSER), "/c");
    EXPECT_EQ(stored_variable(gatebits_file, WINDOWS_BROWSER), "/d");
}

TEST_F(ToolVariables, ALineSetsTheVariableThatItBeginsWith) {
    take_tool_variable("#!gatescope_unix_browser=x", &tools);
    take_tool_variable(" \t#!gatescope_windows_browser=y", &tools);
    take_tool_variable("# #!gatescope_unix_browser=z", &tools);
    take_tool_variable("#!gatescope_UNIX_browser=z", &tools);
    take_tool_variable("", &tools);
    EXPECT_EQ(tools.GS_VAR[UNIX_BROWSER], "x");
    EXPECT_EQ(tools.GS_VAR[WINDOWS_BROWSER], "y");
}

}  // namespace
