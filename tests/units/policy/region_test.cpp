#include "policy/region.h"

#include <gtest/gtest.h>

#include "policy/tool_variables.h"
#include "support/expect_gripe.h"

namespace gatescope {
namespace {

class LoadedRegion : public testing::Test {
  protected:
    void use(const std::string& text) { gatebits = Gatebits(text); }
    RegionSettings loaded(const ToolSettings& tools) const {
        return interrogate_the_enterprise("/east/gatebits.txt", gatebits, tools);
    }
    /// Loads a region with this depot line and these lines on top.
    void load(const std::string& depot_line, const std::string& on_top = "") {
        use(on_top + "gatewarden;a;b;east;\n" + depot_line + "\n" + ";/parent.txt;\n");
        settings = loaded(settings.tools);
    }
    Gatebits gatebits{std::string()};
    RegionSettings settings;
    std::string wrong_logging(const std::string& value, const std::string& letters,
                              const std::string& line) const {
        return "ERROR: Invalid Optional Logging Value: value=" + value + " not single char from (" +
               letters + ") for " + line + "\ngatebits file: /east/gatebits.txt.";
    }
};
using LoadedRegionDeathTest = LoadedRegion;

const std::string MANGLED_DEPOT_TEXT =
    "ERROR: Missing or mangled region policy depot definition - missing data or semicolon(s) ';'";
const std::string MANGLED_PARENT_TEXT =
    "ERROR: Missing or mangled parent gatebits file definition - missing data or semicolon(s) ';'";

TEST_F(LoadedRegion, HasTheSettingsOfTheRegionBlock) {
    load("C:\\depot;/unix/depot;A;");
    EXPECT_EQ(settings.ENTERPRIZE_NAME, "east");
    EXPECT_EQ(settings.SYSTEM_VARS__SYSTEM_POLICY_DIR, "/unix/depot");
    EXPECT_EQ(settings.logging_dir, "/unix/depot/log");
    EXPECT_EQ(settings.results_dir, "/unix/depot/query_results");
}

TEST_F(LoadedRegion, AcceptsTheFourPersonalities) {
    for (const char letter : {'A', 'E', 'O', 'S'}) {
        const std::string depot = std::string("/depot_") + letter;
        load(";" + depot + ";" + letter + ";");
        EXPECT_EQ(settings.SYSTEM_VARS__SYSTEM_POLICY_DIR, depot);
    }
}

TEST_F(LoadedRegion, AcceptsAMissingThirdField) {
    load(";/one;");
    EXPECT_EQ(settings.SYSTEM_VARS__SYSTEM_POLICY_DIR, "/one");
    load(";/two;N");
    EXPECT_EQ(settings.SYSTEM_VARS__SYSTEM_POLICY_DIR, "/two");
}

TEST_F(LoadedRegion, ReadsEmptyFieldsAsABlank) {
    use("gatewarden;;;;\n;;\n;;\n");
    settings = loaded(settings.tools);
    EXPECT_EQ(settings.ENTERPRIZE_NAME, " ");
    EXPECT_EQ(settings.SYSTEM_VARS__SYSTEM_POLICY_DIR, " ");
    EXPECT_EQ(settings.logging_dir, " /log");
    EXPECT_EQ(settings.results_dir, " /query_results");
}

TEST_F(LoadedRegion, IgnoresCommentsAndBlankLinesInTheBlock) {
    use("# c\n\n gatewarden;;;east;\n#!gatewarden_alias a b\n\n\t;/depot;S;\n \t \n#x\n;/p;\n");
    settings = loaded(settings.tools);
    EXPECT_EQ(settings.ENTERPRIZE_NAME, "east");
    EXPECT_EQ(settings.SYSTEM_VARS__SYSTEM_POLICY_DIR, "/depot");
}

TEST_F(LoadedRegion, PrefersRelocatedUnixDirectoriesOnly) {
    load(";/depot;O;",
         "#!gatescope_relocated_logging_dir_windows=W:\\log\n"
         "#!gatescope_relocated_results_dir_windows=W:\\results\n");
    EXPECT_EQ(settings.logging_dir, "/depot/log");
    EXPECT_EQ(settings.results_dir, "/depot/query_results");
    load(";/depot;O;",
         "#!gatescope_relocated_logging_dir_unix=/else/where\n"
         "  #!gatescope_relocated_results_dir_unix=/pages=1\n");
    EXPECT_EQ(settings.logging_dir, "/else/where");
    EXPECT_EQ(settings.results_dir, "/pages=1");
}

TEST_F(LoadedRegion, KeepsVariablesWithoutALine) {
    settings.tools.GS_VAR[UNIX_BROWSER] = "/old/browser";
    settings.tools.GS_VAR[UNIX_CHECKER] = "/old/checker";
    load(";/depot;O;", "#!gatescope_unix_gatewarden_check=\n");
    EXPECT_EQ(settings.tools.GS_VAR[UNIX_BROWSER], "/old/browser");
    EXPECT_EQ(settings.tools.GS_VAR[UNIX_CHECKER], "");
}

TEST_F(LoadedRegion, TakesTheLastLineOfAVariable) {
    load(";/depot;O;", "#!gatescope_unix_browser=/one\n#!gatescope_unix_browser=/two\n");
    EXPECT_EQ(settings.tools.GS_VAR[UNIX_BROWSER], "/two");
}

TEST_F(LoadedRegionDeathTest, NamesNesaForAThirdFieldOfOtherLength) {
    EXPECT_GRIPE(load(";/d;OO;"), wrong_logging("OO", "NESA", ";/d;OO;"));
    EXPECT_GRIPE(load(";;;"), wrong_logging("", "NESA", ";;;"));
}

TEST_F(LoadedRegionDeathTest, NamesOesaForAThirdFieldOfAnotherLetter) {
    for (const char* letter : {"N", "o", "B", "1", " "}) {
        const std::string line = std::string(";/d;") + letter + ";";
        EXPECT_GRIPE(load(line), wrong_logging(letter, "OESA", line));
    }
}

TEST_F(LoadedRegionDeathTest, GripesOfADamagedBlock) {
    EXPECT_GRIPE(load("/depot;"), MANGLED_DEPOT_TEXT);
    EXPECT_GRIPE(load("C:\\depot;/depot"), MANGLED_DEPOT_TEXT);
    use("gatewarden;;;east;\n");
    EXPECT_GRIPE(loaded({}), MANGLED_DEPOT_TEXT);
    use("gatewarden;;;east;\n;;\n");
    EXPECT_GRIPE(loaded({}), MANGLED_PARENT_TEXT);
    use("gatewarden;;;east;\n;;\n/parent;\n");
    EXPECT_GRIPE(loaded({}), MANGLED_PARENT_TEXT);
}

TEST_F(LoadedRegionDeathTest, GripesOfAHeaderWithThreeFields) {
    use("gatewarden;;;east\n;;\n;;\n");
    EXPECT_GRIPE(loaded({}),
                 "ERROR: Missing or mangled region header definition - missing data or "
                 "semicolon(s) ';'");
}

TEST_F(LoadedRegionDeathTest, GripesOfAFileWithoutASignificantLine) {
    use("# only\n  # comments\n \t\n");
    EXPECT_GRIPE(loaded({}),
                 "ERROR: Missing region header definition - no region information line found");
}

TEST_F(LoadedRegionDeathTest, ChecksDepotThenParentThenHeader) {
    use("gatewarden;\n/depot;\n/parent;\n");
    EXPECT_GRIPE(loaded({}), MANGLED_DEPOT_TEXT);
    use("gatewarden;\n;;\n/parent;\n");
    EXPECT_GRIPE(loaded({}), MANGLED_PARENT_TEXT);
}

}  // namespace
}  // namespace gatescope
