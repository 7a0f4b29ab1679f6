// Command keys: view, change, delete, add.

#include <gtest/gtest.h>

#include "scenes/actions.h"

namespace gatescope {
namespace {

const std::string FIRST = "pre_checkin;R;(a) & (b);0;0;0;D; ;N; ;0;;;;;0;E;;;";
const std::string SECOND = "pre_rmelem;R; ;0;";
const std::string DEFAULT_KEY = "pre_checkin;R; ;0;0;0;D; ;N; ;0;;;;;0;E;;;";
const std::string ENTRIES =
    "000 pre_checkin;R;(a) & (b);0;0;0;D; ;N; ;0;;;;;0;,001 pre_rmelem;R; ;0;";
const std::string ENTRY_0 = "000 pre_checkin;R;(a) & (b);0;0;0;D; ;N; ;0;;;;;0;";
const std::string ENTRY_1 = "001 pre_rmelem;R; ;0;";

RegionPlan with_two_keys() {
    return a_region().with_key(FIRST).with_key("# a comment between").with_key(SECOND);
}

Dialog key_list(const std::string& entries = ENTRIES) {
    return listed("Select one key to view/change/delete:", entries);
}

Dialog described(const std::string& number, const std::string& shown,
                 const std::string& noun = "Command Key") {
    return asked(noun + " #" + number + " description:\n\n" + shown +
                 "\n\nDo you want to edit or delete the key?\n\nYes - to edit\nNo - to "
                 "delete\nCancel - to cancel");
}

Dialog asked_to_change_key(const Region& region, const std::string& number, const std::string& from,
                           const std::string& to) {
    return asked_to_change(
        "Command Key " + number + "...", from, to,
        "\n\nReminder:  Use gatewarden " + region.gatebits_path() + " -check to verify...");
}

Dialog asked_to_delete(const std::string& number, const std::string& shown) {
    return asked("Confirm deletion of: Command Key " + number + "...\n\n    " + shown, "no");
}

// A21.

TEST(ViewKey, WritesConfirmedValue) {
    Region east = with_two_keys();
    const std::string before = east.gatebits();
    east.operator_picks(ENTRY_1).answers_yes().types("new;R;").answers_yes().cancels();
    const Result result = east.run({"A=21", "R=n"});
    EXPECT_EQ(result.status, 110);
    EXPECT_EQ(result.dialogs(),
              (Dialogs{key_list(), described("001", SECOND),
                       prompted("Changing value for Key 001...", SECOND),
                       asked_to_change_key(east, "001", SECOND, "new;R;"),
                       key_list("000 pre_checkin;R;(a) & (b);0;0;0;D; ;N; ;0;;;;;0;,001 new;R;")}));
    EXPECT_EQ(east.gatebits(), with_replaced(before, SECOND, "new;R;"));
    EXPECT_EQ(checks_of(east, result), (std::vector<std::string>{"-status_only", "-status_only"}));
}

TEST(ViewKey, ReportsChangeWhenVerbose) {
    Region east = with_two_keys().with_env("ZUL_GATESCOPE_VERBOSITY", "");
    east.operator_picks(ENTRY_1).answers_yes().types("new;").answers_yes().cancels();
    EXPECT_EQ(east.run({"A=21", "R=n"}).dialogs().at(4),
              reported_change("Command Key 001...", SECOND, "new;"));
}

TEST(ViewKey, DoublesAmpersandsInDescriptionOnly) {
    Region east = with_two_keys();
    east.operator_picks(ENTRY_0).answers_yes().cancels();
    const Dialogs dialogs = east.run({"A=21", "R=n"}).dialogs();
    EXPECT_EQ(dialogs.at(1),
              described("000", "pre_checkin;R;(a) && (b);0;0;0;D; ;N; ;0;;;;;0;E;;;"));
    EXPECT_EQ(dialogs.at(2), prompted("Changing value for Key 000...", FIRST));
}

TEST(ViewKey, ReturnsToListWhenEditIsDeclinedOrAborted) {
    Region east = with_two_keys();
    const std::string before = east.gatebits();
    east.operator_picks(ENTRY_1).answers_yes().types("x").answers_no();
    east.operator_picks(ENTRY_1).answers_yes().types("x").aborts();
    east.cancels();
    const Dialogs dialogs = east.run({"A=21", "R=n"}).dialogs();
    ASSERT_EQ(dialogs.size(), 9u);
    EXPECT_EQ(dialogs[4], key_list());
    EXPECT_EQ(dialogs[8], key_list());
    EXPECT_EQ(east.gatebits(), before);
}

TEST(ViewKey, WritesValueConfirmedAfterDecline) {
    Region east = with_two_keys();
    const std::string before = east.gatebits();
    east.operator_picks(ENTRY_1).answers_yes().types("x").answers_no();
    east.operator_picks(ENTRY_1).answers_yes().types("y").answers_yes().cancels();
    east.run({"A=21", "R=n"});
    EXPECT_EQ(east.gatebits(), with_replaced(before, SECOND, "y"));
}

TEST(ViewKey, EndsWhenPromptIsCancelled) {
    Region east = with_two_keys();
    east.operator_picks(ENTRY_1).answers_yes().cancels();
    EXPECT_EQ(east.run({"A=21", "R=n"}).dialogs().size(), 3u);
}

TEST(ViewKey, EndsWhenListIsCancelled) {
    Region east = with_two_keys();
    east.answers({.kind = "list", .outfile = ""}).cancels();
    EXPECT_EQ(east.run({"A=21", "R=n"}).dialogs(), (Dialogs{key_list(), key_list()}));
}

TEST(ViewKey, ReturnsToListWhenQuestionIsAborted) {
    Region east = with_two_keys();
    east.operator_picks(ENTRY_1).aborts().cancels();
    EXPECT_EQ(east.run({"A=21", "R=n"}).dialogs(),
              (Dialogs{key_list(), described("001", SECOND), key_list()}));
}

TEST(ViewKey, DeletesConfirmedKey) {
    Region east = with_two_keys();
    const std::string before = east.gatebits();
    east.operator_picks(ENTRY_0).answers_no().answers_yes().cancels();
    EXPECT_EQ(
        east.run({"A=21", "R=n"}).dialogs(),
        (Dialogs{key_list(),
                 described("000", "pre_checkin;R;(a) && (b);0;0;0;D; ;N; ;0;;;;;0;E;;;"),
                 asked_to_delete("000", "pre_checkin;R;(a) && (b);0;0;0;D; ;N; ;0;;;;;0;E;;;"),
                 key_list("000 pre_rmelem;R; ;0;")}));
    EXPECT_EQ(east.gatebits(), with_replaced(before, FIRST + "\n", "\n"));
}

TEST(ViewKey, WritesNothingWhenDeletionIsDeclinedOrAborted) {
    Region east = with_two_keys();
    const std::string before = east.gatebits();
    east.operator_picks(ENTRY_1).answers_no().answers_no();
    east.operator_picks(ENTRY_1).answers_no().aborts();
    east.cancels();
    EXPECT_EQ(east.run({"A=21", "R=n"}).dialogs().size(), 7u);
    EXPECT_EQ(east.gatebits(), before);
}

TEST(ViewKey, ShowsNoticeAfterTheOnlyKeyIsDeleted) {
    Region east = a_region().with_key(SECOND).with_env("ZUL_GATESCOPE_VERBOSITY", "");
    east.operator_picks("000 " + SECOND).answers_no().answers_yes();
    EXPECT_EQ(
        east.run({"A=21", "R=n"}).dialogs(),
        (Dialogs{key_list("000 " + SECOND), described("000", SECOND),
                 asked_to_delete("000", SECOND),
                 asked("Successfully deleted Command Key 000...\n\n    " + SECOND, "yes", "yes"),
                 asked("There are no commands keys to view...", "abort", "abort")}));
}

TEST(ViewKey, CutsLongKeysInListAndDescription) {
    const std::string eighty(80, 'k');
    Region east = a_region().with_key(eighty).with_key(eighty.substr(1));
    east.operator_picks("000 " + eighty.substr(0, 46)).aborts();
    east.operator_picks("001 " + eighty.substr(0, 46)).aborts();
    east.cancels();
    const Dialogs dialogs = east.run({"A=21", "R=n"}).dialogs();
    EXPECT_EQ(dialogs.at(1), described("000", eighty + "..."));
    EXPECT_EQ(dialogs.at(3), described("001", eighty.substr(1)));
}

TEST(ViewKey, EndsWithInternalErrorOnPickThatIsNoKey) {
    for (const char* pick : {"nonsense", "002 x", "99999999999999999999"}) {
        Region east = with_two_keys();
        east.answers({.kind = "list", .outfile = pick});
        const Result result = east.run({"A=21", "R=n"});
        EXPECT_EQ(result.status, 99);
        EXPECT_EQ(result.dialogs().back(), griped("Internal error A_21")) << pick;
    }
}

TEST(ViewKey, NamesCpdsInLiteEdition) {
    Region none = a_region().lite();
    EXPECT_EQ(none.run({"A=21", "R=n"}).dialogs(),
              Dialogs{asked("There are no CPDS to view...", "abort", "abort")});
    Region east = a_region().lite().with_key(SECOND);
    east.operator_picks("000 " + SECOND).answers_yes().types("x").answers_no().cancels();
    EXPECT_EQ(
        east.run({"A=21", "R=n"}).dialogs(),
        (Dialogs{listed("Select one CPD to view/change/delete:", "000 " + SECOND),
                 described("000", SECOND, "CPD"), prompted("Changing value for Key 000...", SECOND),
                 asked_to_change_key(east, "000", SECOND, "x"),
                 listed("Select one CPD to view/change/delete:", "000 " + SECOND)}));
}

/// Keys like "key 7;".
std::vector<std::string> many_keys(int count) {
    std::vector<std::string> keys;
    for (int i = 0; i < count; ++i) keys.push_back("key " + std::to_string(i) + ";");
    return keys;
}

RegionPlan with_keys(const std::vector<std::string>& keys) {
    RegionPlan plan = a_region();
    for (const std::string& key : keys) plan.with_key(key);
    return plan;
}

/// The entries of the first 119 keys: the others stand after the last significant line that can be
/// addressed.
std::string entries_of(const std::vector<std::string>& keys) {
    std::string entries;
    for (std::size_t i = 0; i < keys.size() && i < 119; ++i) {
        const std::string number = std::to_string(i);
        entries +=
            (i == 0 ? "" : ",") + std::string(3 - number.size(), '0') + number + " " + keys[i];
    }
    return entries;
}

TEST(ViewKey, DeletesOnlyConfirmedKeyOfLongFile) {
    std::vector<std::string> keys = many_keys(281);
    Region east = with_keys(keys);
    const std::string before = east.gatebits();
    east.operator_picks("000 key 0;").answers_no().answers_yes().cancels();
    const Result result = east.run({"A=21", "R=n"});
    EXPECT_EQ(east.gatebits(), with_replaced(before, "key 0;\n", "\n"));
    EXPECT_EQ(result.status, 110);
    EXPECT_EQ(result.dialogs().front(), key_list(entries_of(keys)));
    keys.erase(keys.begin());
    EXPECT_EQ(result.dialogs().back(), key_list(entries_of(keys)));
    const std::string why =
        " keys in (" + east.gatebits_path() +
        ") are not offered: a line after the 127th significant one cannot be addressed.\n";
    EXPECT_EQ(result.err, "gatescope: 162 of 281" + why + "gatescope: 161 of 280" + why);
}

TEST(ViewKey, ReportsNothingWhenAllKeysAreOffered) {
    Region east = with_keys(many_keys(119)).with_line_on_top("# no key");
    east.cancels();
    const Result result = east.run({"A=21", "R=n"});
    EXPECT_EQ(result.dialogs().front(), key_list(entries_of(many_keys(119))));
    EXPECT_EQ(result.err, "");
}

// A22.

Dialog template_list(const std::string& entries = ENTRIES) {
    return listed("Select a key use as a template or none for default:", entries);
}

Dialog new_key_prompt(const std::string& number, const std::string& text) {
    return prompted("Creating value for New Command Key " + number + " (template provided)...",
                    text);
}

Dialog asked_to_add(const std::string& number, const std::string& text) {
    return asked("Confirm addition of: Command Key " + number + "...\n\n    Key=" + text, "no");
}

TEST(AddKey, OffersDefaultForFirstKey) {
    Region east = a_region();
    const std::string before = east.gatebits();
    east.types("new;R;").answers_yes().cancels();
    EXPECT_EQ(east.run({"A=22", "R=n"}).dialogs(),
              (Dialogs{new_key_prompt("000", DEFAULT_KEY), asked_to_add("000", "new;R;"),
                       template_list("000 new;R;")}));
    EXPECT_EQ(east.gatebits(), before + "new;R;\n");
}

TEST(AddKey, AppendsKeyMadeFromTemplate) {
    Region east = with_two_keys().with_key("# at the end");
    const std::string before = east.gatebits();
    east.operator_picks(ENTRY_0).types("new").answers_yes().cancels();
    EXPECT_EQ(east.run({"A=22", "R=n"}).dialogs(),
              (Dialogs{template_list(), new_key_prompt("002", FIRST), asked_to_add("002", "new"),
                       template_list(ENTRIES + ",002 new")}));
    EXPECT_EQ(east.gatebits(), before + "new\n");
}

TEST(AddKey, ReportsNumberOfTemplatesNotOffered) {
    Region east = with_keys(many_keys(120));
    east.cancels();
    const Result result = east.run({"A=22", "R=n"});
    EXPECT_EQ(result.dialogs(), Dialogs{template_list(entries_of(many_keys(120)))});
    EXPECT_EQ(result.err, "gatescope: 1 of 120 keys in (" + east.gatebits_path() +
                              ") are not offered: a line after the 127th significant one cannot be "
                              "addressed.\n");
}

TEST(AddKey, OffersDefaultWhenNoTemplateIsPicked) {
    Region east = with_two_keys();
    east.answers({.kind = "list", .outfile = ""}).cancels();
    EXPECT_EQ(east.run({"A=22", "R=n"}).dialogs(),
              (Dialogs{template_list(), new_key_prompt("002", DEFAULT_KEY)}));
}

TEST(AddKey, ReportsChangeWhenVerbose) {
    Region east = a_region().with_env("ZUL_GATESCOPE_VERBOSITY", "");
    east.types("new").answers_yes().cancels();
    EXPECT_EQ(east.run({"A=22", "R=n"}).dialogs().at(2),
              reported_change("Command Key 000...", "Key", "new"));
}

TEST(AddKey, AddsSeveralKeysInOneRun) {
    Region east = a_region();
    const std::string before = east.gatebits();
    east.types("a").answers_no().types("b").answers_yes();
    east.operator_picks("000 b").types("c").answers_yes();
    east.cancels();
    EXPECT_EQ(east.run({"A=22", "R=n"}).dialogs(),
              (Dialogs{new_key_prompt("000", DEFAULT_KEY), asked_to_add("000", "a"),
                       new_key_prompt("000", DEFAULT_KEY), asked_to_add("000", "b"),
                       template_list("000 b"), new_key_prompt("001", "b"), asked_to_add("001", "c"),
                       template_list("000 b,001 c")}));
    EXPECT_EQ(east.gatebits(), before + "b\nc\n");
}

TEST(AddKey, WritesNothingWhenAbortedOrCancelled) {
    Region east = with_two_keys();
    const std::string before = east.gatebits();
    east.operator_picks(ENTRY_0).types("a").aborts().cancels();
    EXPECT_EQ(east.run({"A=22", "R=n"}).dialogs().size(), 4u);
    east.operator_picks(ENTRY_0).cancels();
    EXPECT_EQ(east.run({"A=22", "R=n"}).dialogs().size(), 2u);
    east.cancels();
    EXPECT_EQ(east.run({"A=22", "R=n"}).dialogs().size(), 1u);
    EXPECT_EQ(east.gatebits(), before);
}

TEST(AddKey, EndsWithInternalErrorOnPickThatIsNoKey) {
    for (const char* pick : {"nonsense", "002 x"}) {
        Region east = with_two_keys();
        east.answers({.kind = "list", .outfile = pick});
        EXPECT_EQ(east.run({"A=22", "R=n"}).dialogs().back(), griped("Internal error A_22"));
    }
}

TEST(AddKey, UsesSameWordsInLiteEdition) {
    Region east = a_region().lite().with_key(SECOND);
    east.operator_picks("000 " + SECOND).types("x").answers_no().cancels();
    EXPECT_EQ(east.run({"A=22", "R=n"}).dialogs(),
              (Dialogs{template_list("000 " + SECOND), new_key_prompt("001", SECOND),
                       asked_to_add("001", "x"), template_list("000 " + SECOND)}));
}

TEST(AddKey, RepeatsActionWhenKeyAddsAnError) {
    Region east = a_region();
    east.checker_ends_with({0, 1, 1, 1, 0});
    east.types("bad").answers_yes().cancels();
    east.operator_picks("000 bad").types("x").answers_no().cancels();
    const Dialogs dialogs = east.run({"A=22", "R=n"}).dialogs();
    EXPECT_EQ(dialogs.at(3), told_to_reenter());
    EXPECT_EQ(dialogs.size(), 8u);
}

}  // namespace
}  // namespace gatescope
