// The submenu, and the checks around the actions that can damage the gatebits file.

#include <gtest/gtest.h>

#include "messages/menu_labels.h"
#include "scenes/actions.h"

namespace gatescope {
namespace {

using namespace std::string_literals;

const std::string BLOCK_ENTRIES =
    "A04 - View/Change Windows Depot,A05 - View/Change UNIX Depot,A06 - View/Change Windows "
    "Gatebits Parent,A07 - View/Change UNIX Gatebits Parent,A08 - View/Change Region Logging "
    "Personality,A09 - View/Change Region Windows Notify/Script,A10 - View/Change Region UNIX "
    "Notify/Script,A11 - View/Change Region Inhibited Access,A12 - View/Change Region Special "
    "Access List,A13 - View/Change Region MOTD String,A14 - View/Change Region MOTD Restriction "
    "List,A15 - View/Change Per-VOB Functionality Bits Checking,A16 - View/Change Functionality "
    "Bits for region,A17 - Add Alias Definition to Region,A18 - Delete Alias Definition from "
    "Region,A19 - Delete References to Alias Definition from Region,A20 - Update Alias Definition "
    "in Region,------------------------------,A21 - View/Change/Delete a Command Key in Region,A22 "
    "- Add a Comand Key,A23 - VERIFY:Run gatewarden {gatebits} -check";

Dialog submenu() {
    return listed("Gatebits view/change Action for (east)", BLOCK_ENTRIES);
}

Dialog install_menu() {
    return listed("Select Install Action for (east)", BLOCK_ENTRIES + ",A24 - Configure Gatescope");
}

bool is_main_menu(const Dialog& dialog) {
    return dialog.args.back() == "Select Query or Action for (east)";
}

Dialog motd_prompt(const std::string& def) {
    return prompted("Input a MOTD (i.e. Any String not containing ';' or empty).. Can be Empty...",
                    def);
}

// The submenu.

TEST(Submenu, CancelLeadsBackToTheMainMenu) {
    Region east = a_region();
    east.operator_picks(A2).cancels().cancels();
    const Result result = east.run();
    EXPECT_EQ(result.status, 0);
    ASSERT_EQ(result.dialogs().size(), 3u);
    EXPECT_TRUE(is_main_menu(result.dialogs()[0]));
    EXPECT_EQ(result.dialogs()[1], submenu());
    EXPECT_TRUE(is_main_menu(result.dialogs()[2]));
}

TEST(Submenu, CancelEndsSingleRequest) {
    Region east = a_region();
    east.cancels();
    const Result result = east.run({"A=2", "R=n"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.dialogs(), Dialogs{submenu()});
}

TEST(Submenu, ComesAgainAfterSeparatorOrEmptyPick) {
    Region east = a_region();
    east.operator_picks(SEPERATOR).answers({.kind = "list", .outfile = ""}).cancels();
    EXPECT_EQ(east.run({"A=2", "R=n"}).dialogs(), (Dialogs{submenu(), submenu(), submenu()}));
}

/// With R=n a non-empty last answer ends the run; after an empty one the submenu comes again.
TEST(Submenu, ComesAgainAfterEmptyAnswer) {
    Region east = a_region().with_line(7, ";old;;");
    east.operator_picks(A13).types("").answers_yes();
    east.operator_picks(A13).types("new").answers_yes();
    const Result result = east.run({"A=2", "R=n"});
    EXPECT_EQ(result.status, 110);
    EXPECT_EQ(
        result.dialogs(),
        (Dialogs{submenu(), motd_prompt("old"), asked_to_change("Region MOTD String", "old", ""),
                 submenu(), motd_prompt(""), asked_to_change("Region MOTD String", "", "new")}));
}

TEST(Submenu, ComesAgainThroughMainLoopAfterAnswer) {
    Region east = a_region();
    east.operator_picks(A13).types("new").answers_yes().cancels().cancels();
    const Result result = east.run({"A=2"});
    EXPECT_EQ(result.status, 0);
    ASSERT_EQ(result.dialogs().size(), 5u);
    EXPECT_EQ(result.dialogs()[3], submenu());
    EXPECT_TRUE(is_main_menu(result.dialogs()[4]));
}

TEST(Submenu, ComesAgainAfterCancelledPrompt) {
    Region east = a_region();
    east.operator_picks(A13).cancels().cancels();
    EXPECT_EQ(east.run({"A=2", "R=n"}).dialogs(), (Dialogs{submenu(), motd_prompt(""), submenu()}));
}

TEST(Submenu, EndsRunAfterRejectedValueThenCancel) {
    Region east = a_region();
    east.operator_picks(A13).types("a;b").cancels();
    EXPECT_EQ(east.run({"A=2", "R=n"}).status, 110);
}

TEST(Submenu, ComesAgainAfterCancelledList) {
    for (const char* action : {A8, A15, A16, A18, A19, A20, A21, A22}) {
        Region east = a_region().with_alias("one", "(x)").with_key("key;");
        east.operator_picks(action).cancels().cancels();
        const Result result = east.run({"A=2", "R=n"});
        EXPECT_EQ(result.status, 0) << action;
        EXPECT_EQ(result.dialogs().back(), submenu()) << action;
    }
}

TEST(Submenu, EndsRunWhenKeyPromptIsCancelled) {
    Region with_key = a_region().with_key("key;");
    with_key.operator_picks(A21).operator_picks("000 key;").answers_yes().cancels();
    EXPECT_EQ(with_key.run({"A=2", "R=n"}).status, 110);
    with_key.operator_picks(A22).operator_picks("000 key;").cancels();
    EXPECT_EQ(with_key.run({"A=2", "R=n"}).status, 110);
    Region without_keys = a_region();
    without_keys.operator_picks(A22).cancels();
    EXPECT_EQ(without_keys.run({"A=2", "R=n"}).status, 110);
}

TEST(Submenu, ChecksFileAroundGuardedAction) {
    Region east = a_region();
    east.operator_picks(A11).cancels().cancels();
    const Result result = east.run({"A=2", "R=n"});
    EXPECT_EQ(checks_of(east, result), (std::vector<std::string>{"-status_only", "-status_only"}));
}

TEST(Submenu, IgnoresPickNotInSubmenu) {
    Region east = a_region();
    east.answers({.kind = "list", .outfile = "Q01 - Commands/Users (success/denied) over Time"});
    EXPECT_EQ(east.run({"A=2", "R=n"}).dialogs(), Dialogs{submenu()});
}

TEST(Submenu, OffersSettingsToInstaller) {
    Region east = a_region();
    east.cancels();
    const Result result = east.run({"-during_install", "A-2"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.dialogs(), Dialogs{install_menu()});
}

TEST(Submenu, RunsInstallersSettingsThroughMainLoop) {
    Region east = a_region();
    // The submenu runs nothing for A24 and returns to the main loop, which asks again.
    east.operator_picks(A24).operator_picks(A24).cancels().cancels();
    const Result result = east.run({"-during_install", "A=2"});
    ASSERT_EQ(result.dialogs().size(), 4u);
    EXPECT_EQ(result.dialogs()[0], install_menu());
    EXPECT_EQ(result.dialogs()[1], install_menu());
    EXPECT_EQ(result.dialogs()[2].args.back(), "Select Gatescope Variable to View/Change");
    EXPECT_EQ(result.dialogs()[3], install_menu());
    EXPECT_EQ(result.status, 0);
}

// The installer's refusals.

TEST(Installer, RefusesActionsNotAvailableDuringInstallation) {
    const std::pair<int, std::string> refused[] = {{1, "Prune Log Files"},
                                                   {25, "Switch to another Gatebits file"},
                                                   {26, "Create New Gatebits file"},
                                                   {27, "Copy Existing Gatebits file"}};
    for (const auto& [number, title] : refused) {
        Region east = a_region().with_log(0, "1<old\n");
        const std::string before = east.gatebits();
        const Result result = east.run({"-during_install", "A=" + std::to_string(number), "R=n"});
        EXPECT_EQ(result.status, 110);
        EXPECT_EQ(result.dialogs(),
                  Dialogs{advised_and_waited("This Action: '" + title +
                                             "'\n\nis not available during the installation "
                                             "process...")});
        EXPECT_EQ(east.gatebits(), before);
        EXPECT_EQ(east.log(0), "1<old\n");
    }
}

// The guard.

const std::string LIST_PROMPT_START = "Input a Region Restricted Access List (i.e. ";

using Words = std::vector<std::string>;

TEST(Guard, RepeatsActionWhenFirstErrorAppears) {
    Region east = a_region();
    east.checker_ends_with({0, 2, 2, 2, 1});
    east.types("(bad)").answers_yes().types("(good)").answers_yes();
    const Result result = east.run({"A=11", "R=n"});
    const Dialogs dialogs = result.dialogs();
    ASSERT_EQ(dialogs.size(), 5u);
    EXPECT_TRUE(dialogs[0].args.back().starts_with(LIST_PROMPT_START));
    EXPECT_EQ(dialogs[2], told_to_reenter());
    // The written value stays in the file while the action is repeated.
    EXPECT_EQ(dialogs[3].args.at(5), "(bad)");
    EXPECT_EQ(east.field(5, 2), "(good)");
    EXPECT_EQ(checks_of(east, result), (Words{"-status_only", "-status_only", "-status_only",
                                              "-error_count", "-error_count"}));
}

TEST(Guard, RepeatsActionWhenErrorCountIsUnchanged) {
    Region east = a_region();
    east.checker_ends_with({1, 3, 3, 1, 3, 2});
    east.types("(a)").answers_yes().types("(b)").answers_yes();
    const Result result = east.run({"A=11", "R=n"});
    ASSERT_EQ(result.dialogs().size(), 5u);
    EXPECT_EQ(result.dialogs()[2], told_to_reenter());
    EXPECT_EQ(checks_of(east, result), (Words{"-status_only", "-error_count", "-error_count",
                                              "-status_only", "-error_count", "-error_count"}));
}

TEST(Guard, RepeatsActionWhenErrorCountRises) {
    Region east = a_region();
    east.checker_ends_with({1, 3, 4, 1, 4, 3});
    east.types("(a)").answers_yes().types("(b)").answers_yes();
    const Result result = east.run({"A=11", "R=n"});
    ASSERT_EQ(result.dialogs().size(), 5u);
    EXPECT_EQ(result.dialogs()[2], told_to_reenter());
}

TEST(Guard, EndsActionWhenErrorCountFalls) {
    Region east = a_region();
    east.checker_ends_with({1, 3, 2});
    east.types("(a)").answers_yes();
    const Result result = east.run({"A=11", "R=n"});
    EXPECT_EQ(result.dialogs().size(), 2u);
    EXPECT_EQ(result.calls_of("gatewarden").size(), 3u);
}

TEST(Guard, ChecksFileAfterAbort) {
    Region east = a_region();
    east.checker_ends_with({1, 3, 3, 1, 3, 2});
    east.types("(a)").aborts().types("(b)").answers_yes();
    EXPECT_EQ(east.run({"A=11", "R=n"}).dialogs().at(2), told_to_reenter());
}

TEST(Guard, EndsActionAfterThreeCancelsWithOldErrors) {
    Region east = a_region();
    const std::string before = east.gatebits();
    east.checker_ends_with({1, 3, 3, 1, 3, 3, 1, 3, 3});
    east.cancels().types("(a)").aborts().cancels();
    const Result result = east.run({"A=11", "R=n"});
    EXPECT_EQ(result.status, 110);
    ASSERT_EQ(result.dialogs().size(), 6u);
    EXPECT_EQ(result.dialogs()[1], told_to_reenter());
    EXPECT_EQ(result.dialogs()[4], told_to_reenter());
    EXPECT_EQ(east.gatebits(), before);
}

TEST(Guard, RestartsCountOfThreeAfterWrittenValue) {
    Region east = a_region();
    east.checker_ends_with({1, 3, 3, 1, 3, 3, 1, 3, 3, 1, 3, 3, 1, 3, 3, 1, 3, 3});
    east.cancels().cancels().types("(a)").answers_yes().cancels().cancels().cancels();
    const Result result = east.run({"A=11", "R=n"});
    EXPECT_EQ(result.status, 110);
    EXPECT_EQ(result.calls_of("gatewarden").size(), 18u);
}

TEST(Guard, RepeatsActionUntilNewErrorsAreGone) {
    Region east = a_region();
    east.checker_ends_with({0, 1});
    for (int i = 0; i < 4; ++i) east.checker_ends_with({1, 2, 2});
    east.checker_ends_with({1, 2, 0});
    east.types("(bad)").answers_yes();
    for (int i = 0; i < 4; ++i) east.cancels();
    east.types("(good)").answers_yes();
    const Result result = east.run({"A=11", "R=n"});
    EXPECT_EQ(result.dialogs().size(), 2u + 5u + 4u + 2u);
    EXPECT_EQ(east.field(5, 2), "(good)");
}

TEST(Guard, RunsActionOnceWithoutChecker) {
    Region east = a_region().without_checker();
    east.types("(a)").answers_yes();
    const Dialog not_found =
        advised_and_waited("#!gatescope_unix_gatewarden_check=" + east.checker_path() +
                           " \ndefined in east could not be found..");
    const Dialogs dialogs = east.run({"A=11", "R=n"}).dialogs();
    ASSERT_EQ(dialogs.size(), 4u);
    EXPECT_EQ(dialogs.front(), not_found);
    EXPECT_EQ(dialogs.back(), not_found);
    EXPECT_EQ(east.field(5, 2), "(a)");
}

TEST(Guard, ChecksPathActionsOnceBeforeThem) {
    for (const char* number : {"A=6", "A=7", "A=9", "A=10"}) {
        Region east = a_region().with_line(2, "W:depot;{stage}/depot;O;");
        east.checker_ends_with({1, 3});
        east.cancels();
        const Result result = east.run({number, "R=n"});
        EXPECT_EQ(result.dialogs().size(), 1u) << number;
        EXPECT_EQ(checks_of(east, result), (Words{"-status_only", "-error_count"})) << number;
    }
}

TEST(Guard, ChangesOnlyOneLineOfLongFile) {
    RegionPlan plan = a_region().with_line(5, ";(old);").with_alias("one", "(x)");
    for (int i = 0; i < 200; ++i) plan.with_key("key" + std::to_string(i) + ";R;  ;");
    Region east = plan;
    const std::string before = east.gatebits();
    east.types("(new)").answers_yes();
    EXPECT_EQ(east.run({"A=11", "R=n"}).status, 110);
    EXPECT_EQ(east.gatebits(), with_replaced(before, ";(old);", ";(new);"));
}

// Answers that could damage the file.

TEST(HostileAnswers, WritesMotdWithoutLineBreaksAndNuls) {
    Region east = a_region().with_line(7, ";old;;");
    const std::string before = east.gatebits();
    east.types("two\nlines\n").answers_yes();
    east.run({"A=13", "R=n"});
    EXPECT_EQ(east.gatebits(), with_replaced(before, ";old;;", ";two lines;;"));
    east.types("x\0y z"s).answers_yes();
    east.run({"A=13", "R=n"});
    EXPECT_EQ(east.gatebits(), with_replaced(before, ";old;;", ";x z;;"));
    east.types(std::string(5000, 'm')).cancels();
    EXPECT_EQ(east.run({"A=13", "R=n"}).dialogs().at(1).args.back(),
              "RETRY: MOTD value value exceeds 256 character max");
}

TEST(HostileAnswers, WritesKeyOf5000CharactersWhole) {
    Region east = a_region();
    const std::string before = east.gatebits();
    const std::string key(5000, 'k');
    east.types(key).answers_yes().cancels();
    east.run({"A=22", "R=n"});
    EXPECT_EQ(east.gatebits(), before + key + "\n");
}

TEST(HostileAnswers, RefusesKeyThatMakesFileUnreadable) {
    Region east = a_region();
    const std::string before = east.gatebits();
    east.types(std::string(30000, 'k')).answers_yes();
    const Result result = east.run({"A=22", "R=n"});
    EXPECT_EQ(result.status, 99);
    EXPECT_EQ(result.dialogs().back().args.at(4), "abort");
    EXPECT_EQ(east.gatebits(), before);
}

TEST(HostileAnswers, WritesOnlyBitsFromPicksWithLineBreaksAndNuls) {
    Region east = a_region();
    east.answers({.kind = "list", .outfile = "00 - x\n\n\n23\n99\n05\0;\n"s});
    east.answers_yes();
    east.run({"A=16", "R=n"});
    EXPECT_EQ(east.line(8), "D;100001000000000000000001;");
}

}  // namespace
}  // namespace gatescope
