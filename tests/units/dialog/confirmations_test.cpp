#include "dialog/confirmations.h"

#include <gtest/gtest.h>

#include "units/on_stage.h"

namespace gatescope {
namespace {

class Confirmations : public OnStage {
  protected:
    Confirmations() { ZUL_PREFER_GUI = 0; }

    /// The text of the only question that `call` asks.
    template <typename Call>
    std::string asked_by(Call call) {
        region.aborts();
        call();
        const Dialogs shown = region.shown_so_far().dialogs();
        return shown.size() == 1 ? shown.front().args.back() : testing::PrintToString(shown);
    }
};

TEST_F(Confirmations, ReturnTheAnswerOrAborted) {
    const Consent expected[] = {Consent::CONFIRMED, Consent::DECLINED, Consent::ABORTED,
                                Consent::ABORTED};
    static_assert(static_cast<int>(Consent::CONFIRMED) == 1 &&
                  static_cast<int>(Consent::DECLINED) == 0 &&
                  static_cast<int>(Consent::ABORTED) == 2);
    for (const int status : {0, 1, 2, 3}) {
        for (int i = 0; i < 3; ++i) region.answers({.kind = "yes_no", .status = status});
        EXPECT_EQ(confirm_change({"x", "a", "b"}), expected[status]);
        EXPECT_EQ(confirm_add({"x", "a", "b"}), expected[status]);
        EXPECT_EQ(confirm_delete({"x", "a", ""}), expected[status]);
        region.shown_so_far();
    }
}

TEST_F(Confirmations, ShowBothValuesOfAChangeBeforeTheWarnings) {
    EXPECT_EQ(asked_by([&] {
                  confirm_change({"Region MOTD String", "old", "new"}, "\n\nWarning: none");
              }),
              "Confirm change of: Region MOTD String\n\nchange from:  old\n                 to:  "
              "new\n\nWarning: none");
}

TEST_F(Confirmations, ShowNoWarningsForEqualValues) {
    for (const char* value : {"", "(*)"}) {
        EXPECT_EQ(
            asked_by([&] {
                confirm_change({"Region Special Access List...", value, value}, "\n\nWarning: all");
            }),
            "Current value and requested value are the same.  Perform Change anyway?");
    }
}

TEST_F(Confirmations, CompareWholeValues) {
    const std::string value(90, 'x');
    EXPECT_TRUE(asked_by([&] {
                    confirm_change({"Region MOTD String", value + "a", value + "b"});
                }).starts_with("Confirm change of: "));
}

TEST_F(Confirmations, CutValuesAtEightyCharacters) {
    EXPECT_EQ(cut_for_dialog(std::string(79, 'x')), std::string(79, 'x'));
    EXPECT_EQ(cut_for_dialog(std::string(80, 'x')), std::string(80, 'x') + "...");
    EXPECT_EQ(cut_for_dialog(std::string(200, 'x')), std::string(80, 'x') + "...");
    EXPECT_EQ(
        asked_by([&] {
            confirm_change({std::string(81, 'i'), std::string(80, 'f'), std::string(200, 't')});
        }),
        "Confirm change of: " + std::string(80, 'i') + "...\n\nchange from:  " +
            std::string(80, 'f') + "...\n                 to:  " + std::string(80, 't') + "...");
}

TEST_F(Confirmations, DoubleEveryAmpersand) {
    EXPECT_EQ(asked_by([&] {
                  confirm_change({"a&b", "c&", "&&d"}, "&");
              }),
              "Confirm change of: a&&b\n\nchange from:  c&&\n                 to:  &&&&d&&");
    EXPECT_EQ(asked_by([&] {
                  confirm_add({"a&b", "c&", "d"});
              }),
              "Confirm addition of: a&&b\n\n    c&&=d");
    EXPECT_EQ(asked_by([&] {
                  confirm_delete({"a&b", "c&", ""});
              }),
              "Confirm deletion of: a&&b\n\n    c&&");
}

// Additions and deletions.

TEST_F(Confirmations, ShowAnAliasUncut) {
    const std::string line = "#!gatewarden_alias a " + std::string(200, 'v');
    EXPECT_EQ(asked_by([&] {
                  confirm_add({"Alias", line, std::string(200, 'v')}, Addition::ALIAS);
              }),
              "Confirm addition of: Alias\n\n    " + line);
}

TEST_F(Confirmations, SayWhetherAToolVariableIsAddedOrChanged) {
    EXPECT_EQ(asked_by([&] {
                  confirm_add({"Gatescope Variable", "#!gatescope_unix_browser=", "/b"},
                              Addition::SETTING);
              }),
              "Confirm addition/change of: Gatescope Variable\n\n    #!gatescope_unix_browser=/b");
}

TEST_F(Confirmations, ShowAnEqualsSignAndTheUncutItemOfAnAddition) {
    const std::string item(90, 'i');
    EXPECT_EQ(asked_by([&] {
                  confirm_add({item, "Key", std::string(80, 'v')});
              }),
              "Confirm addition of: " + item + "\n\n    Key=" + std::string(80, 'v') + "...");
}

TEST_F(Confirmations, ShowTheUncutItemOfADeletion) {
    const std::string item(90, 'i');
    EXPECT_EQ(asked_by([&] {
                  confirm_delete({item, std::string(80, 'v'), ""});
              }),
              "Confirm deletion of: " + item + "\n\n    " + std::string(80, 'v') + "...");
}

// Reports.

const Change CHANGE = {"it&m", "old", "new"};

TEST_F(Confirmations, ReportsAreSilentWithoutTheVariable) {
    EXPECT_EQ(printed_by([] {
                  change_confirmed(CHANGE);
                  add_confirmed(CHANGE);
                  add_confirmed_alias("x");
                  delete_confirmed(CHANGE);
              }),
              "");
}

TEST_F(Confirmations, ReportsShowTheChange) {
    setenv("ZUL_GATESCOPE_VERBOSITY", "", 1);
    EXPECT_EQ(printed_by([] { change_confirmed(CHANGE); }),
              "Successfully changed it&&m\n\nchange from:  old\n                 to:  "
              "new\n[yes] accepted\n");
    EXPECT_EQ(printed_by([] { add_confirmed(CHANGE); }),
              "Successfully added it&&m\n\n    old=new\n[yes] accepted\n");
    EXPECT_EQ(printed_by([] { delete_confirmed(CHANGE); }),
              "Successfully deleted it&&m\n\n    old\n[yes] accepted\n");
    EXPECT_EQ(printed_by([] { add_confirmed_alias("#!gatewarden_alias a &"); }),
              "Successfully added Alias\n\n    #!gatewarden_alias a &&\n[yes] accepted\n");
}

TEST_F(Confirmations, ReportsCutValuesAtEightyCharacters) {
    setenv("ZUL_GATESCOPE_VERBOSITY", "", 1);
    const std::string shown = std::string(80, 'x') + "...";
    const Change wide = {std::string(80, 'x'), std::string(90, 'x'), std::string(200, 'x')};
    EXPECT_EQ(
        printed_by([&] { add_confirmed(wide); }),
        "Successfully added " + shown + "\n\n    " + shown + "=" + shown + "\n[yes] accepted\n");
}

}  // namespace
}  // namespace gatescope
