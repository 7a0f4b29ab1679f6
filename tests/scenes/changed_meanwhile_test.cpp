// Another process changes the gatebits file while a dialog is open.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "scenes/actions.h"

namespace gatescope {
namespace {

const std::string ALIAS = "#!gatewarden_alias one x";
const std::string ALIAS_GONE = "/#!gatewarden_alias one/d";

RegionPlan region_of_three_keys() {
    return a_region()
        .with_line(7, ";old;;")
        .with_alias("one", "x")
        .with_alias("two", "y")
        .with_key("aaa;")
        .with_key("bbb;")
        .with_key("ccc;");
}

Dialog told_that_nothing_was_written(const Region& region) {
    return advised_and_waited("The gatebits file (" + region.gatebits_path() +
                              ") was changed meanwhile, and what you were shown no longer stands "
                              "there.\n\nYour change was not made: nothing was written.");
}

/// The answer yes, before which the gatebits file is edited with sed.
ScriptedAnswer yes_while(const std::string& edit) {
    return {.kind = "yes_no", .status = 0, .meanwhile = "sed -i '" + edit + "' gatebits.txt"};
}

/// Runs the action with the scripted answers. The last dialog must report that nothing was written,
/// and the file must hold `after`: the edit of the other process alone.
void expect_refused(Region& region, const std::string& action, const std::string& before,
                    const std::string& after) {
    const Result result = region.run({"A=" + action, "R=n"});
    EXPECT_EQ(result.status, 110);
    ASSERT_FALSE(result.dialogs().empty());
    EXPECT_EQ(result.dialogs().back(), told_that_nothing_was_written(region));
    EXPECT_EQ(region.gatebits(), after);
    EXPECT_NE(after, before) << "the edit changed nothing";
}

TEST(ChangedMeanwhile, RefusesToChangeKeyChangedMeanwhile) {
    Region east = region_of_three_keys();
    const std::string before = east.gatebits();
    east.operator_picks("001 bbb;").answers_yes().types("new;").answers(yes_while("s/bbb/zzz/"));
    expect_refused(east, "21", before, with_replaced(before, "bbb", "zzz"));
}

TEST(ChangedMeanwhile, RefusesToDeleteKeyThatMoved) {
    Region east = region_of_three_keys();
    const std::string before = east.gatebits();
    east.operator_picks("001 bbb;").answers_no().answers(yes_while("/aaa/d"));
    expect_refused(east, "21", before, with_replaced(before, "aaa;\n", ""));
}

TEST(ChangedMeanwhile, RefusesToDeleteKeyThatIsGone) {
    Region east = region_of_three_keys();
    const std::string before = east.gatebits();
    east.operator_picks("002 ccc;").answers_no().answers(yes_while("/bbb/d"));
    expect_refused(east, "21", before, with_replaced(before, "bbb;\n", ""));
}

ScriptedAnswer picks_while(const std::string& pick, const std::string& edit) {
    return {.kind = "list", .outfile = pick, .meanwhile = "sed -i '" + edit + "' gatebits.txt"};
}

TEST(ChangedMeanwhile, ReadsKeyAfterPick) {
    Region east = region_of_three_keys();
    east.answers(picks_while("001 bbb;", "/aaa/d")).answers_no().answers_yes().cancels();
    const Dialogs dialogs = east.run({"A=21", "R=n"}).dialogs();
    EXPECT_EQ(dialogs.at(2), asked("Confirm deletion of: Command Key 001...\n\n    ccc;", "no"));
    EXPECT_EQ(east.line(9), "bbb;");
    EXPECT_EQ(east.line(10), "");
    Region west = region_of_three_keys();
    west.answers(picks_while("001 bbb;", "s/bbb/zzz/")).cancels();
    EXPECT_EQ(west.run({"A=22", "R=n"}).dialogs().at(1),
              prompted("Creating value for New Command Key 003 (template provided)...", "zzz;"));
}

TEST(ChangedMeanwhile, EndsWithInternalErrorWhenPickedKeyIsGone) {
    for (const std::string action : {"21", "22"}) {
        Region east = region_of_three_keys();
        east.answers(picks_while("002 ccc;", "/aaa/d"));
        const Result result = east.run({"A=" + action, "R=n"});
        EXPECT_EQ(result.status, 99);
        EXPECT_EQ(result.dialogs().back(), griped("Internal error A_" + action));
    }
}

TEST(ChangedMeanwhile, RefusesToChangeFieldChangedMeanwhile) {
    Region east = region_of_three_keys();
    const std::string before = east.gatebits();
    east.types("new").answers(yes_while("s/old/other/"));
    expect_refused(east, "13", before, with_replaced(before, "old", "other"));
}

TEST(ChangedMeanwhile, RefusesBitsWhenHiddenBitsChanged) {
    Region east = region_of_three_keys().with_line(8, "D;0000000000000000000000001;");
    const std::string before = east.gatebits();
    east.operator_picks_several({"03 - (0) BIT__ONE_CO_PER_BRANCH"})
        .answers(yes_while("s/01;/02;/"));
    expect_refused(east, "16", before, with_replaced(before, "01;", "02;"));
}

TEST(ChangedMeanwhile, RefusesToClearDepotWhenDependentFieldsChanged) {
    for (const std::string edit : {"s/parent/other/", "s/notify/other/", "s/^W:.*;O/W:depot;;O/"}) {
        Region east = region_of_three_keys()
                          .with_line(2, "W:depot;{stage}/depot;O;")
                          .with_line(3, "W:parent;;")
                          .with_line(4, "notify;;");
        east.types("").answers(yes_while(edit));
        const Dialogs dialogs = east.run({"A=4", "R=n"}).dialogs();
        EXPECT_EQ(dialogs.back(), told_that_nothing_was_written(east)) << edit;
        EXPECT_EQ(east.field(2, 1), "W:depot");
    }
}

/// Installs a checker that reports one error for a file containing `fault`.
void install_checker(const std::string& fault, const Region& region) {
    std::filesystem::remove(region.checker_path());
    std::ofstream(region.checker_path()) << "#!/bin/sh\n! grep -q '" + fault + "' \"$1\"\n";
    std::filesystem::permissions(region.checker_path(), std::filesystem::perms(0755));
}

// The checker's errors then come from the other process, not from a value to be entered again.
TEST(ChangedMeanwhile, DoesNotRepeatGuardedAction) {
    Region fields = region_of_three_keys().with_line(5, "; (a) ;");
    std::string before = fields.gatebits();
    install_checker("gatewarden", fields);
    fields.types("(b)").answers(yes_while("s/(a)/(z)/"));
    expect_refused(fields, "11", before, with_replaced(before, "(a)", "(z)"));

    Region keys = region_of_three_keys();
    before = keys.gatebits();
    install_checker("gatewarden", keys);
    keys.operator_picks("000 aaa;").answers_yes().types("new;").answers(yes_while("s/aaa/zzz/"));
    expect_refused(keys, "21", before, with_replaced(before, "aaa", "zzz"));

    // The edit of the other process adds the error.
    Region faulty_now = region_of_three_keys();
    install_checker("zzz", faulty_now);
    faulty_now.operator_picks("001 bbb;").answers_no().answers(yes_while("s/bbb/zzz/"));
    before = faulty_now.gatebits();
    expect_refused(faulty_now, "21", before, with_replaced(before, "bbb", "zzz"));

    Region new_alias = region_of_three_keys();
    before = new_alias.gatebits();
    install_checker("gatewarden", new_alias);
    new_alias.types("three").types("ours").answers(yes_while("s/alias one x/alias three x/"));
    expect_refused(new_alias, "17", before, with_replaced(before, "alias one x", "alias three x"));

    Region alias = region_of_three_keys();
    before = alias.gatebits();
    install_checker("gatewarden", alias);
    alias.operator_picks(ALIAS).types("z").answers(yes_while("s/one x/one y/"));
    expect_refused(alias, "20", before, with_replaced(before, "one x", "one y"));
}

TEST(ChangedMeanwhile, WritesFieldWhenOtherFieldsOfLineChanged) {
    Region east = region_of_three_keys();
    east.types("new").answers(yes_while("s/;old;;/;old;(list);/"));
    EXPECT_EQ(east.run({"A=13", "R=n"}).dialogs().size(), 2u);
    EXPECT_EQ(east.line(7), ";new;(list);");
}

TEST(ChangedMeanwhile, RefusesToChangeAliasChangedMeanwhile) {
    Region east = region_of_three_keys();
    const std::string before = east.gatebits();
    const std::string after = with_replaced(before, ALIAS + "\n", "");
    east.operator_picks(ALIAS).types("z").answers(yes_while(ALIAS_GONE));
    expect_refused(east, "20", before, after);
    Region west = region_of_three_keys();
    const std::string west_before = west.gatebits();
    west.operator_picks(ALIAS).answers(yes_while("s/one x/one y/"));
    expect_refused(west, "18", west_before, with_replaced(west_before, "one x", "one y"));
    Region south = region_of_three_keys();
    const std::string south_before = south.gatebits();
    south.types("new").types("ours").answers(yes_while("s/alias one x/alias new x/"));
    expect_refused(south, "17", south_before,
                   with_replaced(south_before, "alias one x", "alias new x"));
}

TEST(ChangedMeanwhile, RefusesAliasWhenTheLastSlotIsTaken) {
    RegionPlan plan = a_region();
    for (int i = 0; i < 79; ++i) plan.with_alias("a" + std::to_string(i), "x");
    Region east = plan;
    const std::string before = east.gatebits();
    east.types("ours").types("value").answers(yes_while("1i #!gatewarden_alias theirs x"));
    expect_refused(east, "17", before, "#!gatewarden_alias theirs x\n" + before);
}

TEST(ChangedMeanwhile, RefusesToChangeSettingChangedMeanwhile) {
    const std::string browser = "#!gatescope_windows_browser=";
    Region east = region_of_three_keys();
    const std::string before = east.gatebits();
    east.operator_picks("03 gatescope_windows_browser=").types("ours");
    east.answers(yes_while("s/windows_browser=/windows_browser=theirs/"));
    expect_refused(east, "24", before, with_replaced(before, browser, browser + "theirs"));
}

TEST(ChangedMeanwhile, ContinuesWalkAfterRefusedSetting) {
    Region east = region_of_three_keys().with_line(2, "W:depot;{stage}/depot;O;");
    east.types("ours").answers(yes_while("s/unix_gatewarden_check=.*/unix_gatewarden_check=true/"));
    for (int i = 0; i < 5; ++i) east.cancels();
    const Dialogs dialogs = east.run({"A=28", "R=n"}).dialogs();
    EXPECT_EQ(dialogs.at(2), told_that_nothing_was_written(east));
    EXPECT_EQ(dialogs.size(), 8u);
    EXPECT_NE(east.gatebits().find("unix_gatewarden_check=true\n"), std::string::npos);
}

// Other reasons why nothing is written.

TEST(NotWritten, ReportsFieldWhoseLineIsMissing) {
    const std::string region = "gatewarden;;;east;\n;{stage}/depot;O;\n;;\n";
    Region east = a_region().with_gatebits(region).with_env("ZUL_GATESCOPE_VERBOSITY", "");
    const std::string before = east.gatebits();
    east.types("new").answers_yes();
    const Dialogs dialogs = east.run({"A=13", "R=n"}).dialogs();
    ASSERT_EQ(dialogs.size(), 3u);
    EXPECT_EQ(dialogs[2],
              advised_and_waited("Your change was not made: nothing was written.\n\nThe place of "
                                 "the Region MOTD String is field 2 of significant line 7, and "
                                 "there is no such line in (" +
                                 east.gatebits_path() +
                                 ").  Lines that are empty or begin with '#' do not count."));
    EXPECT_EQ(east.gatebits(), before);
}

TEST(NotWritten, ReportsFieldAfterTheLastOne) {
    Region east =
        a_region().with_line(2, ";{stage}/depot;").with_env("ZUL_GATESCOPE_VERBOSITY", "");
    east.operator_picks("S - 'S'ucessful attempts only logged").answers_yes();
    const Dialogs dialogs = east.run({"A=8", "R=n"}).dialogs();
    ASSERT_EQ(dialogs.size(), 3u);
    EXPECT_EQ(dialogs[2],
              advised_and_waited("Your change was not made: the value was not written.\n\nThe "
                                 "place of the Region Logging Personality is field 3 of "
                                 "significant line 2, and that line of (" +
                                 east.gatebits_path() +
                                 ") has no such field.  Each field has to be ended by ';'."));
    EXPECT_EQ(east.line(2), ";" + east.path("depot") + ";");
}

TEST(NotWritten, SaysThatEarlierAnswersStayWritten) {
    Region east = a_region().with_env("ZUL_PREFER_NO_GUI", "yes");
    east.types("true").answers_yes();
    // The next step's answer file is replaced by a symbolic link, which is not followed.
    east.answers({.kind = "text",
                  .meanwhile = "for f in tmp/gatewarden_prompt_result_*; do ln -sf none $f; done"});
    const Result result = east.run({"A=29", "R=n"});
    EXPECT_EQ(result.status, 99);
    EXPECT_NE(result.out.find("What it was for was not done; what was confirmed before stays "
                              "done."),
              std::string::npos)
        << result.out;
    EXPECT_NE(east.gatebits().find("unix_gatewarden_check=true\n"), std::string::npos);
}

}  // namespace
}  // namespace gatescope
