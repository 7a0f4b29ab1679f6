// The thirteen field editors: each confirmed, declined, aborted and cancelled.

#include <gtest/gtest.h>

#include "scenes/actions.h"

namespace gatescope {
namespace {

const std::string NOT_VERIFIED = " not performed from the UNIX OS...";
const std::string LIST_EXAMPLE =
    "(users) <groups> [VOBs] [VOBs:replicas] {elements} %views% @times@ 'regions' or ~aliases - "
    "you may use pattern matching from * ? #)";
const std::string BITS_AFTER_FIRST_FIVE =
    "05 - (0) BIT__VOB_OWNER_CI_MAIN,06 - (0) BIT__RECURSIVE_CI_CO_UNCO,07 - (0) "
    "BIT__CHECK_MAGIC_PATH,08 - (0) BIT__NO_SPACES_IN_ELEMENT_NAMES,09 - (0) "
    "BIT__NO_MULTIPLE_MERGES,10 - (0) BIT__SMART_CHECKIN,11 - (0) BIT__CASE_CHECKING,12 - (0) "
    "BIT__ATOMIC_CHANGE,13 - (0) BIT__REQUIRE_EXTENSION,14 - (0) "
    "BIT__NOTIFY_PARENT_CHANGE_ON_CO,15 - (0) BIT__NOTIFY_PARENT_CHANGE_ON_CI,16 - (0) "
    "BIT__PREVENT_DATA_LOSS,17 - (0) BIT__AUTO_EXEC_BIT,18 - (0) BIT__PREVENT_CORE_ELEMENTS,19 - "
    "(0) BIT__AUTO_DIRECTORY_PROTECT,20 - (0) BIT__AUTO_CONTRIB_REMOVAL,21 - (0) "
    "BIT__WARN_LOST_AND_FOUND,22 - (0) BIT__OWN_LIKE_PARENT_DIR,23 - (0) "
    "BIT__FORCE_CHECKOUTS_UNRESERVED";

/// Depots, parents and notify programs of both systems, and a value in every other field. The blank
/// line after the comment is dropped when the file is rewritten.
RegionPlan full_region() {
    return a_region()
        .with_line_on_top("# our region\n")
        .with_line(2, "W:depot;{stage}/depot;E;")
        .with_line(3, "W:parent.txt;{stage}/parent.txt;")
        .with_line(4, "w.bat;u.sh;")
        .with_line(5, ";(inhibited);")
        .with_line(6, ";(special);")
        .with_line(7, ";old motd;(motd list);")
        .with_line(8, "D;11000000000000000000000x;")
        .with_file("parent.txt", "p\n")
        .with_file("parent2.txt", "p\n")
        .with_file("depot/u.sh", "")
        .with_file("depot/u2.sh", "")
        .with_file("depot2/log/readme", "");
}

struct Field {
    int action;
    /// As clearprompt receives it.
    Dialog question;
    /// A text, an entry, or several entries.
    std::string answer;
    std::string item;
    std::string from;
    std::string to;
    std::string warnings;
    int line;
    std::string line_after;
    /// Option words of the checker's calls.
    std::vector<std::string> checks;
};

const std::vector<std::string> BOTH = {"-status_only", "-status_only"};
const std::vector<std::string> BEFORE_ONLY = {"-status_only"};

/// In every text "{stage}" stands for the directory of the stage.
std::vector<Field> fields() {
    return {
        {4,
         prompted("Input a Windows Policy Depot (i.e. \\\\machine\\share\\gatewarden\\depot)...",
                  "W:depot"),
         "W:new", "Windows Policy Depot...", "W:depot", "W:new",
         "\n\nWarning:  Actual directory verification of the 'Windows Policy Depot'" + NOT_VERIFIED,
         2, "W:new;{stage}/depot;E;", BOTH},
        {5,
         prompted("Input a UNIX Policy Depot (i.e. /net/machine/gatewarden/depot)...",
                  "{stage}/depot"),
         "{stage}/depot2", "UNIX Policy Depot...", "{stage}/depot", "{stage}/depot2", "", 2,
         "W:depot;{stage}/depot2;E;", BOTH},
        {6,
         prompted("Input a Windows Parent Gatebits File (i.e. \\\\machine\\share\\gatebits.txt)...",
                  "W:parent.txt"),
         "W:p2.txt", "Windows Parent Gatebits file...", "W:parent.txt", "W:p2.txt",
         "\n\nWarning:  Actual file verification of the 'Windows Parent Gatebits file'" +
             NOT_VERIFIED,
         3, "W:p2.txt;{stage}/parent.txt;", BEFORE_ONLY},
        {7,
         prompted("Input a UNIX Parent Gatebits File (i.e. /net/machine/gatebits.txt)...",
                  "{stage}/parent.txt"),
         "{stage}/parent2.txt", "UNIX Parent Gatebits file...", "{stage}/parent.txt",
         "{stage}/parent2.txt", "", 3, "W:parent.txt;{stage}/parent2.txt;", BEFORE_ONLY},
        {8,
         listed("Select a Region Logging Personality...  Currently = E",
                "O - 'O'ff,E - 'E'rrors/Denials only logged,S - 'S'ucessful attempts only "
                "logged,A - 'A'll activity logged"),
         "S - 'S'ucessful attempts only logged",
         "Region Logging Personality",
         "E",
         "S",
         "",
         2,
         "W:depot;{stage}/depot;S;",
         {}},
        {9,
         prompted("Input an optional Windows Region Notify Program/script (i.e. script.bat - "
                  "expected in Windows Depot)...",
                  "w.bat"),
         "w2.bat", "Windows Notify Program...", "w.bat", "w2.bat",
         "\n\nWarning:  Actual file verification of the 'Windows Notify Program'" + NOT_VERIFIED, 4,
         "w2.bat;u.sh;", BEFORE_ONLY},
        {10,
         prompted("Input an optional UNIX Region Notify Program/script (i.e. script.sh - expected "
                  "in UNIX Depot)...",
                  "u.sh"),
         "u2.sh", "UNIX Notify Program...", "u.sh", "u2.sh", "", 4, "w.bat;u2.sh;", BEFORE_ONLY},
        {11,
         prompted("Input a Region Restricted Access List (i.e. " + LIST_EXAMPLE + ")...",
                  "(inhibited)"),
         "(new) ~alias", "Region Restricted Access List...", "(inhibited)", "(new) ~alias", "", 5,
         ";(new) ~alias ;", BOTH},
        {12,
         prompted("Input a Region Special Access List (i.e. " + LIST_EXAMPLE + ")...", "(special)"),
         "(*)", "Region Special Access List...", "(special)", "(*)",
         "\n\nWarning:  The definition is EXTREMELY PERMISSIVE as it contains one or more\\n"
         "                 of the wildcard patterns (*), <*>, [*], {*}, %*%, '*', @*@ ...",
         6, ";(*);", BOTH},
        {13,
         prompted("Input a MOTD (i.e. Any String not containing ';' or empty).. Can be Empty...",
                  "old motd"),
         "new, longer motd",
         "Region MOTD String",
         "old motd",
         "new, longer motd",
         "",
         7,
         ";new, longer motd;(motd list);",
         {}},
        {14,
         prompted("Input a MOTD Restriction List (i.e. " + LIST_EXAMPLE + ")...", "(motd list)"),
         "(other)", "Region MOTD Restriction List", "(motd list)", "(other)", "", 7,
         ";old motd;(other);", BOTH},
        {15,
         listed("Select Per-VOB Functionality Bits.  Currently = D",
                "D - 'D'isallow Per-VOB Functionality Bits,A - 'A'llow Per-VOB Functionality "
                "Bits"),
         "A - 'A'llow Per-VOB Functionality Bits",
         "Region Per-VOB Functionality Bits Personality",
         "D",
         "A",
         "",
         8,
         "A;11000000000000000000000x;",
         {}},
        {16,
         listed_for_several("Current bit state: (110000000000000000000000)",
                            "00 - (1) BIT__AUTO_BRANCH_REMOVAL,01 - (1) BIT__CHOWN_VOB_OWNER,02 - "
                            "(0) BIT__EVIL_TWIN,03 - (0) BIT__ONE_CO_PER_BRANCH,04 - (0) "
                            "BIT__CHECK_BRANCH_LABEL_NAMES," +
                                BITS_AFTER_FIRST_FIVE),
         "01 - (1) BIT__CHOWN_VOB_OWNER\n23 - (0) BIT__FORCE_CHECKOUTS_UNRESERVED\n",
         "Functionality Bits", "11000000000000000000000x", "010000000000000000000001", "", 8,
         "D;010000000000000000000001;", BOTH},
    };
}

class FieldActions : public testing::TestWithParam<Field> {
  protected:
    FieldActions()
        : region_(full_region()),
          field_(GetParam()),
          before_(region_.gatebits()),
          line_before_(region_.line(field_.line)) {
        for (std::string& argument : field_.question.args) argument = region_.staged(argument);
        for (std::string* text : {&field_.answer, &field_.from, &field_.to, &field_.line_after}) {
            *text = region_.staged(*text);
        }
    }

