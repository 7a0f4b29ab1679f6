#include "policy/tool_variables.h"

#include <gtest/gtest.h>

namespace gatescope {
namespace {

class ToolVariables : public testing::Test {
  protected:
    void use(const std::string& text) { gatebits = Gatebits(text); }
    /// Sets the variable; `gatebits` becomes the new text as a reader parses it.
    void set(std::size_t index, const std::string& value) {
        const Rewrite rewrite = change_a_var(gatebits, tools, index, value);
        EXPECT_EQ(rewrite.result, ChangeResult::WRITTEN);
        use(rewrite.text->text());
    }

    Gatebits gatebits{std::string()};
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

TEST_F(ToolVariables, EmptiesSettingsWithoutALine) {
    tools.GS_VAR.fill("old");
    use("x;\n  #!gatescope_unix_browser=/a=b c \n#!gatescope_windows_browser=\n#!gatescope_"
        "unknown=1\n");
    build_var_list(gatebits, &tools);
    EXPECT_EQ(tools.GS_VAR[UNIX_BROWSER], "/a=b c ");
    for (const std::size_t other :
         {UNIX_CHECKER, WINDOWS_CHECKER, WINDOWS_BROWSER, UNIX_LOGGING_DIR, WINDOWS_LOGGING_DIR,
          UNIX_RESULTS_DIR, WINDOWS_RESULTS_DIR}) {
        EXPECT_EQ(tools.GS_VAR[other], "") << other;
    }
}

TEST_F(ToolVariables, IgnoresAPrefixWithoutItsEqualsSign) {
    use("x;\n#!gatescope_unix_browser /b\n");
    build_var_list(gatebits, &tools);
    EXPECT_EQ(tools.GS_VAR[UNIX_BROWSER], "");
}

TEST_F(ToolVariables, StoresTheValueOfEachPrefix) {
    std::string text;
    for (const char* prefix : GS_VAR_NAME) text += prefix + std::string(prefix + 12) + "\n";
    use(text);
    build_var_list(gatebits, &tools);
    for (std::size_t i = 0; i < tools.GS_VAR.size(); ++i)
        EXPECT_EQ(tools.GS_VAR[i], GS_VAR_NAME[i] + 12);
}

TEST_F(ToolVariables, MovesAllEightToTheTopAndLeavesForeignOnes) {
    use("# top\n"
        "gatewarden;;;east;\n"
        " #!gatescope_unix_browser=/old\n"
        "#!gatescope_foreign=1\n"
        "#!gatewarden_alias a b\n"
        "\n"
        "#!gatescope_unix_gatewarden_check=/c\n"
        "last;\n");
    build_var_list(gatebits, &tools);
    set(UNIX_BROWSER, "/b");
    EXPECT_EQ(gatebits.text(), EIGHT_LINES +
                                   "# top\n"
                                   "gatewarden;;;east;\n"
                                   "#!gatescope_foreign=1\n"
                                   "#!gatewarden_alias a b\n"
                                   "last;\n");
}

TEST_F(ToolVariables, AddsAllEightToAFileWithoutAny) {
    use("gatewarden;;;east;\n");
    tools.GS_VAR[UNIX_CHECKER] = "/c";
    set(UNIX_BROWSER, "/b");
    EXPECT_EQ(gatebits.text(), EIGHT_LINES + "gatewarden;;;east;\n");
    set(UNIX_BROWSER, "/b");
    EXPECT_EQ(gatebits.text(), EIGHT_LINES + "gatewarden;;;east;\n");
}

TEST_F(ToolVariables, KeepsSettingsChangedByAnotherProcess) {
    use("gatewarden;;;east;\n");
    build_var_list(gatebits, &tools);
    use("#!gatescope_unix_gatewarden_check=/c\ngatewarden;;;east;\n");
    set(UNIX_BROWSER, "/b");
    EXPECT_EQ(gatebits.text(), EIGHT_LINES + "gatewarden;;;east;\n");
}

TEST_F(ToolVariables, TakesTheLastLineOfAVariable) {
    use("#!gatescope_unix_browser=/a\n\n#!gatescope_unix_browser=/b\nx;\n");
    EXPECT_EQ(stored_variable(gatebits, UNIX_BROWSER), "/b");
    EXPECT_FALSE(stored_variable(gatebits, WINDOWS_BROWSER).has_value());
    set(UNIX_BROWSER, "/c");
    set(WINDOWS_BROWSER, "/d");
    EXPECT_EQ(stored_variable(gatebits, UNIX_BROWSER), "/c");
    EXPECT_EQ(stored_variable(gatebits, WINDOWS_BROWSER), "/d");
}

TEST_F(ToolVariables, SetsTheVariableThatALineBeginsWith) {
    take_tool_variable("#!gatescope_unix_browser=x", &tools);
    take_tool_variable(" \t#!gatescope_windows_browser=y", &tools);
    take_tool_variable("# #!gatescope_unix_browser=z", &tools);
    take_tool_variable("#!gatescope_UNIX_browser=z", &tools);
    take_tool_variable("", &tools);
    EXPECT_EQ(tools.GS_VAR[UNIX_BROWSER], "x");
    EXPECT_EQ(tools.GS_VAR[WINDOWS_BROWSER], "y");
}

}  // namespace
}  // namespace gatescope
