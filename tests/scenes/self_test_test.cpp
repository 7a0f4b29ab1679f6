#include <gtest/gtest.h>

#include <filesystem>

#include "scenes/region.h"

namespace gatescope {
namespace {

TEST(SelfTest, TriesEveryKindOfDialogInItsOrder) {
    Region east = a_region();
    east.operator_picks("3")
        .operator_picks_several({"or that", "last one"})
        .types("my  answer")
        .aborts()
        .answers_no()
        .answers_yes()
        .answers_no()
        .box_ends_with(0);
    east.program_answers("cleartool", {.out = "version 9\n"});
    const Result result = east.run({"-general_test"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out,
              "Expected OS is UNIX...testing for clearprompt usability..\n"
              "testing for cleartool version...version 9\n");
    const Dialogs dialogs = result.dialogs();
    const Dialogs expected = {
        {{"yes_no", "-mask", "yes", "-def", "yes", "-pre", "-pro", "clearprompt_found_OK"},
         true,
         {}},
        advised("clearprompt return code = 0..."),
        advised("cleartool return code = 0..."),
        listed("Single Selection test...", "1,2,3,4,5"),
        advised("selection(3) rc = (0)..."),
        listed_for_several("Multi Selection test...",
                           "this,or that,or the other,some more,last one"),
        advised("selection(or that,last one) rc = (0)..."),
        prompted("Prompt...", "Default answer"),
        advised("response(my answer) rc = (0)..."),
        asked("3 button Question (default [abort])...", "abort", "yes,no,abort"),
        advised("3 button answer rc = (2)..."),
        asked("3 button Question (default [no])...", "no", "yes,no,abort"),
        advised("3 button answer rc = (1)..."),
        asked("3 button Question (default [yes])...", "yes", "yes,no,abort"),
        advised("3 button answer rc = (0)..."),
        asked("3 button Question (default [default yes])...", "yes", "yes,no,abort"),
        advised("3 button answer rc = (1)..."),
        asked("abort only Question...", "abort", "abort"),
        advised("abort only answer rc = (0)..."),
        asked("yes only Question...", "yes", "yes"),
        advised("yes only answer rc = (0)..."),
        asked("no only Question...", "no", "no"),
        advised("no only answer rc = (0)...")};
    ASSERT_EQ(dialogs.size(), expected.size() + 1);
    EXPECT_EQ(Dialogs(dialogs.begin(), dialogs.end() - 1), expected);
    EXPECT_TRUE(
        dialogs.back().args.back().starts_with("gatescope version (" GATESCOPE_VERSION ")."));
    EXPECT_EQ(result.calls_of("cleartool"), (std::vector<Args>{{"-ver"}, {"-ver"}}));
}

TEST(SelfTest, EndsWithStatusOneWithoutClearprompt) {
    Region east = a_region();
    east.box_ends_with(1);
    const Result result = east.run({"-general_test"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out,
              "Expected OS is UNIX...testing for clearprompt usability..\n"
              "clearprompt not found in required path... exiting..\n");
    EXPECT_EQ(result.dialogs().size(), 1u);
}

TEST(SelfTest, NamesMissingProgramOnStandardOutputOnly) {
    Region east = a_region().with_env("PATH", "/usr/bin:/bin");
    const Result result = east.run({"-general_test"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out,
              "Expected OS is UNIX...testing for clearprompt usability..\n"
              "clearprompt not found in required path... exiting..\n");
    EXPECT_EQ(result.err, "");
    Region west = a_region();
    std::filesystem::remove(west.path("bin/cleartool"));
    west.box_ends_with(0);
    const Result without_cleartool = west.run({"-general_test"});
    EXPECT_EQ(without_cleartool.status, 1);
    EXPECT_EQ(without_cleartool.err, "");
}

TEST(SelfTest, EndsWithStatusOneWithoutCleartool) {
    Region east = a_region();
    east.program_answers("cleartool", {.status = 1});
    east.program_answers("cleartool", {.status = 1, .out = "thrown away"});
    const Result result = east.run({"-general_test"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out,
              "Expected OS is UNIX...testing for clearprompt usability..\n"
              "testing for cleartool version...cleartool not found in required path... "
              "exiting..");
}

TEST(SelfTest, PrintsReportsInOrderWithoutDialogs) {
    Region east = a_region().without_dialogs();
    east.cancels().cancels().cancels().answers_yes().answers_yes().answers_yes().answers_yes();
    east.program_answers("cleartool", {.out = "version 9\n"});
    const Result result = east.run({"-general_test"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out,
              "Expected OS is UNIX...testing for clearprompt usability..\n"
              "clearprompt return code = 0...\n"
              "testing for cleartool version...version 9\n"
              "cleartool return code = 0...\n"
              "selection() rc = (2)...\nselection() rc = (2)...\nresponse() rc = (2)...\n"
              "3 button answer rc = (0)...\n3 button answer rc = (0)...\n"
              "3 button answer rc = (0)...\n3 button answer rc = (0)...\n"
              "abort only Question...\n[abort] accepted\nabort only answer rc = (2)...\n"
              "yes only Question...\n[yes] accepted\nyes only answer rc = (0)...\n"
              "no only Question...\n[no] accepted\nno only answer rc = (1)...\n" +
                  result.out.substr(result.out.find("gatescope version")));
}

}  // namespace
}  // namespace gatescope
