#include "policy/checker.h"

#include <gtest/gtest.h>

#include "units/on_stage.h"

namespace gatescope {
namespace {

class Checker : public OnStage {
  protected:
    Checker() {
        east.ENTERPRIZE_PERMISSION_FILE = gatebits_file;
        east.ENTERPRIZE_NAME = "east";
        east.tools.GS_VAR[UNIX_CHECKER] = region.checker_path();
        east.tools.EMERGENCY_CHECKER = "/no/emergency/gatewarden";
    }
    RegionSettings east;
    std::vector<Args> runs() { return region.shown_so_far().calls_of("gatewarden"); }
    Args run_with(const std::string& option) const { return {region.gatebits_path(), option}; }
};

TEST_F(Checker, RunsWithTheOptionOfTheMode) {
    EXPECT_TRUE(perform_cbfile_only_check(CheckMode::ERRORS, &east));
    EXPECT_TRUE(perform_cbfile_only_check(CheckMode::STATUS, &east));
    EXPECT_TRUE(perform_cbfile_only_check(CheckMode::COUNT, &east));
    EXPECT_EQ(runs(), (std::vector<Args>{run_with("-error_only"), run_with("-status_only"),
                                         run_with("-error_count")}));
}

TEST_F(Checker, ReportsErrorsForANonZeroStatus) {
    region.checker_ends_with({1, 0});
    const auto faulty = perform_cbfile_only_check(CheckMode::STATUS, &east);
    ASSERT_TRUE(faulty);
    EXPECT_TRUE(faulty->CURRENT_GATEBITS_FILE_HAS_ERRORS);
    EXPECT_EQ(faulty->CURRENT_GATEBITS_FILE_HAS_THIS_MANY_ERRORS, 0);
    const auto sound = perform_cbfile_only_check(CheckMode::ERRORS, &east);
    ASSERT_TRUE(sound);
    EXPECT_FALSE(sound->CURRENT_GATEBITS_FILE_HAS_ERRORS);
    runs();
}

TEST_F(Checker, ReportsTheRawStatusAsTheCount) {
    region.checker_ends_with({3, 0});
    const auto faulty = perform_cbfile_only_check(CheckMode::COUNT, &east);
    ASSERT_TRUE(faulty);
    EXPECT_TRUE(faulty->CURRENT_GATEBITS_FILE_HAS_ERRORS);
    EXPECT_EQ(faulty->CURRENT_GATEBITS_FILE_HAS_THIS_MANY_ERRORS, 3 * 256);
    const auto sound = perform_cbfile_only_check(CheckMode::COUNT, &east);
    ASSERT_TRUE(sound);
    EXPECT_FALSE(sound->CURRENT_GATEBITS_FILE_HAS_ERRORS);
    EXPECT_EQ(sound->CURRENT_GATEBITS_FILE_HAS_THIS_MANY_ERRORS, 0);
    runs();
}

TEST_F(Checker, FallsBackToTheEmergencyChecker) {
    for (const char* named : {"", "/no/such/checker"}) {
        east.tools.GS_VAR[UNIX_CHECKER] = named;
        east.tools.EMERGENCY_CHECKER = region.checker_path();
        const std::string before = region.gatebits();
        EXPECT_TRUE(perform_cbfile_only_check(CheckMode::STATUS, &east));
        EXPECT_EQ(east.tools.GS_VAR[UNIX_CHECKER], region.checker_path());
        EXPECT_EQ(region.gatebits(), before);
        EXPECT_EQ(runs(), std::vector<Args>{run_with("-status_only")});
    }
}

TEST_F(Checker, FindsABareNameOnTheSearchPath) {
    east.tools.GS_VAR[UNIX_CHECKER] = "";
    east.tools.EMERGENCY_CHECKER = "gatewarden";
    EXPECT_TRUE(perform_cbfile_only_check(CheckMode::STATUS, &east));
    EXPECT_EQ(runs().size(), 1u);
}

TEST_F(Checker, TellsTheOperatorIfThereIsNoChecker) {
    east.tools.GS_VAR[UNIX_CHECKER] = "/no/such/checker";
    EXPECT_FALSE(perform_cbfile_only_check(CheckMode::COUNT, &east));
    const Result shown = region.shown_so_far();
    EXPECT_EQ(shown.dialogs(), Dialogs{advised_and_waited(
                                   "#!gatescope_unix_gatewarden_check=/no/emergency/gatewarden \n"
                                   "defined in east could not be found..")});
    EXPECT_TRUE(shown.calls_of("gatewarden").empty());
}

TEST_F(Checker, QuotesAPathWithBlanks) {
    region.write_file("a b/gatewarden", "#!/bin/sh\necho \"$@\" > \"$tmp/../ran\"\n");
    ASSERT_EQ(std::system(("chmod +x '" + region.path("a b/gatewarden") + "'").c_str()), 0);
    east.tools.GS_VAR[UNIX_CHECKER] = region.path("a b/gatewarden");
    EXPECT_TRUE(perform_cbfile_only_check(CheckMode::STATUS, &east));
    EXPECT_EQ(region.file("ran"), region.gatebits_path() + " -status_only\n");
}

}  // namespace
}  // namespace gatescope
