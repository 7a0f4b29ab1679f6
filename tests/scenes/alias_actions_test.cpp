// Aliases: add, delete, delete references, update.

#include <gtest/gtest.h>

#include <algorithm>

#include "scenes/actions.h"

namespace gatescope {
namespace {

const std::string HEADER = "#!gatewarden_alias ";
const std::string NAME_PROMPT =
    "Input an alias name (i.e. some_alias_name from char [a-z,A-Z,-,0-9] 50 character max)...";

std::string value_prompt(const std::string& name) {
    return "Input value for alias " + name + " (256 character max)...";
}

Dialog asked_to_add(const std::string& line) {
    return asked("Confirm addition of: Alias\n\n    " + line, "no");
}

Dialog no_aliases() {
    return advised_and_waited("There are no currently defined aliases for this region");
}

/// Two aliases after the tool's variables, and references to the second in a list and in keys.
RegionPlan with_two_aliases() {
    return a_region()
        .with_alias("one", "(x)")
        .with_alias("two", "(y) (z)")
        .with_line(5, ";(a) ~two (b);")
        .with_key("k1;~two ;~two_b ;")
        .with_key("k2;~two;");
}

const std::string ONE = "#!gatewarden_alias one (x)";
const std::string TWO = "#!gatewarden_alias two (y) (z)";

/// The file with its alias lines replaced by these, at its top.
std::string with_aliases(const std::string& gatebits, const std::vector<std::string>& aliases) {
    std::string text = with_replaced(with_replaced(gatebits, ONE + "\n", ""), TWO + "\n", "");
    std::string top;
    for (const std::string& alias : aliases) top += HEADER + alias + "\n";
    return top + text;
}

std::string without_references(const std::string& gatebits) {
    return with_replaced(with_replaced(with_replaced(gatebits, "(a) ~two (b)", "(a) (b)"),
                                       "k1;~two ;~two_b ;", "k1;;~two_b ;"),
                         "k2;~two;", "k2;;");
}

// A17.

TEST(AddAlias, WritesConfirmedAlias) {
    Region east = with_two_aliases();
    const std::string before = east.gatebits();
    east.types("new_1").types("(v) (w)").answers_yes();
    const Result result = east.run({"A=17", "R=n"});
    EXPECT_EQ(result.status, 110);
    EXPECT_EQ(result.dialogs(),
              (Dialogs{prompted(NAME_PROMPT, ""), prompted(value_prompt("new_1"), ""),
                       asked_to_add("#!gatewarden_alias new_1 (v) (w)")}));
    EXPECT_EQ(east.gatebits(), with_aliases(before, {"one (x)", "two (y) (z)", "new_1 (v) (w)"}));
    EXPECT_EQ(checks_of(east, result), (std::vector<std::string>{"-status_only", "-status_only"}));
}

TEST(AddAlias, ReportsAdditionWhenVerbose) {
    Region east = a_region().with_env("ZUL_GATESCOPE_VERBOSITY", "1");
    east.types("a").types("x & y").answers_yes();
    EXPECT_EQ(east.run({"A=17", "R=n"}).dialogs().at(3),
              asked("Successfully added Alias\n\n    #!gatewarden_alias a x && y", "yes", "yes"));
}

TEST(AddAlias, StartsWithEmptyPromptsAfterDecline) {
    Region east = a_region();
    const std::string before = east.gatebits();
    east.types("a").types("x").answers_no().types("b").types("y").answers_yes();
    EXPECT_EQ(east.run({"A=17", "R=n"}).dialogs(),
              (Dialogs{prompted(NAME_PROMPT, ""), prompted(value_prompt("a"), ""),
                       asked_to_add("#!gatewarden_alias a x"), prompted(NAME_PROMPT, ""),
                       prompted(value_prompt("b"), ""), asked_to_add("#!gatewarden_alias b y")}));
    EXPECT_EQ(east.gatebits(), "#!gatewarden_alias b y\n" + before);
}

TEST(AddAlias, WritesNothingWhenAbortedOrCancelled) {
    Region east = a_region();
    const std::string before = east.gatebits();
    east.types("a").types("x").aborts();
    EXPECT_EQ(east.run({"A=17", "R=n"}).dialogs().size(), 3u);
    east.cancels();
    EXPECT_EQ(east.run({"A=17", "R=n"}).dialogs().size(), 1u);
    east.types("a").cancels();
    EXPECT_EQ(east.run({"A=17", "R=n"}).dialogs().size(), 2u);
    EXPECT_EQ(east.gatebits(), before);
}

const std::string ADD = "A17 - Add Alias Definition to Region";
const std::string UPDATE = "A20 - Update Alias Definition in Region";

/// Runs the submenu with the scripted answers. 110: the last answer was not empty; 0: the submenu
/// came again and was cancelled.
int status_of_submenu(Region& east) {
    return east.run({"A=2", "R=n"}).status;
}

TEST(AddAlias, KeepsLastAnswerWhenPromptIsCancelled) {
    Region east = with_two_aliases();
    east.operator_picks(ADD).cancels();
    EXPECT_EQ(status_of_submenu(east), 110);
    east.operator_picks(ADD).types("a-b").cancels();
    EXPECT_EQ(status_of_submenu(east), 110);
    east.operator_picks(ADD).types("a").cancels();
    EXPECT_EQ(status_of_submenu(east), 110);
    east.operator_picks(ADD).types("a").types("x;").cancels();
    EXPECT_EQ(status_of_submenu(east), 110);
    east.operator_picks(ADD).types("a").types("x").answers_no().cancels();
    EXPECT_EQ(status_of_submenu(east), 110);
}

TEST(AddAlias, KeepsRejectedEmptyAnswerAsLastAnswer) {
    Region east = with_two_aliases();
    east.operator_picks(ADD).types("").cancels().cancels();
    EXPECT_EQ(status_of_submenu(east), 0);
    east.operator_picks(ADD).types("a").types("").cancels().cancels();
    EXPECT_EQ(status_of_submenu(east), 0);
}

TEST(AddAlias, AsksAgainForRejectedNamesAndValues) {
    Region east = with_two_aliases();
    east.types("").types("a-b").types("two").types("Two").types("").types("a;b").types("ok");
    east.answers_yes();
    EXPECT_EQ(
        east.run({"A=17", "R=n"}).dialogs(),
        (Dialogs{prompted(NAME_PROMPT, ""), prompted("RETRY: alias name is empty", ""),
                 prompted("RETRY: alias names must only contain [a..z,A..Z,0..9,_]", ""),
                 prompted("RETRY: alias name two already exist.  You should edit that one or input "
                          "another alias name",
                          ""),
                 prompted(value_prompt("Two"), ""), prompted("RETRY: alias value is empty", ""),
                 prompted("RETRY: alias value may not contain commas (,) or semi-colons (;)", ""),
                 asked_to_add("#!gatewarden_alias Two ok")}));
}

TEST(AddAlias, RefusesMoreThan80Aliases) {
    RegionPlan plan = a_region();
    for (int i = 1; i <= 79; ++i) plan.with_alias("a" + std::to_string(i), "v");
    Region nearly_full = plan;
    nearly_full.cancels();
    EXPECT_EQ(nearly_full.run({"A=17", "R=n"}).dialogs(), Dialogs{prompted(NAME_PROMPT, "")});
    Region full = plan.with_alias("a80", "v");
    EXPECT_EQ(full.run({"A=17", "R=n"}).dialogs(),
              Dialogs{advised("Maximum of 80 already defined for Region.  You will have to delete "
                              "some to add more...")});
}

TEST(AddAlias, ShowsFaultyAliasLineAndKeepsLinesAfterIt) {
    Region east = a_region().with_alias("one", "(x)").with_alias("b-d", "y").with_alias("c", "z");
    const std::string before = east.gatebits();
    east.types("n").types("v").answers_yes();
    EXPECT_EQ(east.run({"A=17", "R=n"}).dialogs().at(0),
              advised("ERROR: read invalid alias name (#!gatewarden_alias b-d y).  Alias names "
                      "must be made up of [a..z,A..Z,_,0..9] only."));
    EXPECT_EQ(east.gatebits(),
              ONE + "\n#!gatewarden_alias n v\n" + with_replaced(before, ONE + "\n", ""));
}

// A18.

Dialog asked_about_references(const std::string& reference) {
    return asked("Do you also want to remove all alias references ( " + reference +
                 " ) from fields and keys in the gatebits file?\n\nYes - Remove the alias "
                 "definition and ~references to it\nNo - Remove only the alias definition\nCancel "
                 "- Cancel removal");
}

Dialog list_to_remove() {
    return listed("Select Alias Definition to remove from region", ONE + "," + TWO);
}

TEST(DeleteAlias, RemovesAliasAndReferencesOnYes) {
    Region east = with_two_aliases();
    const std::string before = east.gatebits();
    east.operator_picks(TWO).answers_yes();
    const Result result = east.run({"A=18", "R=n"});
    EXPECT_EQ(result.dialogs(),
              (Dialogs{list_to_remove(), asked_about_references("~two"),
                       advised_and_waited("The alias definition for ( two ) was removed..\n\n3 "
                                          "~two alias references were found and also removed.")}));
    EXPECT_EQ(east.gatebits(), without_references(with_aliases(before, {"one (x)"})));
    EXPECT_TRUE(result.calls_of("gatewarden").empty());
}

TEST(DeleteAlias, KeepsReferencesOnNo) {
    Region east = with_two_aliases();
    const std::string before = east.gatebits();
    east.operator_picks(TWO).answers_no();
    EXPECT_EQ(east.run({"A=18", "R=n"}).dialogs().at(2),
              advised_and_waited("The alias definition for ( two ) was removed..\n\nWARNING: 3 "
                                 "~two alias references still exist."));
    EXPECT_EQ(east.gatebits(), with_aliases(before, {"one (x)"}));
}

TEST(DeleteAlias, WritesNothingWhenAbortedOrCancelled) {
    Region east = with_two_aliases();
    const std::string before = east.gatebits();
    east.operator_picks(TWO).aborts();
    EXPECT_EQ(east.run({"A=18", "R=n"}).dialogs().size(), 2u);
    east.answers({.kind = "list", .outfile = ""}).cancels();
    EXPECT_EQ(east.run({"A=18", "R=n"}).dialogs(), (Dialogs{list_to_remove(), list_to_remove()}));
    EXPECT_EQ(east.gatebits(), before);
}

TEST(DeleteAlias, EndsWithInternalErrorOnPickWithoutName) {
    Region east = with_two_aliases();
    east.answers({.kind = "list", .outfile = "nonsense"});
    const Result result = east.run({"A=18", "R=n"});
    EXPECT_EQ(result.status, 99);
    EXPECT_EQ(result.dialogs().back(), griped("Internal error A_18"));
}

TEST(DeleteAlias, SaysThatThereAreNoAliases) {
    Region east = a_region();
    for (const char* action : {"A=18", "A=19", "A=20"}) {
        EXPECT_EQ(east.run({action, "R=n"}).dialogs(), Dialogs{no_aliases()}) << action;
    }
}

TEST(DeleteAlias, SaysThatThereAreNoAliasesAfterTheLastIsDeleted) {
    Region east = a_region().with_alias("only", "x");
    east.operator_picks("#!gatewarden_alias only x").answers_yes();
    for (const char* entry : {"A18 - Delete Alias Definition from Region",
                              "A19 - Delete References to Alias Definition from Region",
                              "A20 - Update Alias Definition in Region"}) {
        east.operator_picks("A02 - Modify Current Gatebits file... (A03-A23)");
        east.operator_picks(entry).cancels();
    }
    east.cancels();
    const Dialogs dialogs = east.run({"A=18"}).dialogs();
    EXPECT_EQ(std::count(dialogs.begin(), dialogs.end(), no_aliases()), 3);
}

// A19.

Dialog asked_to_remove_references(const std::string& reference) {
    return asked("Do you want to remove the " + reference +
                     " alias references from fields and keys in the gatebits file?\n\nYes - Remove "
                     "REFERENCES to the alias (but leave the alias DEFINITION intact)\nCancel - "
                     "Cancel removal",
                 "yes", "yes,abort");
}

Dialog list_of_references() {
    return listed("Select Alias References to remove from region", "~one,~two");
}

TEST(DeleteReferences, RemovesConfirmedReferences) {
    Region east = with_two_aliases();
    const std::string before = east.gatebits();
    east.operator_picks("~two").answers_yes();
    EXPECT_EQ(east.run({"A=19", "R=n"}).dialogs(),
              (Dialogs{list_of_references(), asked_to_remove_references("~two"),
                       advised_and_waited("3 ~two alias references were found and removed.")}));
    EXPECT_EQ(east.gatebits(),
              without_references(with_aliases(before, {"one (x)", "two (y) (z)"})));
}

TEST(DeleteReferences, SaysThatNoReferenceWasFound) {
    Region east = with_two_aliases();
    east.operator_picks("~one").answers_yes();
    EXPECT_EQ(east.run({"A=19", "R=n"}).dialogs().at(2),
              advised_and_waited("No ~one alias references were found to remove."));
}

TEST(DeleteReferences, WritesNothingWhenAbortedOrCancelled) {
    Region east = with_two_aliases();
    const std::string before = east.gatebits();
    east.operator_picks("~two").aborts();
    EXPECT_EQ(east.run({"A=19", "R=n"}).dialogs().size(), 2u);
    east.cancels();
    EXPECT_EQ(east.run({"A=19", "R=n"}).dialogs(), Dialogs{list_of_references()});
    EXPECT_EQ(east.gatebits(), before);
}

// A20.

Dialog list_to_update() {
    return listed("Select Alias Definition to update in region", ONE + "," + TWO);
}

const std::string ITEM = "Alias #!gatewarden_alias two";

TEST(UpdateAlias, WritesConfirmedValue) {
    Region east = with_two_aliases();
    const std::string before = east.gatebits();
    east.operator_picks(TWO).types("(new)").answers_yes();
    const Result result = east.run({"A=20", "R=n"});
    EXPECT_EQ(result.dialogs(), (Dialogs{list_to_update(), prompted(value_prompt("two"), "(y) (z)"),
                                         asked_to_change(ITEM, "(y) (z)", "(new)")}));
    EXPECT_EQ(east.gatebits(), with_aliases(before, {"one (x)", "two (new)"}));
    EXPECT_EQ(result.calls_of("gatewarden").size(), 2u);
}

TEST(UpdateAlias, ReportsChangeWhenVerbose) {
    Region east = with_two_aliases().with_env("ZUL_GATESCOPE_VERBOSITY", "");
    east.operator_picks(TWO).types("(new)").answers_yes();
    const Dialogs dialogs = east.run({"A=20", "R=n"}).dialogs();
    ASSERT_EQ(dialogs.size(), 5u);
    EXPECT_EQ(dialogs[3],
              advised_and_waited("The alias definition for ~two was changed..\n\n3 current ~two "
                                 "alias references were effected."));
    EXPECT_EQ(dialogs[4], reported_change(ITEM, "(y) (z)", "(new)"));
}

TEST(UpdateAlias, ShowsListAgainAfterDecline) {
    Region east = with_two_aliases();
    const std::string before = east.gatebits();
    east.operator_picks(TWO).types("(new)").answers_no().operator_picks(ONE).types("(n)");
    east.answers_yes();
    EXPECT_EQ(east.run({"A=20", "R=n"}).dialogs(),
              (Dialogs{list_to_update(), prompted(value_prompt("two"), "(y) (z)"),
                       asked_to_change(ITEM, "(y) (z)", "(new)"), list_to_update(),
                       prompted(value_prompt("one"), "(x)"),
                       asked_to_change("Alias #!gatewarden_alias one", "(x)", "(n)")}));
    EXPECT_EQ(east.gatebits(), with_aliases(before, {"one (n)", "two (y) (z)"}));
}

TEST(UpdateAlias, OffersCurrentValueAfterRejection) {
    Region east = with_two_aliases();
    east.operator_picks(TWO).types("").cancels();
    EXPECT_EQ(east.run({"A=20", "R=n"}).dialogs().at(2),
              prompted("RETRY: alias value is empty", "(y) (z)"));
}

TEST(UpdateAlias, WritesNothingWhenAbortedOrCancelled) {
    Region east = with_two_aliases();
    const std::string before = east.gatebits();
    east.operator_picks(TWO).types("(new)").aborts();
    EXPECT_EQ(east.run({"A=20", "R=n"}).dialogs().size(), 3u);
    east.cancels();
    EXPECT_EQ(east.run({"A=20", "R=n"}).dialogs().size(), 1u);
    east.operator_picks(TWO).cancels();
    EXPECT_EQ(east.run({"A=20", "R=n"}).dialogs().size(), 2u);
    EXPECT_EQ(east.gatebits(), before);
}

TEST(UpdateAlias, KeepsLastAnswerWhenPromptIsCancelled) {
    Region east = with_two_aliases();
    east.operator_picks(UPDATE).operator_picks(TWO).cancels();
    EXPECT_EQ(status_of_submenu(east), 110);
    east.operator_picks(UPDATE).operator_picks(TWO).types("x;").cancels();
    EXPECT_EQ(status_of_submenu(east), 110);
}

TEST(UpdateAlias, ReturnsToSubmenuAfterEmptyAnswerOrCancelledList) {
    Region east = with_two_aliases();
    east.operator_picks(UPDATE).operator_picks(TWO).types("").cancels().cancels();
    EXPECT_EQ(status_of_submenu(east), 0);
    east.operator_picks(UPDATE).cancels().cancels();
    EXPECT_EQ(status_of_submenu(east), 0);
    east.operator_picks(UPDATE).operator_picks(TWO).types("x").answers_no().cancels().cancels();
    EXPECT_EQ(status_of_submenu(east), 0);
}

TEST(UpdateAlias, OffersCutValueOfCutEntry) {
    const std::string value = std::string(100, 'v');
    Region east = a_region().with_alias("long", value);
    const std::string whole = "#!gatewarden_alias long " + value;
    const std::string entry = whole.substr(0, 100) + " ...";
    const std::string shown = entry.substr(std::string("#!gatewarden_alias long ").size());
    east.operator_picks(entry).types("(new)").answers_yes();
    EXPECT_EQ(east.run({"A=20", "R=n"}).dialogs(),
              (Dialogs{listed("Select Alias Definition to update in region", entry),
                       prompted(value_prompt("long"), shown),
                       asked_to_change("Alias #!gatewarden_alias long",
                                       shown.size() < 80 ? shown : shown.substr(0, 80) + "...",
                                       "(new)")}));
    EXPECT_TRUE(east.gatebits().starts_with("#!gatewarden_alias long (new)\n"));
}

TEST(UpdateAlias, ShowsEntryOf100CharactersWhole) {
    const std::string value = std::string(100 - std::string("#!gatewarden_alias l ").size(), 'v');
    Region east = a_region().with_alias("l", value);
    east.cancels();
    EXPECT_EQ(east.run({"A=20", "R=n"}).dialogs(),
              Dialogs{listed("Select Alias Definition to update in region",
                             "#!gatewarden_alias l " + value)});
}

TEST(UpdateAlias, OffersEmptyValue) {
    Region east = a_region().with_line_on_top("#!gatewarden_alias bare");
    east.answers({.kind = "list", .outfile = "#!gatewarden_alias bare \n"}).cancels();
    EXPECT_EQ(
        east.run({"A=20", "R=n"}).dialogs(),
        (Dialogs{listed("Select Alias Definition to update in region", "#!gatewarden_alias bare "),
                 prompted(value_prompt("bare"), "")}));
}

TEST(UpdateAlias, EndsWithInternalErrorOnPickWithoutName) {
    Region east = with_two_aliases();
    east.answers({.kind = "list", .outfile = "nonsense"});
    EXPECT_EQ(east.run({"A=20", "R=n"}).dialogs().back(), griped("Internal error A_20"));
}

}  // namespace
}  // namespace gatescope
