#include "policy/change_warnings.h"

#include <gtest/gtest.h>

namespace gatescope {
namespace {

const std::string KEY_THAT_REFERS = "a;b;c;d;e;1;g;";

NewValue windows_depot(const std::string& value) {
    return {"Windows Policy Depot...", "Windows", 1, value};
}
NewValue unix_depot(const std::string& value) {
    return {"UNIX Policy Depot...", "UNIX", 2, value};
}
NewValue windows_notify(const std::string& value) {
    return {"Windows Notify Program...", "Windows", 1, value};
}
NewValue unix_notify(const std::string& value) {
    return {"UNIX Notify Program...", "UNIX", 2, value};
}

class ChangeWarnings : public testing::Test {
  protected:
    void use(const std::string& text) { gatebits = Gatebits(text); }

    ChangeWarnings() { region_is("gatewarden;;O;east;", ";;O;", ";;", ";;"); }

    void region_is(const std::string& header, const std::string& depot, const std::string& parent,
                   const std::string& notify, const std::string& keys = "") {
        use(header + "\n" + depot + "\n" + parent + "\n" + notify + "\n; ;\n; ;\n;;;\nD;0;\n" +
            keys);
    }

    void keys_are(const std::string& keys) {
        region_is("gatewarden;;O;east;", ";;O;", ";;", ";;", keys);
    }

