// The number of times that the policy file is opened: each step of a dialog reads it once.

#include <gtest/gtest.h>

#include <regex>

#include "scenes/actions.h"

namespace gatescope {
namespace {

/// Lines of the trace that open the gatebits file.
const std::regex OPENING("open(at|at2)?\\([^\"]*\"[^\"]*/gatebits\\.txt\".*");

bool can_trace() {
    return std::system("strace -o /dev/null true 2>/dev/null") == 0;
}

RegionPlan with_a_hundred_keys() {
    RegionPlan plan = a_region().with_line(2, "W:depot;{stage}/depot;O;");
    for (int key = 0; key < 100; ++key) plan.with_key("key_" + std::to_string(key) + ";R;");
    return plan;
}

class Openings : public testing::Test {
  protected:
    void SetUp() override {
        if (PROGRAM_HAS_SANITIZERS || !can_trace()) GTEST_SKIP() << "cannot be traced";
    }

    /// Runs the action under strace, without its children. The first opening is that of the choice
    /// of the file.
    void expect_openings_up_to(int most, const std::string& action) {
        east.run_after("exec strace -D -qq -o trace -e trace=open,openat,openat2 \"$0\" \"$@\"",
                       {"A=" + action, "R=n"});
        const std::string trace = east.file("trace");
        int count = 0;
        std::istringstream lines(trace);
        for (std::string line; std::getline(lines, line);) count += std::regex_match(line, OPENING);
        EXPECT_GT(count, 0) << trace;
        EXPECT_LE(count, most) << "A=" << action << "\n" << trace;
    }

    Region east = with_a_hundred_keys();
};

TEST_F(Openings, FieldEditOpensFileAtMostFiveTimes) {
    east.types("new").answers_yes();
    expect_openings_up_to(5, "13");
    EXPECT_EQ(east.field(7, 2), "new");
}

TEST_F(Openings, GuardedEditOpensFileAtMostFiveTimes) {
    east.types("(a)").answers_yes();
    expect_openings_up_to(5, "11");
    EXPECT_EQ(east.field(5, 2), "(a)");
}

TEST_F(Openings, ClearingDepotOpensFileAtMostFiveTimes) {
    east.types("").answers_yes();
    expect_openings_up_to(5, "4");
    EXPECT_EQ(east.field(2, 1), "");
}

TEST_F(Openings, EditOfFieldThatNeedsDepotOpensFileAtMostFiveTimes) {
    east.types("new").answers_yes();
    expect_openings_up_to(5, "9");
    EXPECT_EQ(east.field(4, 1), "new");
}

TEST_F(Openings, AddingAliasOpensFileAtMostFiveTimes) {
    east.types("new").types("(a)").answers_yes();
    expect_openings_up_to(5, "17");
    EXPECT_NE(east.gatebits().find("#!gatewarden_alias new (a)\n"), std::string::npos);
}

TEST_F(Openings, SettingOpensFileAtMostFiveTimes) {
    east.operator_picks("03 gatescope_windows_browser=").types("new").answers_yes();
    expect_openings_up_to(5, "24");
    EXPECT_NE(east.gatebits().find("windows_browser=new\n"), std::string::npos);
}

TEST_F(Openings, DeletingKeyOfAHundredOpensFileAtMostTwelveTimes) {
    east.operator_picks("057 key_57;R;").answers_no().answers_yes().cancels();
    expect_openings_up_to(12, "21");
    EXPECT_EQ(east.gatebits().find("key_57"), std::string::npos);
}

}  // namespace
}  // namespace gatescope