    void answer() {
        const std::string kind = field_.question.args.front();
        region_.answers({.kind = kind, .outfile = field_.answer});
    }

    Result run() { return region_.run({"A=" + std::to_string(field_.action), "R=n"}); }

    Dialog confirmation() const {
        return asked_to_change(field_.item, field_.from, field_.to, field_.warnings);
    }

    /// The file with the one line changed and without its blank line.
    std::string after() const {
        const std::string text = with_replaced(before_, "# our region\n\n", "# our region\n");
        return with_replaced(text, "\n" + line_before_ + "\n", "\n" + field_.line_after + "\n");
    }

    Region region_;
    Field field_;
    std::string before_;
    std::string line_before_;
};

TEST_P(FieldActions, WritesConfirmedValue) {
    answer();
    region_.answers_yes();
    const Result result = run();
    EXPECT_EQ(result.status, 110);
    EXPECT_EQ(result.dialogs(), (Dialogs{field_.question, confirmation()}));
    EXPECT_EQ(region_.gatebits(), after());
    EXPECT_EQ(checks_of(region_, result), field_.checks);
    EXPECT_EQ(result.out, "");
}

TEST_P(FieldActions, ReportsChangeWhenVerbose) {
    region_.set_env("ZUL_GATESCOPE_VERBOSITY", "");
    answer();
    region_.answers_yes();
    EXPECT_EQ(run().dialogs(), (Dialogs{field_.question, confirmation(),
                                        reported_change(field_.item, field_.from, field_.to)}));
    EXPECT_EQ(region_.gatebits(), after());
}

TEST_P(FieldActions, WritesValueConfirmedAfterDecline) {
    answer();
    region_.answers_no();
    answer();
    region_.answers_yes();
    EXPECT_EQ(run().dialogs(),
              (Dialogs{field_.question, confirmation(), field_.question, confirmation()}));
    EXPECT_EQ(region_.gatebits(), after());
}

TEST_P(FieldActions, WritesNothingWhenDeclinedThenCancelled) {
    answer();
    region_.answers_no().cancels();
    EXPECT_EQ(run().dialogs(), (Dialogs{field_.question, confirmation(), field_.question}));
    EXPECT_EQ(region_.gatebits(), before_);
}

TEST_P(FieldActions, WritesNothingWhenAborted) {
    answer();
    region_.aborts();
    const Result result = run();
    EXPECT_EQ(result.status, 110);
    EXPECT_EQ(result.dialogs(), (Dialogs{field_.question, confirmation()}));
    EXPECT_EQ(region_.gatebits(), before_);
    EXPECT_EQ(checks_of(region_, result), field_.checks);
}

TEST_P(FieldActions, WritesNothingWhenCancelled) {
    region_.cancels();
    const Result result = run();
    EXPECT_EQ(result.status, 110);
    EXPECT_EQ(result.dialogs(), Dialogs{field_.question});
    EXPECT_EQ(region_.gatebits(), before_);
    EXPECT_EQ(checks_of(region_, result), field_.checks);
}

class SameValue : public FieldActions {};

TEST_P(SameValue, AsksAboutUnchangedValueAndWritesIt) {
    field_.answer = field_.from;
    answer();
    region_.answers_yes();
    EXPECT_EQ(run().dialogs(),
              (Dialogs{field_.question,
                       asked("Current value and requested value are the same.  Perform Change "
                             "anyway?",
                             "no")}));
    EXPECT_EQ(region_.gatebits(), with_replaced(before_, "# our region\n\n", "# our region\n"));
}

INSTANTIATE_TEST_SUITE_P(Each, FieldActions, testing::ValuesIn(fields()),
                         [](const testing::TestParamInfo<Field>& field) {
                             return "A" + std::to_string(field.param.action);
                         });

INSTANTIATE_TEST_SUITE_P(TextsAndLetters, SameValue, testing::ValuesIn([] {
                             // The field of the bits holds a letter, so that picked bits always
                             // differ from it.
                             std::vector<Field> without_bits = fields();
                             without_bits.pop_back();
                             return without_bits;
                         }()),
                         [](const testing::TestParamInfo<Field>& field) {
                             return "A" + std::to_string(field.param.action);
                         });

/// A rejected value: the message is the whole text of the next prompt, whose default is still the
/// field's value.
struct Rejection {
    int action;
    std::string typed;
    std::string message;
};

class RejectedValues : public testing::TestWithParam<Rejection> {};

TEST_P(RejectedValues, AsksAgainWithReason) {
    Region region = full_region();
    const std::string before = region.gatebits();
    const auto [action, typed, message] = GetParam();
    region.types(typed).types(typed).cancels();
    const Dialogs dialogs = region.run({"A=" + std::to_string(action), "R=n"}).dialogs();
    ASSERT_EQ(dialogs.size(), 3u);
    const std::string current = dialogs[0].args.at(5);
    EXPECT_NE(dialogs[0], prompted(message, current));
    EXPECT_EQ(dialogs[1], prompted(message, current));
    EXPECT_EQ(dialogs[2], prompted(message, current));
    EXPECT_EQ(region.gatebits(), before);
}

INSTANTIATE_TEST_SUITE_P(
    Each, RejectedValues,
    testing::Values(
        Rejection{4, "W:/x",
                  "RETRY: depot may not contain commas (,) semi-colons (;) or slash (/) "
                  "characters\\nInvalid directory 'W:/x' disallowed"},
        Rejection{5, "/none",
                  "RETRY: the input directory (/none) does not exist and is disallowed"},
        Rejection{6, "a;b",
                  "RETRY: parent gatebits file may not contain commas (,) semi-colons (;) or slash "
                  "(/) characters\\nInvalid file 'a;b' disallowed"},
        Rejection{7, "/none",
                  "RETRY: the input parent gatebits file (/none) does not exist and is disallowed"},
        Rejection{9, "a,b",
                  "RETRY: notify program may not contain commas (,) semi-colons (;) or slash (/) "
                  "characters\\nInvalid file 'a,b' disallowed"},
        Rejection{10, "none.sh",
                  "RETRY: the input notify program (none.sh) does not exist in the depot and is "
                  "disallowed"},
        Rejection{11, "a,b", "RETRY: list value may not contain commas (,) or semi-colons (;)"},
        Rejection{12, "a;b", "RETRY: list value may not contain commas (,) or semi-colons (;)"},
        Rejection{13, "a;b", "RETRY: MOTD values may not contain semi-colons (;)"},
        Rejection{14, "a;b",
                  "RETRY: MOTD Restriction List values may not contain semi-colons (;)"}),
    [](const testing::TestParamInfo<Rejection>& rejection) {
        return "A" + std::to_string(rejection.param.action);
    });

// Behaviour of single editors.

TEST(FieldEditors, AsksFirstQuestionAgainAfterRejectionAndDecline) {
    Region east = full_region();
    east.types("a;b").types("new").answers_no().types("newer").answers_yes();
    const std::string text =
        "Input a MOTD (i.e. Any String not containing ';' or empty).. Can be Empty...";
    EXPECT_EQ(east.run({"A=13", "R=n"}).dialogs(),
              (Dialogs{prompted(text, "old motd"),
                       prompted("RETRY: MOTD values may not contain semi-colons (;)", "old motd"),
                       asked_to_change("Region MOTD String", "old motd", "new"),
                       prompted(text, "old motd"),
                       asked_to_change("Region MOTD String", "old motd", "newer")}));
    EXPECT_EQ(east.field(7, 2), "newer");
}

TEST(FieldEditors, ShowsAndWritesBackslashesUnchanged) {
    const std::string text =
        R"(Input a Windows Policy Depot (i.e. \\machine\share\gatewarden\depot)...)";
    const std::string same =
        "Current value and requested value are the same.  Perform Change anyway?";
    for (const char* strict : {"no", "yes"}) {
        Region east = a_region()
                          .with_line(2, R"(\\m\s;;O;)")
                          .with_env("ZUL_GATESCOPE_STRICT_QUOTING", strict);
        const std::string before = east.gatebits();
        east.types(R"(\\m\s)").answers_yes();
        EXPECT_EQ(east.run({"A=4", "R=n"}).dialogs(),
                  (Dialogs{prompted(text, R"(\\m\s)"), asked(same, "no")}));
        EXPECT_EQ(east.gatebits(), before);
        east.types(R"(\\m\new)").answers_yes();
        EXPECT_EQ(east.run({"A=4", "R=n"}).dialogs().at(1),
                  asked_to_change(
                      "Windows Policy Depot...", R"(\\m\s)", R"(\\m\new)",
                      "\n\nWarning:  Actual directory verification of the 'Windows Policy Depot'" +
                          NOT_VERIFIED));
        EXPECT_EQ(east.field(2, 1), R"(\\m\new)");
    }
}

TEST(FieldEditors, EditsValueEndingInBackslash) {
    for (const char* strict : {"no", "yes"}) {
        Region east = a_region()
                          .with_line(7, R"(;Save to C:\;;)")
                          .with_env("ZUL_GATESCOPE_STRICT_QUOTING", strict);
        east.types(R"(D:\)").answers_yes();
        const Result result = east.run({"A=13", "R=n"});
        EXPECT_EQ(result.status, 110);
        EXPECT_EQ(result.err, "");
        EXPECT_EQ(
            result.dialogs(),
            (Dialogs{prompted("Input a MOTD (i.e. Any String not containing ';' or empty).. Can "
                              "be Empty...",
                              R"(Save to C:\)"),
                     asked_to_change("Region MOTD String", R"(Save to C:\)", R"(D:\)")}));
        EXPECT_EQ(east.field(7, 2), R"(D:\)");
    }
}

TEST(FieldEditors, ChangesOnlyConfirmedFieldOfLongFile) {
    RegionPlan plan = a_region();
    for (int key = 0; key < 281; ++key) plan.with_key("key " + std::to_string(key) + ";one;two;");
    Region east = plan;
    const std::string before = east.gatebits();
    east.types("hello").answers_yes();
    EXPECT_EQ(east.run({"A=13", "R=n"}).status, 110);
    EXPECT_EQ(east.gatebits(), with_replaced(before, "\n;;;\n", "\n;hello;;\n"));
}

TEST(FieldEditors, ReadsFieldAgainAfterDecline) {
    Region east = full_region();
    east.types("new").answers({.kind = "yes_no",
                               .status = 1,
                               .meanwhile = "sed -i 's/old motd/meanwhile/' gatebits.txt"});
    east.cancels();
    const Dialogs dialogs = east.run({"A=13", "R=n"}).dialogs();
    ASSERT_EQ(dialogs.size(), 3u);
    EXPECT_EQ(dialogs[2],
              prompted("Input a MOTD (i.e. Any String not containing ';' or empty).. Can be "
                       "Empty...",
                       "meanwhile"));
}

TEST(FieldEditors, ShowsEmptyLettersAsOAndDigitZero) {
    Region east = a_region().with_line(2, ";{stage}/depot;").with_line(8, ";;");
    east.cancels();
    EXPECT_EQ(east.run({"A=8", "R=n"}).dialogs().at(0).args.back(),
              "Select a Region Logging Personality...  Currently = O");
    east.cancels();
    EXPECT_EQ(east.run({"A=15", "R=n"}).dialogs().at(0).args.back(),
              "Select Per-VOB Functionality Bits.  Currently = 0");
}

TEST(FieldEditors, ShowsListAgainAfterEmptyPick) {
    Region east = a_region();
    east.answers({.kind = "list", .outfile = ""}).cancels();
    EXPECT_EQ(east.run({"A=8", "R=n"}).dialogs().size(), 2u);
}

TEST(FieldEditors, DoesNotWriteMissingLoggingField) {
    Region east = a_region().with_line(2, ";{stage}/depot;tail");
    east.operator_picks("S - 'S'ucessful attempts only logged").answers_yes();
    EXPECT_EQ(east.run({"A=8", "R=n"}).dialogs().at(1),
              asked_to_change("Region Logging Personality", "", "S"));
    EXPECT_EQ(east.line(2), east.staged(";{stage}/depot;"));
}

TEST(FieldEditors, PrintsOnlyReportWithoutDialogs) {
    Region east = full_region().without_dialogs().with_env("ZUL_GATESCOPE_VERBOSITY", "");
    east.types("new").answers_yes();
    const Result result = east.run({"A=13", "R=n"});
    EXPECT_EQ(result.dialogs().size(), 2u);
    EXPECT_EQ(result.out,
              "Successfully changed Region MOTD String\n\nchange from:  old motd\n                 "
              "to:  new\n[yes] accepted\n");
    EXPECT_EQ(east.field(7, 2), "new");
}

// The depot.

TEST(Depots, ClearingUnixDepotClearsDependentFields) {
    Region east =
        full_region().with_line(1, "gatewarden;;E;east;").with_line(2, ";{stage}/depot;E;");
    const std::string before = east.gatebits();
    east.set_env("ZUL_GATESCOPE_VERBOSITY", "");
    east.types("").answers_yes();
    const Result result = east.run({"A=5", "R=n"});
    const std::string depot = east.staged("{stage}/depot");
    EXPECT_EQ(
        result.dialogs(),
        (Dialogs{
            prompted("Input a UNIX Policy Depot (i.e. /net/machine/gatewarden/depot)...", depot),
            asked_to_change(
                "UNIX Policy Depot...", depot, "",
                "\n\nWarning:  Clearing the (UNIX Policy Depot) will also clear the (UNIX Parent "
                "Gatebits File) currently set to '" +
                    east.staged("{stage}/parent.txt") +
                    "'...\n\nWarning:  Clearing the (UNIX Policy Depot) will also clear the (UNIX "
                    "Region Notify Program) currently set to 'u.sh'...\n\nWarning:  This would "
                    "result in both UNIX and Windows depots being cleared and so 'Region Logging' "
                    "would also get set from 'E' to 'O'ff..."),
            reported_change("UNIX Policy Depot...", depot, "")}));
    std::string after = with_replaced(before, "# our region\n\n", "# our region\n");
    after = with_replaced(after, "\n;" + depot + ";E;\n", "\n;;O;\n");
    after = with_replaced(after, east.staged("W:parent.txt;{stage}/parent.txt;"), "W:parent.txt;;");
    after = with_replaced(after, "w.bat;u.sh;", "w.bat;;");
    EXPECT_EQ(east.gatebits(), after);
}

TEST(Depots, ClearingWindowsDepotKeepsLoggingWithUnixDepot) {
    Region east = full_region();
    east.types("").answers_yes();
    east.run({"A=4", "R=n"});
    EXPECT_EQ(east.line(2), east.staged(";{stage}/depot;E;"));
    EXPECT_EQ(east.line(3), east.staged(";{stage}/parent.txt;"));
    EXPECT_EQ(east.line(4), ";u.sh;");
}

TEST(Depots, NextRequestUsesNewDepot) {
    Region east =
        full_region().with_log(0, "1<old\n").with_file("depot2/log/logging_0.txt", "1<old\n");
    east.types(east.path("depot2")).answers_yes();
    east.operator_picks("A01 - Prune Log Files").cancels();
    EXPECT_EQ(east.run({"A=5"}).status, 0);
    EXPECT_EQ(east.file("depot2/log/logging_0.txt"), "");
    EXPECT_EQ(east.log(0), "1<old\n");
}

// Fields that need a depot.

const std::string BEFORE_PARENT =
    "WARNING: The depot for the UNIX OS would have to be defined before you can define the UNIX "
    "'Parent Gatebits File' entry.\n\nDo you wish to define the UNIX depot now?";
const std::string UNIX_DEPOT_TEXT =
    "Input a UNIX Policy Depot (i.e. /net/machine/gatewarden/depot)...";
const std::string UNIX_PARENT_TEXT =
    "Input a UNIX Parent Gatebits File (i.e. /net/machine/gatebits.txt)...";

TEST(DepotFirst, DoesNotAskForParentWhenRefused) {
    Region east = full_region().with_line(2, ";;O;");
    const std::string before = east.gatebits();
    east.answers_no();
    EXPECT_EQ(east.run({"A=7", "R=n"}).dialogs(), Dialogs{asked(BEFORE_PARENT, "yes", "yes,no")});
    EXPECT_EQ(east.gatebits(), before);
}

TEST(DepotFirst, ReturnsToParentAfterDepotIsDefined) {
    Region east = full_region().with_line(2, ";;O;").with_line(3, ";;");
    const std::string depot = east.path("depot");
    const std::string parent = east.path("parent.txt");
    east.answers_yes().types(depot).answers_yes();
    east.types(parent).answers_no().types(parent).answers_yes();
    EXPECT_EQ(east.run({"A=7", "R=n"}).dialogs(),
              (Dialogs{asked(BEFORE_PARENT, "yes", "yes,no"), prompted(UNIX_DEPOT_TEXT, ""),
                       asked_to_change("UNIX Policy Depot...", "", depot),
                       prompted("OK, back to Parent Gatebits File\\n" + UNIX_PARENT_TEXT, ""),
                       asked_to_change("UNIX Parent Gatebits file...", "", parent),
                       prompted(UNIX_PARENT_TEXT, ""),
                       asked_to_change("UNIX Parent Gatebits file...", "", parent)}));
    EXPECT_EQ(east.line(2), ";" + depot + ";O;");
    EXPECT_EQ(east.line(3), ";" + parent + ";");
}

TEST(DepotFirst, DoesNotAskForParentWhenDepotIsAborted) {
    Region east = full_region().with_line(2, ";;O;");
    east.answers_yes().cancels();
    EXPECT_EQ(east.run({"A=7", "R=n"}).dialogs().size(), 2u);
    east.answers_yes().types(east.path("depot")).aborts();
    EXPECT_EQ(east.run({"A=7", "R=n"}).dialogs().size(), 3u);
    EXPECT_EQ(east.line(2), ";;O;");
}

TEST(DepotFirst, DoesNotAskForParentWhenDepotStaysEmpty) {
    Region east = full_region().with_line(2, ";;O;");
    east.answers_yes().types("").answers_yes();
    EXPECT_EQ(east.run({"A=7", "R=n"}).dialogs().size(), 3u);
}

TEST(DepotFirst, AsksForWindowsDepotBeforeWindowsNotifyProgram) {
    Region east = full_region().with_line(2, ";{stage}/depot;O;").with_line(4, ";;");
    east.answers_yes().types("W:d").answers_yes().types("n.bat").answers_yes();
    const Dialogs dialogs = east.run({"A=9", "R=n"}).dialogs();
    ASSERT_EQ(dialogs.size(), 5u);
    EXPECT_EQ(dialogs[0],
              asked("WARNING: The depot for the Windows OS would have to be defined before you can "
                    "define the Windows 'Region Notify Program' entry.\n\nDo you wish to define "
                    "the Windows depot now?",
                    "yes", "yes,no"));
    EXPECT_EQ(
        dialogs[3],
        prompted("OK, back to Region Notify Program/script\\nInput an optional Windows Region "
                 "Notify Program/script (i.e. script.bat - expected in Windows Depot)...",
                 ""));
    EXPECT_EQ(east.line(2), east.staged("W:d;{stage}/depot;O;"));
    EXPECT_EQ(east.line(4), "n.bat;;");
}

TEST(DepotFirst, AsksToRedefineUnixDepotThatIsNoDirectory) {
    Region missing = full_region().with_line(2, "W:depot;/none;O;");
    missing.answers_no();
    EXPECT_EQ(missing.run({"A=10", "R=n"}).dialogs(),
              Dialogs{asked("WARNING: The depot for the UNIX OS would have to be defined and valid "
                            "before you can define the UNIX 'Region Notify Program' entry.\n\nThe "
                            "currently defined UNIX depot (/none) does NOT exists.\n\nDo you wish "
                            "to redefine the UNIX depot now?",
                            "yes", "yes,no")});
    Region file = full_region().with_line(2, "W:depot;{stage}/parent.txt;O;");
    file.answers_no();
    EXPECT_EQ(file.run({"A=7", "R=n"}).dialogs(),
              Dialogs{asked("WARNING: The depot for the UNIX OS would have to be defined and valid "
                            "before you can define the UNIX 'Parent Gatebits File' entry.\n\nThe "
                            "currently defined UNIX depot (" +
                                file.path("parent.txt") +
                                ") does  exists, but is a FILE.\n\nDo you wish to redefine the "
                                "UNIX depot now?",
                            "yes", "yes,no")});
}

TEST(DepotFirst, DoesNotAskForParentWhileDepotIsInvalid) {
    Region east = full_region().with_line(2, "W:depot;/none;O;");
    east.answers_yes().cancels();
    EXPECT_EQ(east.run({"A=7", "R=n"}).dialogs().size(), 2u);
    east.answers_yes().types(east.path("depot")).aborts();
    EXPECT_EQ(east.run({"A=7", "R=n"}).dialogs().size(), 3u);
}

TEST(DepotFirst, DoesNotCheckWindowsDepot) {
    Region east = full_region().with_line(2, "/none;{stage}/depot;O;");
    east.cancels();
    EXPECT_EQ(east.run({"A=6", "R=n"}).dialogs().at(0).args.front(), "text");
}

// The bits.

TEST(Bits, ExtendsShortFieldAndClearsUnpickedBits) {
    Region east = a_region().with_line(8, "D;01x1;");
    east.operator_picks_several({}).answers_yes();
    const Dialogs dialogs = east.run({"A=16", "R=n"}).dialogs();
    ASSERT_EQ(dialogs.size(), 2u);
    EXPECT_EQ(dialogs[0].args.back(), "Current bit state: (010100000000000000000000)");
    EXPECT_NE(dialogs[0].args.at(6).find("01 - (1) BIT__CHOWN_VOB_OWNER,02 - (0) BIT__EVIL_TWIN,03 "
                                         "- (1) BIT__ONE_CO_PER_BRANCH,"),
              std::string::npos);
    EXPECT_EQ(dialogs[1],
              asked_to_change("Functionality Bits", "01x1", "000000000000000000000000"));
    EXPECT_EQ(east.line(8), "D;000000000000000000000000;");
}

TEST(Bits, ShowsMissingFieldAsZerosAndDoesNotWriteIt) {
    Region east = a_region().with_line(8, "D;");
    east.operator_picks_several({"03 - (0) BIT__ONE_CO_PER_BRANCH"}).answers_yes();
    const Dialogs dialogs = east.run({"A=16", "R=n"}).dialogs();
    EXPECT_EQ(dialogs.at(0).args.back(), "Current bit state: (000000000000000000000000)");
    EXPECT_EQ(dialogs.at(1), asked_to_change("Functionality Bits", "", "000100000000000000000000"));
    EXPECT_EQ(east.line(8), "D;");
}

TEST(Bits, CutsBitsAfterThe24th) {
    Region east = a_region().with_line(8, "D;1111111111111111111111111111;");
    east.operator_picks_several({"00 - (1) BIT__AUTO_BRANCH_REMOVAL", "24 - nonsense", "x"});
    east.answers_yes();
    EXPECT_EQ(east.run({"A=16", "R=n"}).dialogs().at(1),
              asked_to_change("Functionality Bits", "111111111111111111111111",
                              "100000000000000000000000"));
    EXPECT_EQ(east.line(8), "D;100000000000000000000000;");
}

}  // namespace
}  // namespace gatescope