    Gatebits gatebits{std::string()};
};

// Depots.

TEST_F(ChangeWarnings, NameTheFieldsClearedWithADepot) {
    region_is("gatewarden;;E;east;", "w;;O;", "wp;up;", "wn;un;");
    EXPECT_EQ(depot_warnings(gatebits, windows_depot("")),
              "\n\nWarning:  Clearing the (Windows Policy Depot) will also clear the (Windows "
              "Parent Gatebits File) currently set to 'wp'..."
              "\n\nWarning:  Clearing the (Windows Policy Depot) will also clear the (Windows "
              "Region Notify Program) currently set to 'wn'..."
              "\n\nWarning:  This would result in both UNIX and Windows depots being cleared and "
              "so 'Region Logging' would also get set from 'E' to 'O'ff...");
}

TEST_F(ChangeWarnings, NameTheUnixFieldsClearedWithTheUnixDepot) {
    region_is("gatewarden;;A;east;", ";u;O;", "wp;up;", "wn;un;");
    EXPECT_EQ(depot_warnings(gatebits, unix_depot("")),
              "\n\nWarning:  Clearing the (UNIX Policy Depot) will also clear the (UNIX Parent "
              "Gatebits File) currently set to 'up'..."
              "\n\nWarning:  Clearing the (UNIX Policy Depot) will also clear the (UNIX Region "
              "Notify Program) currently set to 'un'..."
              "\n\nWarning:  This would result in both UNIX and Windows depots being cleared and "
              "so 'Region Logging' would also get set from 'A' to 'O'ff...");
}

TEST_F(ChangeWarnings, AreEmptyIfNothingIsClearedWithADepot) {
    region_is("gatewarden;;E;east;", "w;u;A;", ";up;", ";un;");
    EXPECT_EQ(depot_warnings(gatebits, windows_depot("")), "");
    region_is("gatewarden;;O;east;", "w;;A;", ";", ";");
    EXPECT_EQ(depot_warnings(gatebits, windows_depot("")), "");
}

TEST_F(ChangeWarnings, ShowTheLoggingOfTheHeaderLine) {
    region_is("gatewarden;;Off;east;", "w;;A;", ";;", ";;");
    EXPECT_EQ(depot_warnings(gatebits, windows_depot("")), "");
    region_is("gatewarden;;Sx;east;", "w;;O;", ";;", ";;");
    EXPECT_NE(depot_warnings(gatebits, windows_depot("")).find("from 'S' to"), std::string::npos);
    region_is("gatewarden;;", "w;;A;", ";;", ";;");
    EXPECT_EQ(depot_warnings(gatebits, windows_depot("")), "");
}

TEST_F(ChangeWarnings, IncludeLoggingIfItsFieldIsEmpty) {
    region_is("gatewarden;;;east;", "w;;A;", "wp;;", ";;");
    EXPECT_EQ(depot_warnings(gatebits, windows_depot("")),
              "\n\nWarning:  Clearing the (Windows Policy Depot) will also clear the (Windows "
              "Parent Gatebits File) currently set to 'wp'..."
              "\n\nWarning:  This would result in both UNIX and Windows depots being cleared and "
              "so 'Region Logging' would also get set from '' to 'O'ff...");
}

TEST_F(ChangeWarnings, AreEmptyForMissingLinesAndFields) {
    use("# nothing\n");
    EXPECT_EQ(depot_warnings(gatebits, windows_depot("")), "");
    EXPECT_EQ(notify_warnings(gatebits, unix_notify("")), "");
}

TEST_F(ChangeWarnings, ReportUnverifiedPathsOfTheOtherSystemOnly) {
    EXPECT_EQ(depot_warnings(gatebits, windows_depot("d")),
              "\n\nWarning:  Actual directory verification of the 'Windows Policy Depot' not "
              "performed from the UNIX OS...");
    EXPECT_EQ(parent_warnings(gatebits, {"Windows Parent Gatebits file...", "Windows", 1, "p"}),
              "\n\nWarning:  Actual file verification of the 'Windows Parent Gatebits file' not "
              "performed from the UNIX OS...");
    EXPECT_EQ(notify_warnings(gatebits, windows_notify("n")),
              "\n\nWarning:  Actual file verification of the 'Windows Notify Program' not "
              "performed from the UNIX OS...");
    EXPECT_EQ(depot_warnings(gatebits, unix_depot("x")), "");
    EXPECT_EQ(parent_warnings(gatebits, {"UNIX Parent Gatebits file...", "UNIX", 2, "x"}), "");
    EXPECT_EQ(notify_warnings(gatebits, unix_notify("x")), "");
    EXPECT_EQ(parent_warnings(gatebits, {"Windows Parent Gatebits file...", "Windows", 1, ""}), "");
    EXPECT_EQ(notify_warnings(gatebits, windows_notify("")), "");
}

// Keys that refer to the notify program.

TEST_F(ChangeWarnings, AreEmptyWithoutAReferringKey) {
    keys_are("a;b;c;d;e;0;g;\na;b;c;d;e;01;\n");
    EXPECT_EQ(notify_warnings(gatebits, unix_notify("n")), "");
    EXPECT_EQ(notify_warnings(gatebits, unix_notify("")), "");
}

TEST_F(ChangeWarnings, ListOneReferringKey) {
    keys_are("a;b;c;d;e;0;\n" + KEY_THAT_REFERS + "\n");
    const std::string listed = "\n     (002) a;b;c;d;e;&1;g;";
    EXPECT_EQ(notify_warnings(gatebits, unix_notify("n")),
              "\n\nWarning:  There is currently 1 policy key that will refer to the 'Region Notify "
              "Program' that you are adding.  References from that key to this program will be "
              "active...\\n" +
                  listed);
    EXPECT_EQ(notify_warnings(gatebits, unix_notify("")),
              "\n\nWarning:  There is 1 policy key that currently refers to the 'Region Notify "
              "Program' that you are removing.  References from that key to this program will be "
              "ignored...\\n" +
                  listed);
}

TEST_F(ChangeWarnings, ListTwoReferringKeysBeforeTheVerificationWarning) {
    keys_are(KEY_THAT_REFERS + "\na;b;c;d;e;;\n");
    const std::string listed = "\n     (001) a;b;c;d;e;&1;g;\n     (002) a;b;c;d;e;&;";
    EXPECT_EQ(notify_warnings(gatebits, windows_notify("n")),
              "\n\nWarning:  There are currently 2 policy keys that will refer to the 'Region "
              "Notify Program' that you are adding.  References from those keys to this program "
              "will be active...\\n" +
                  listed +
                  "\n\nWarning:  Actual file verification of the 'Windows Notify Program' not "
                  "performed from the UNIX OS...");
    EXPECT_EQ(notify_warnings(gatebits, windows_notify("")),
              "\n\nWarning:  There are 2 policy keys that currently refer to the 'Region Notify "
              "Program' that you are removing.  References from those keys to this program will "
              "be ignored...\\n" +
                  listed);
}

/// The keys listed in a notify warning, with '|' after each number.
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

TEST_F(ChangeWarnings, ListUpToFourKeysOrTheFirstThreeAndTheLast) {
    const auto listed_of = [this](int count) {
        std::string keys;
        for (int n = 1; n <= count; ++n) keys += KEY_THAT_REFERS + "\n";
        keys_are(keys);
        return listed_keys(notify_warnings(gatebits, unix_notify("n")));
    };
    const std::string three = "     (001)|     (002)|     (003)|";
    EXPECT_EQ(listed_of(3), three);
    EXPECT_EQ(listed_of(4), three + "     (004)|");
    EXPECT_EQ(listed_of(5), three + "      :|     (005)|");
    EXPECT_EQ(listed_of(7), three + "      :|     (007)|");
}

TEST_F(ChangeWarnings, EndTheSearchAtAKeyWithTooFewFields) {
    keys_are(KEY_THAT_REFERS + "\na;b;c;d;e;\n" + KEY_THAT_REFERS + "\n");
    EXPECT_NE(notify_warnings(gatebits, unix_notify("n")).find("There is currently 1 policy key "),
              std::string::npos);
}

TEST_F(ChangeWarnings, CutListedKeysAndDoubleTheirAmpersands) {
    const std::string eighty = "a&;;;;;1;" + std::string(71, 'x');
    keys_are(eighty + "\n" + eighty + "x\n" + KEY_THAT_REFERS + "\n");
    const std::string shown = "a&&;;;;;&1;" + std::string(71, 'x');
    const std::string warning = notify_warnings(gatebits, unix_notify("n"));
    EXPECT_NE(warning.find("\n     (001) " + shown + "\n     (002) " + shown + " ...\n"),
              std::string::npos)
        << warning;
}

// Lists and keys.

NewValue list(const std::string& value) {
    return {"Region Restricted Access List...", "Region Restricted Access List", 2, value};
}

TEST_F(ChangeWarnings, WarnOfListsThatMatchAllUsers) {
    const std::string rest =
        " as it contains one or more\\n                 of the wildcard patterns (*), <*>, [*], "
        "{*}, %*%, '*', @*@ ...";
    EXPECT_EQ(restricted_warnings(gatebits, list("a %*% b")),
              "\n\nWarning:  The definition is EXTREMELY RESTRICTIVE" + rest);
    EXPECT_EQ(special_warnings(gatebits, list("%*%")),
              "\n\nWarning:  The definition is EXTREMELY PERMISSIVE" + rest);
    EXPECT_EQ(restricted_warnings(gatebits, list("%a*%")), "");
    EXPECT_EQ(special_warnings(gatebits, list("%a*%")), "");
}

TEST_F(ChangeWarnings, RemindToVerifyAKey) {
    EXPECT_EQ(key_reminder("/east/gatebits.txt"),
              "\n\nReminder:  Use gatewarden /east/gatebits.txt -check to verify...");
}

}  // namespace
}  // namespace gatescope
