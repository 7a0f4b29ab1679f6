// A damaged gatebits file ends the run with its error.

#include <gtest/gtest.h>

#include "scenes/region.h"

namespace gatescope {
namespace {

struct Damage {
    const char* name;
    RegionPlan plan;
    std::string message;
};

class DamagedRegion : public testing::TestWithParam<Damage> {};

TEST_P(DamagedRegion, IsReportedAndNothingIsDone) {
    Region region = Region(GetParam().plan);
    const std::string before = region.gatebits();
    const Result result = region.run({"A=8", "R=n"});
    EXPECT_EQ(result.status, 99);
    EXPECT_EQ(result.dialogs(), Dialogs{griped(region.staged(GetParam().message))});
    EXPECT_EQ(region.gatebits(), before);
}

INSTANTIATE_TEST_SUITE_P(
    RegionLoading, DamagedRegion,
    testing::Values(
        Damage{"LoggingLetterUnknown", a_region().with_line(2, ";{stage}/depot;N;"),
               "ERROR: Invalid Optional Logging Value: value=N not single char from (OESA) for "
               ";{stage}/depot;N;\ngatebits file: {stage}/gatebits.txt."},
        Damage{"LoggingOfTwoLetters", a_region().with_line(2, ";{stage}/depot;OO;"),
               "ERROR: Invalid Optional Logging Value: value=OO not single char from (NESA) for "
               ";{stage}/depot;OO;\ngatebits file: {stage}/gatebits.txt."},
        Damage{"LoggingEmpty", a_region().with_line(2, ";;;"),
               "ERROR: Invalid Optional Logging Value: value= not single char from (NESA) for "
               ";;;\ngatebits file: {stage}/gatebits.txt."},
        Damage{"DepotWithoutItsSemicolon", a_region().with_line(2, ";{stage}/depot"),
               "ERROR: Missing or mangled region policy depot definition - missing data or "
               "semicolon(s) ';'"},
        Damage{"ParentWithoutItsSemicolon", a_region().with_line(3, ";/parent"),
               "ERROR: Missing or mangled parent gatebits file definition - missing data or "
               "semicolon(s) ';'"},
        Damage{"HeaderOnly", a_region().with_gatebits("gatewarden;;;east;\n"),
               "ERROR: Missing or mangled region policy depot definition - missing data or "
               "semicolon(s) ';'"}),
    [](const testing::TestParamInfo<Damage>& row) { return row.param.name; });

TEST(RegionLoading, EndsWith99OnEmptyOrOversizedFileAndKeepsIt) {
    for (const std::string& text : {std::string(), std::string("\n\n"), std::string(30001, 'x')}) {
        Region east = a_region().with_gatebits(text).without_dialogs();
        const Result result = east.run({"A=8", "R=n"});
        EXPECT_EQ(result.status, 99);
        EXPECT_TRUE(result.out.starts_with("ERROR:")) << result.out;
        EXPECT_EQ(east.gatebits(), text);
    }
}

TEST(RegionLoading, EndsWith99WhenFileVanishesDuringDialog) {
    Region east = a_region().without_dialogs();
    east.answers({.kind = "list",
                  .outfile = "A08 - View/Change Region Logging Personality",
                  .meanwhile = "rm gatebits.txt"});
    const Result result = east.run();
    EXPECT_EQ(result.status, 99);
    EXPECT_EQ(result.out, "ERROR: Can't open the enterprise permissions file.....\n");
}

TEST(RegionLoading, ReadsRelocatedLogDirectory) {
    Region east = a_region()
                      .with_variable(4, "{stage}/elsewhere")
                      .with_variable(5, "W:\\log")
                      .with_file("elsewhere/logging_0.txt", "no record\n");
    // The log has words, so that the message about missing data does not come.
    const Result result = east.run({"Q=4", "U=*", "D=n", "R=n"});
    EXPECT_EQ(result.status, 110);
    EXPECT_TRUE(result.dialogs().empty());
}

TEST(RegionLoading, WritesToRelocatedResultsDirectory) {
    Region east = a_region()
                      .with_variable(6, "{stage}/home")
                      .with_variable(7, "W:\\results")
                      .with_log(0, "x\n");
    EXPECT_EQ(east.run({"Q=4", "U=*", "D=n", "R=n"}).status, 110);
    EXPECT_EQ(east.files_in("home").size(), 1u);
    EXPECT_TRUE(east.pages().empty());
}

TEST(Startup, ChecksTemporaryDirectoryBeforeArguments) {
    Region east = a_region().with_env("tmp", "/no/such/dir").with_env("temp", "{stage}/tmp");
    const Result result = east.run({"nonsense"});
    EXPECT_EQ(result.status, 99);
    EXPECT_EQ(result.dialogs(),
              Dialogs{griped("ERROR: gatescope using TMP directory (/no/such/dir) but it is not "
                             "required writable... exiting")});
}

TEST(Startup, WaitsForMessagesOfRemoteClient) {
    Region east = a_region().with_env("ATRIA_WEB_CLEARPROMPT", "");
    const Result result = east.run({"-kudos"});
    ASSERT_EQ(result.dialogs().size(), 1u);
    EXPECT_TRUE(result.dialogs().front().waited);
}

}  // namespace
}  // namespace gatescope
