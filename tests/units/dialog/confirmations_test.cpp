#include "dialog/confirmations.h"

#include <gtest/gtest.h>

#include "units/scratch_region.h"

namespace {

const std::string KEY_THAT_REFERS = "a;b;c;d;e;1;g;";

class Confirmations : public ScratchRegion {
  protected:
    Confirmations() {
        last_item = last_from = last_to = "untouched";
        region("gatewarden;;O;east;", ";;O;", ";;", ";;");
    }

    void region(const std::string& header, const std::string& depot, const std::string& parent,
                const std::string& notify, const std::string& keys = "") const {
        gatebits_are(header + "\n" + depot + "\n" + parent + "\n" + notify +
                     "\n; ;\n; ;\n;;;\nD;0;\n" + keys);
    }

    void keys_are(const std::string& keys) const {
        region("gatewarden;;O;east;", ";;O;", ";;", ";;", keys);
    }

    /// What confirm_change adds to its question.
    static std::string warnings(const std::string& item, const std::string& from,
                                const std::string& to) {
        confirm_change(item, from, to);
        const std::string question = "Confirm change of: " + item + "\n\nchange from:  " + from +
                                     "\n                 to:  " + to;
        EXPECT_TRUE(TMSG.starts_with(question)) << TMSG;
        return TMSG.substr(std::min(TMSG.size(), question.size()));
    }
};

TEST_F(Confirmations, TheThreeAnswersOfEachQuestion) {
    const int expected[] = {CONFIRMED, DECLINED, CHANGE_ABORTED, CHANGE_ABORTED};
    static_assert(CONFIRMED == 1 && DECLINED == 0 && CHANGE_ABORTED == 2);
    for (const int status : {0, 1, 2, 3}) {
        questions_end_with(status);
        EXPECT_EQ(confirm_change("x", "a", "b"), expected[status]);
        EXPECT_EQ(confirm_add("x", "a", "b"), expected[status]);
        EXPECT_EQ(confirm_delete("x", "a"), expected[status]);
    }
}

TEST_F(Confirmations, ChangeShowsOldAndNewValue) {
    confirm_change("Region MOTD String", "old", "new");
    EXPECT_EQ(TMSG,
              "Confirm change of: Region MOTD String\n\nchange from:  old\n                 to:  "
              "new");
    EXPECT_EQ(last_item, "Region MOTD String");
    EXPECT_EQ(last_from, "old");
    EXPECT_EQ(last_to, "new");
}

TEST_F(Confirmations, EqualValuesGetNoWarning) {
    region("gatewarden;;E;east;", ";;O;", "p;p;", "n;n;", KEY_THAT_REFERS);
    for (const char* item : {"Windows Policy Depot...", "UNIX Notify Program...",
                             "Command Key 000...", "Region Special Access List..."}) {
        for (const char* value : {"", "(*)"}) {
            confirm_change(item, value, value);
            EXPECT_EQ(TMSG,
                      "Current value and requested value are the same.  Perform Change anyway?");
        }
    }
}

TEST_F(Confirmations, ValuesAreComparedWhole) {
    const std::string value(90, 'x');
    confirm_change("Region MOTD String", value + "a", value + "b");
    EXPECT_TRUE(TMSG.starts_with("Confirm change of: ")) << TMSG;
}

TEST_F(Confirmations, ValuesAreCutAtEightyCharacters) {
    EXPECT_EQ(cut_for_dialog(std::string(79, 'x')), std::string(79, 'x'));
    EXPECT_EQ(cut_for_dialog(std::string(80, 'x')), std::string(80, 'x') + "...");
    EXPECT_EQ(cut_for_dialog(std::string(200, 'x')), std::string(80, 'x') + "...");
    const std::string item(81, 'i');
    const std::string from(80, 'f');
    const std::string to(200, 't');
    confirm_change(item, from, to);
    const std::string shown_item = std::string(80, 'i') + "...";
    const std::string shown_to = std::string(80, 't') + "...";
    EXPECT_EQ(TMSG, "Confirm change of: " + shown_item + "\n\nchange from:  " + from +
                        "...\n                 to:  " + shown_to);
    EXPECT_EQ(last_item, shown_item);
    EXPECT_EQ(last_from, from + "...");
    EXPECT_EQ(last_to, shown_to);
}

TEST_F(Confirmations, EveryAmpersandIsDoubled) {
    confirm_change("a&b", "c&", "&&d");
    EXPECT_EQ(TMSG, "Confirm change of: a&&b\n\nchange from:  c&&\n                 to:  &&&&d");
    EXPECT_EQ(last_to, "&&d");
    confirm_add("a&b", "c&", "d");
    EXPECT_EQ(TMSG, "Confirm addition of: a&&b\n\n    c&&=d");
    confirm_delete("a&b", "c&");
    EXPECT_EQ(TMSG, "Confirm deletion of: a&&b\n\n    c&&");
}

// Depots.

TEST_F(Confirmations, ClearingADepotNamesWhatGoesWithIt) {
    region("gatewarden;;E;east;", "w;;O;", "wp;up;", "wn;un;");
    EXPECT_EQ(warnings("Windows Policy Depot...", "w", ""),
              "\n\nWarning:  Clearing the (Windows Policy Depot) will also clear the (Windows "
              "Parent Gatebits File) currently set to 'wp'..."
              "\n\nWarning:  Clearing the (Windows Policy Depot) will also clear the (Windows "
              "Region Notify Program) currently set to 'wn'..."
              "\n\nWarning:  This would result in both UNIX and Windows depots being cleared and "
              "so 'Region Logging' would also get set from 'E' to 'O'ff...");
}

TEST_F(Confirmations, ClearingTheUnixDepotLooksAtTheUnixColumn) {
    region("gatewarden;;A;east;", ";u;O;", "wp;up;", "wn;un;");
    EXPECT_EQ(warnings("UNIX Policy Depot...", "u", ""),
              "\n\nWarning:  Clearing the (UNIX Policy Depot) will also clear the (UNIX Parent "
              "Gatebits File) currently set to 'up'..."
              "\n\nWarning:  Clearing the (UNIX Policy Depot) will also clear the (UNIX Region "
              "Notify Program) currently set to 'un'..."
              "\n\nWarning:  This would result in both UNIX and Windows depots being cleared and "
              "so 'Region Logging' would also get set from 'A' to 'O'ff...");
}

TEST_F(Confirmations, ADepotIsOfWindowsWhenItsNameBeginsSo) {
    region("gatewarden;;O;east;", ";u;O;", "wp;up;", ";;");
    EXPECT_EQ(warnings("Our Windows Policy Depot...", "u", ""),
              "\n\nWarning:  Clearing the (Our Windows Policy Depot) will also clear the (UNIX "
              "Parent Gatebits File) currently set to 'up'...");
}

TEST_F(Confirmations, ClearingADepotThatNothingStandsOnWarnsOfNothing) {
    region("gatewarden;;E;east;", "w;u;A;", ";up;", ";un;");
    EXPECT_EQ(warnings("Windows Policy Depot...", "w", ""), "");
    region("gatewarden;;O;east;", "w;;A;", ";", ";");
    EXPECT_EQ(warnings("Windows Policy Depot...", "w", ""), "");
}

TEST_F(Confirmations, LoggingWarningReadsTheHeaderLine) {
    region("gatewarden;;Off;east;", "w;;A;", ";;", ";;");
    EXPECT_EQ(warnings("Windows Policy Depot...", "w", ""), "");
    region("gatewarden;;Sx;east;", "w;;O;", ";;", ";;");
    EXPECT_NE(warnings("Windows Policy Depot...", "w", "").find("from 'S' to"), std::string::npos);
    region("gatewarden;;", "w;;A;", ";;", ";;");
    EXPECT_EQ(warnings("Windows Policy Depot...", "w", ""), "");
}

TEST_F(Confirmations, LoggingWarningEndsAtAnEmptyField) {
    region("gatewarden;;;east;", "w;;A;", "wp;;", ";;");
    EXPECT_EQ(warnings("Windows Policy Depot...", "w", ""),
              "\n\nWarning:  Clearing the (Windows Policy Depot) will also clear the (Windows "
              "Parent Gatebits File) currently set to 'wp'..."
              "\n\nWarning:  This would result in both UNIX and Windows depots being cleared and "
              "so 'Region Logging' would also get set from '");
}

TEST_F(Confirmations, MissingLinesAndFieldsWarnOfNothing) {
    gatebits_are("# nothing\n");
    EXPECT_EQ(warnings("Windows Policy Depot...", "w", ""), "");
    EXPECT_EQ(warnings("UNIX Notify Program...", "n", ""), "");
}

TEST_F(Confirmations, OnlyTheOtherSystemsPathsAreSaidNotToBeVerified) {
    EXPECT_EQ(warnings("Windows Policy Depot...", "", "d"),
              "\n\nWarning:  Actual directory verification of the 'Windows Policy Depot' not "
              "performed from the UNIX OS...");
    EXPECT_EQ(warnings("Windows Parent Gatebits file...", "", "p"),
              "\n\nWarning:  Actual file verification of the 'Windows Parent Gatebits file' not "
              "performed from the UNIX OS...");
    EXPECT_EQ(warnings("Windows Notify Program...", "", "n"),
              "\n\nWarning:  Actual file verification of the 'Windows Notify Program' not "
              "performed from the UNIX OS...");
    for (const char* item :
         {"UNIX Policy Depot...", "UNIX Parent Gatebits file...", "UNIX Notify Program..."}) {
        EXPECT_EQ(warnings(item, "", "x"), "");
    }
    EXPECT_EQ(warnings("Windows Parent Gatebits file...", "p", ""), "");
    EXPECT_EQ(warnings("Windows Notify Program...", "n", ""), "");
}

// Keys that refer to the notify program.

TEST_F(Confirmations, NoKeyThatRefersNoWarning) {
    keys_are("a;b;c;d;e;0;g;\na;b;c;d;e;01;\n");
    EXPECT_EQ(warnings("UNIX Notify Program...", "", "n"), "");
    EXPECT_EQ(warnings("UNIX Notify Program...", "n", ""), "");
}

TEST_F(Confirmations, OneKeyThatRefers) {
    keys_are("a;b;c;d;e;0;\n" + KEY_THAT_REFERS + "\n");
    const std::string listed = "\n     (002) a;b;c;d;e;&&1;g;";
    EXPECT_EQ(warnings("UNIX Notify Program...", "", "n"),
              "\n\nWarning:  There is currently 1 policy key that will refer to the 'Region Notify "
              "Program' that you are adding.  References from that key to this program will be "
              "active...\\n" +
                  listed);
    EXPECT_EQ(warnings("UNIX Notify Program...", "n", ""),
              "\n\nWarning:  There is 1 policy key that currently refers to the 'Region Notify "
              "Program' that you are removing.  References from that key to this program will be "
              "ignored...\\n" +
                  listed);
}

TEST_F(Confirmations, TwoKeysThatReferThenTheVerificationWarning) {
    keys_are(KEY_THAT_REFERS + "\na;b;c;d;e;;\n");
    const std::string listed = "\n     (001) a;b;c;d;e;&&1;g;\n     (002) a;b;c;d;e;&&;";
    EXPECT_EQ(warnings("Windows Notify Program...", "", "n"),
              "\n\nWarning:  There are currently 2 policy keys that will refer to the 'Region "
              "Notify Program' that you are adding.  References from those keys to this program "
              "will be active...\\n" +
                  listed +
                  "\n\nWarning:  Actual file verification of the 'Windows Notify Program' not "
                  "performed from the UNIX OS...");
    EXPECT_EQ(warnings("Windows Notify Program...", "n", ""),
              "\n\nWarning:  There are 2 policy keys that currently refer to the 'Region Notify "
              "Program' that you are removing.  References from those keys to this program will "
              "be ignored...\\n" +
                  listed);
}

/// The list in a notify warning, one key number a line.
std::string listed_keys(const std::string& warning) {
    std::string numbers;
    std::string rest = warning.substr(warning.find("\\n") + 2);
    while (!rest.empty()) {
        const auto end = rest.find('\n', 1);
        numbers += rest.substr(1, std::min<std::size_t>(10, end - 1)) + "|";
        rest = end == std::string::npos ? "" : rest.substr(end);
    }
    return numbers;
}

TEST_F(Confirmations, FourKeysAreAllListedAndOfMoreTheFirstThreeAndTheLast) {
    const auto listed_of = [this](int count) {
        std::string keys;
        for (int n = 1; n <= count; ++n) keys += KEY_THAT_REFERS + "\n";
        keys_are(keys);
        return listed_keys(warnings("UNIX Notify Program...", "", "n"));
    };
    const std::string three = "     (001)|     (002)|     (003)|";
    EXPECT_EQ(listed_of(3), three);
    EXPECT_EQ(listed_of(4), three + "     (004)|");
    EXPECT_EQ(listed_of(5), three + "      :|     (005)|");
    EXPECT_EQ(listed_of(7), three + "      :|     (007)|");
}

TEST_F(Confirmations, AKeyTooShortEndsTheSearch) {
    keys_are(KEY_THAT_REFERS + "\na;b;c;d;e;\n" + KEY_THAT_REFERS + "\n");
    EXPECT_NE(warnings("UNIX Notify Program...", "", "n").find("There is currently 1 policy key "),
              std::string::npos);
}

TEST_F(Confirmations, AListedKeyIsCutAndItsAmpersandsDoubledTwice) {
    const std::string eighty = "a&;;;;;1;" + std::string(71, 'x');
    keys_are(eighty + "\n" + eighty + "x\n" + KEY_THAT_REFERS + "\n");
    const std::string shown = "a&&&&;;;;;&&1;" + std::string(71, 'x');
    const std::string warning = warnings("UNIX Notify Program...", "", "n");
    EXPECT_NE(warning.find("\n     (001) " + shown + "\n     (002) " + shown + " ...\n"),
              std::string::npos)
        << warning;
}

// Lists and keys.

TEST_F(Confirmations, AListThatMatchesEverybodyIsWarnedOf) {
    const std::string rest =
        " as it contains one or more\\n                 of the wildcard patterns (*), <*>, [*], "
        "{*}, %*%, '*', @*@ ...";
    EXPECT_EQ(warnings("Region Restricted Access List...", "", "a %*% b"),
              "\n\nWarning:  The definition is EXTREMELY RESTRICTIVE" + rest);
    EXPECT_EQ(warnings("Region Special Access List...", "", "%*%"),
              "\n\nWarning:  The definition is EXTREMELY PERMISSIVE" + rest);
    EXPECT_EQ(warnings("Region Restricted Access List...", "", "%a*%"), "");
    EXPECT_EQ(warnings("Region Special Access List...", "", "%a*%"), "");
    EXPECT_EQ(warnings("Region MOTD Restriction List", "", "%*%"), "");
}

TEST_F(Confirmations, AKeyIsRemindedToBeVerified) {
    EXPECT_EQ(warnings("Command Key 000...", "a", "b"),
              "\n\nReminder:  Use gatewarden " + path("gatebits.txt") + " -check to verify...");
}

TEST_F(Confirmations, TheFirstWordThatFitsDecides) {
    EXPECT_EQ(warnings("Windows Policy Depot... Command Key", "", "x"),
              "\n\nWarning:  Actual directory verification of the 'Windows Policy Depot' not "
              "performed from the UNIX OS...");
}

TEST_F(Confirmations, WordsBehindTheCutAreNotSeen) {
    confirm_change(std::string(75, 'x') + "Command Key", "a", "b");
    EXPECT_EQ(TMSG.find("Reminder"), std::string::npos);
}

// Additions and deletions.

TEST_F(Confirmations, AnAliasIsShownWhole) {
    const std::string line = "#!gatewarden_alias a " + std::string(200, 'v');
    confirm_add("Alias", line, std::string(200, 'v'));
    EXPECT_EQ(TMSG, "Confirm addition of: Alias\n\n    " + line);
    EXPECT_EQ(last_from, line.substr(0, 80) + "...");
}

TEST_F(Confirmations, AToolVariableIsAddedOrChanged) {
    confirm_add("Gatescope Variable", "#!gatescope_unix_browser=", "/b");
    EXPECT_EQ(TMSG,
              "Confirm addition/change of: Gatescope Variable\n\n    #!gatescope_unix_browser=/b");
}

TEST_F(Confirmations, AnythingElseIsShownWithAnEqualsSignAndItsItemUncut) {
    const std::string item(90, 'i');
    confirm_add(item, "Key", std::string(80, 'v'));
    EXPECT_EQ(TMSG, "Confirm addition of: " + item + "\n\n    Key=" + std::string(80, 'v') + "...");
}

TEST_F(Confirmations, ADeletionLeavesTheLastNewValue) {
    confirm_change("x", "a", "b");
    const std::string item(90, 'i');
    confirm_delete(item, std::string(80, 'v'));
    EXPECT_EQ(TMSG, "Confirm deletion of: " + item + "\n\n    " + std::string(80, 'v') + "...");
    EXPECT_EQ(last_item, std::string(80, 'i') + "...");
    EXPECT_EQ(last_from, std::string(80, 'v') + "...");
    EXPECT_EQ(last_to, "b");
}

// Reports.

TEST_F(Confirmations, ReportsAreSilentUnlessAskedFor) {
    EXPECT_EQ(printed_by([] {
                  change_confirmed();
                  add_confirmed();
                  add_confirmed_alias("x");
                  delete_confirmed();
              }),
              "");
}

TEST_F(Confirmations, ReportsShowTheLastQuestion) {
    setenv("ZUL_GATESCOPE_VERBOSITY", "", 1);
    confirm_change("it&m", "old", "new");
    EXPECT_EQ(printed_by(change_confirmed),
              "Successfully changed it&&m\n\nchange from:  old\n                 to:  "
              "new\n[yes] accepted\n");
    EXPECT_EQ(printed_by(add_confirmed),
              "Successfully added it&&m\n\n    old=new\n[yes] accepted\n");
    EXPECT_EQ(printed_by(delete_confirmed),
              "Successfully deleted it&&m\n\n    old\n[yes] accepted\n");
    EXPECT_EQ(printed_by([] { add_confirmed_alias("#!gatewarden_alias a &"); }),
              "Successfully added Alias\n\n    #!gatewarden_alias a &&\n[yes] accepted\n");
}

}  // namespace
