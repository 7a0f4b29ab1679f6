// The records of each kind of change, and runs without a record.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <sstream>

#include "scenes/actions.h"

namespace gatescope {
namespace {

namespace fs = std::filesystem;

const std::string CHANGES = "history/changes.jsonl";

/// A region whose changes are recorded.
RegionPlan recorded_region() {
    return a_region()
        .with_line(7, ";old;;")
        .with_env("ZUL_GATESCOPE_HISTORY", "{stage}/history")
        .with_file("history/.kept", "");
}

std::vector<std::string> lines_of(const Region& region) {
    std::istringstream text(region.file(CHANGES));
    std::vector<std::string> lines;
    for (std::string line; std::getline(text, line);) lines.push_back(line);
    return lines;
}

/// The part of a line between two texts.
std::string between(const std::string& line, const std::string& begin, const std::string& end) {
    const auto from = line.find(begin);
    const auto to = line.find(end, from + begin.size());
    EXPECT_NE(to, std::string::npos) << line;
    return line.substr(from + begin.size(), to - from - begin.size());
}

/// Action, item and values of a record.
std::string change_in(const std::string& line) {
    return between(line, "\"action\":", ",\"saved\"");
}

std::string saved_text(const Region& region, const std::string& line) {
    return region.file("history/" + between(line, "\"saved\":\"", "\"}"));
}

/// Runs the action with the prepared answers; expects one change and its record.
void expect_recorded(Region& region, const std::string& action, const std::string& expected) {
    const std::string before = region.gatebits();
    const std::size_t earlier = lines_of(region).size();
    EXPECT_EQ(region.run({"A=" + action, "R=n"}).status, 110) << action;
    EXPECT_NE(region.gatebits(), before) << action;
    const auto lines = lines_of(region);
    ASSERT_EQ(lines.size(), earlier + 1) << action;
    EXPECT_EQ(change_in(lines.back()), expected);
    EXPECT_EQ(saved_text(region, lines.back()), before);
    EXPECT_EQ(between(lines.back(), "\"operator\":\"", "\""), "operator");
    EXPECT_EQ(between(lines.back(), "\"file\":\"", "\""), fs::canonical(region.gatebits_path()));
}

/// Expects neither a record nor a saved text.
void expect_no_record(const Region& region) {
    EXPECT_EQ(region.file(CHANGES), "");
    for (const std::string& name : region.files_in("history")) {
        EXPECT_TRUE(name == ".kept" || name == "changes.jsonl") << name;
    }
}

/// Action, item and values as a record has them; nothing for null.
std::string recorded(const std::string& action, const std::string& item,
                     const std::optional<std::string>& from, const std::optional<std::string>& to) {
    const auto text = [](const std::optional<std::string>& value) {
        return value ? "\"" + *value + "\"" : "null";
    };
    return "\"" + action + "\",\"item\":\"" + item + "\",\"from\":" + text(from) +
           ",\"to\":" + text(to);
}

struct RecordedField {
    std::string action;
    std::string item;
    std::string from;
    std::string to;
};

class RecordedFields : public testing::TestWithParam<RecordedField> {};

TEST_P(RecordedFields, HaveActionItemAndValues) {
    const auto [action, item, from, to] = GetParam();
    Region east = recorded_region()
                      .with_line(2, "W:depot;{stage}/depot;O;")
                      .with_line(5, "; (a) ;")
                      .with_file("depot/script.sh", "")
                      .with_file("parent.txt", "");
    east.types(east.staged(to)).answers_yes();
    expect_recorded(east, std::to_string(std::stoi(action.substr(1))),
                    east.staged(recorded(action, item, from, to)));
}

INSTANTIATE_TEST_SUITE_P(
    Each, RecordedFields,
    testing::Values(RecordedField{"A04", "Windows Policy Depot", "W:depot", "W:other"},
                    RecordedField{"A05", "UNIX Policy Depot", "{stage}/depot", "{stage}"},
                    RecordedField{"A06", "Windows Parent Gatebits file", "", "W:parent"},
                    RecordedField{"A07", "UNIX Parent Gatebits file", "", "{stage}/parent.txt"},
                    RecordedField{"A09", "Windows Notify Program", "", "script.bat"},
                    RecordedField{"A10", "UNIX Notify Program", "", "script.sh"},
                    RecordedField{"A11", "Region Restricted Access List", " (a) ", "(b)"},
                    RecordedField{"A12", "Region Special Access List", " ", "(b)"},
                    RecordedField{"A13", "Region MOTD String", "old", "new"},
                    RecordedField{"A14", "Region MOTD Restriction List", "", "(b)"}),
    [](const testing::TestParamInfo<RecordedField>& field) { return field.param.action; });

TEST(History, RecordsPickedLettersAndBits) {
    Region east = recorded_region();
    east.operator_picks("S - 'S'ucessful attempts only logged").answers_yes();
    expect_recorded(east, "8", recorded("A08", "Region Logging Personality", "O", "S"));
    east.operator_picks("A - 'A'llow Per-VOB Functionality Bits").answers_yes();
    expect_recorded(east, "15",
                    recorded("A15", "Region Per-VOB Functionality Bits Personality", "D", "A"));
    east.operator_picks_several({"03 - (0) BIT__ONE_CO_PER_BRANCH"}).answers_yes();
    expect_recorded(east, "16",
                    recorded("A16", "Functionality Bits", "000000000000000000000000",
                             "000100000000000000000000"));
}

TEST(History, RecordsClearedDepotAndItsFieldsOnce) {
    Region east = recorded_region()
                      .with_line(2, ";{stage}/depot;E;")
                      .with_line(3, ";/parent;")
                      .with_line(4, ";notify;");
    east.types("").answers_yes();
    expect_recorded(east, "5",
                    east.staged(recorded("A05", "UNIX Policy Depot", "{stage}/depot", "")));
}

TEST(History, RecordsDepotDefinedFirstSeparately) {
    Region east = recorded_region();
    const std::string before = east.gatebits();
    east.answers_yes().types("W:depot").answers_yes().types("W:parent").answers_yes();
    EXPECT_EQ(east.run({"A=6", "R=n"}).status, 110);
    const auto lines = lines_of(east);
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(change_in(lines[0]), recorded("A04", "Windows Policy Depot", "", "W:depot"));
    EXPECT_EQ(change_in(lines[1]), recorded("A06", "Windows Parent Gatebits file", "", "W:parent"));
    EXPECT_EQ(saved_text(east, lines[0]), before);
    EXPECT_EQ(saved_text(east, lines[1]),
              with_replaced(before, "\n;" + east.path("depot"), "\nW:depot;" + east.path("depot")));
}

TEST(History, RecordsAliases) {
    const std::string one = "#!gatewarden_alias one (x)";
    const std::string two = "#!gatewarden_alias two (y)";
    Region east = recorded_region()
                      .with_alias("one", "(x)")
                      .with_line(5, "; ~one ~two ;")
                      .with_key("key;~one ;");
    east.types("two").types("(y)").answers_yes();
    expect_recorded(east, "17", recorded("A17", "Alias", std::nullopt, two));
    east.operator_picks(one).types("(z)").answers_yes();
    expect_recorded(east, "20", recorded("A20", "Alias #!gatewarden_alias one", "(x)", "(z)"));
    east.operator_picks("~two").answers_yes();
    expect_recorded(east, "19", recorded("A19", "Alias References", "~two", std::nullopt));
    east.operator_picks(two).answers_no();
    expect_recorded(east, "18", recorded("A18", "Alias", two, std::nullopt));
    const std::string changed = "#!gatewarden_alias one (z)";
    east.operator_picks(changed).answers_yes();
    expect_recorded(east, "18", recorded("A18", "Alias with References", changed, std::nullopt));
    EXPECT_EQ(east.gatebits().find("one"), std::string::npos);
}

TEST(History, RecordsWholeAliasThatListCuts) {
    const std::string value = "(" + std::string(200, 'x') + ")";
    const std::string definition = "#!gatewarden_alias long " + value;
    const std::string entry = definition.substr(0, 100) + " ...";
    Region east = recorded_region().with_alias("long", value);
    east.operator_picks(entry).types("(y)").answers_yes();
    expect_recorded(east, "20", recorded("A20", "Alias #!gatewarden_alias long", value, "(y)"));
    Region west = recorded_region().with_alias("long", value);
    west.operator_picks(entry).answers_no();
    expect_recorded(west, "18", recorded("A18", "Alias", definition, std::nullopt));
}

TEST(History, RecordsKeys) {
    Region east = recorded_region().with_key("first;").with_key("second;");
    east.operator_picks("001 second;").answers_yes().types("other;").answers_yes().cancels();
    expect_recorded(east, "21", recorded("A21", "Command Key 001", "second;", "other;"));
    east.operator_picks("000 first;").answers_no().answers_yes().cancels();
    expect_recorded(east, "21", recorded("A21", "Command Key 000", "first;", std::nullopt));
    east.answers({.kind = "list", .outfile = ""}).types("third;").answers_yes().cancels();
    expect_recorded(east, "22", recorded("A22", "Command Key 001", std::nullopt, "third;"));
}

TEST(History, RecordsSettings) {
    Region east = recorded_region();
    east.operator_picks("03 gatescope_windows_browser=").types("W:b").answers_yes();
    expect_recorded(east, "24",
                    recorded("A24", "Gatescope Variable",
                             "#!gatescope_windows_browser=", "#!gatescope_windows_browser=W:b"));
    Region west = recorded_region().without_variables().with_env("ZUL_PREFER_NO_GUI", "yes");
    west.operator_picks("03 gatescope_windows_browser=").types("W:b").answers_yes();
    expect_recorded(
        west, "24",
        recorded("A24", "Gatescope Variable", std::nullopt, "#!gatescope_windows_browser=W:b"));
}

TEST(History, RecordsEachStepOfWalk) {
    Region east = recorded_region().with_line(2, "W:depot;{stage}/depot;O;");
    east.types("true").answers_yes().types("W:other").answers_yes();
    for (int i = 0; i < 4; ++i) east.cancels();
    EXPECT_EQ(east.run({"A=28", "R=n"}).status, 110);
    const auto lines = lines_of(east);
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_TRUE(change_in(lines[0]).starts_with("\"A24\",\"item\":\"Gatescope Variable\","))
        << lines[0];
    EXPECT_EQ(change_in(lines[1]), recorded("A04", "Windows Policy Depot", "W:depot", "W:other"));
}

TEST(History, RecordsNewFileAndCopy) {
    Region east = recorded_region();
    east.chooses_file(east.path("new.txt")).aborts();
    EXPECT_EQ(east.run({"A=26", "R=n"}).status, 110);
    east.chooses_file(east.gatebits_path()).chooses_file(east.path("copy.txt"));
    EXPECT_EQ(east.run({"A=27", "R=n"}).status, 110);
    EXPECT_EQ(east.file("copy.txt"), east.gatebits());
    const auto lines = lines_of(east);
    ASSERT_EQ(lines.size(), 2u);
    const std::string stage = fs::canonical(east.path(""));
    EXPECT_NE(lines[0].find(",\"file\":\"" + stage +
                            "/new.txt\",\"action\":\"A26\",\"item\":"
                            "\"Gatebits File\",\"from\":null,\"to\":\"" +
                            east.path("new.txt") + "\",\"saved\":null}"),
              std::string::npos)
        << lines[0];
    EXPECT_NE(lines[1].find(",\"file\":\"" + stage +
                            "/copy.txt\",\"action\":\"A27\",\"item\":"
                            "\"Copy of " +
                            east.gatebits_path() + "\",\"from\":null,\"to\":\"" +
                            east.path("copy.txt") + "\",\"saved\":null}"),
              std::string::npos)
        << lines[1];
}

TEST(History, WritesJsonForAnyBytes) {
    if (std::system("python3 --version >/dev/null 2>&1") != 0) GTEST_SKIP() << "needs python3";
    const std::string odd = "\xFF \x01\x7F\t\"\\ \xC3\xA4 \xC3 \xF0\x9F\x98\x80 \xED\xA0\x80/~'";
    Region east = recorded_region().with_line(7, ";" + odd + ";;");
    east.set_env("ZUL_GATESCOPE_STRICT_QUOTING", "yes");
    east.set_env("CLEARCASE_USER", "a\"n\xFF");
    east.types("new\xFE\xE2\x82\xAC\"").answers_yes();
    EXPECT_EQ(east.run({"A=13", "R=n"}).status, 110);
    east.write_file("look.py", R"(import json
record, = [json.loads(line) for line in open("history/changes.jsonl", encoding="utf-8")]
assert record["operator"] == "a\"n\u00ff", record
assert record["from"] == "\u00ff \x01\x7f\t\"\\ \u00e4 \u00c3 \U0001f600 \u00ed\u00a0\u0080/~'", record
assert record["to"] == "new\u00fe\u20ac\"", record
)");
    EXPECT_EQ(std::system(("cd " + east.path("") + " && python3 look.py").c_str()), 0);
}

TEST(History, TouchesNothingWithoutVariable) {
    Region east = recorded_region().without_env("ZUL_GATESCOPE_HISTORY");
    east.types("new").answers_yes();
    EXPECT_EQ(east.run({"A=13", "R=n"}).status, 110);
    EXPECT_EQ(east.files_in("history"), std::vector<std::string>{".kept"});
}

// Runs without a change leave no record.

TEST(NoRecord, AfterDeclinedAbortedOrCancelledChange) {
    Region east = recorded_region().with_alias("one", "(x)").with_key("key;");
    const std::string before = east.gatebits();
    east.types("new").answers_no().types("a;b").cancels();
    EXPECT_EQ(east.run({"A=13", "R=n"}).status, 110);
    east.types("new").aborts();
    EXPECT_EQ(east.run({"A=13", "R=n"}).status, 110);
    east.operator_picks("#!gatewarden_alias one (x)").aborts();
    EXPECT_EQ(east.run({"A=18", "R=n"}).status, 110);
    east.operator_picks("000 key;").answers_no().answers_no().cancels();
    EXPECT_EQ(east.run({"A=21", "R=n"}).status, 110);
    east.chooses_file(east.gatebits_path()).aborts();
    EXPECT_EQ(east.run({"A=26", "R=n"}).status, 110);
    EXPECT_EQ(east.gatebits(), before);
    EXPECT_FALSE(east.has_file(CHANGES));
    expect_no_record(east);
}

TEST(NoRecord, WhenFileChangedMeanwhile) {
    Region east = recorded_region();
    east.types("new").answers(
        {.kind = "yes_no", .status = 0, .meanwhile = "sed -i s/old/other/ gatebits.txt"});
    EXPECT_EQ(east.run({"A=13", "R=n"}).status, 110);
    EXPECT_EQ(east.field(7, 2), "other");
    expect_no_record(east);
}

TEST(NoRecord, ForFieldMissingInFile) {
    Region east = recorded_region().with_line(2, ";{stage}/depot;");
    const std::string before = east.gatebits();
    east.operator_picks("S - 'S'ucessful attempts only logged").answers_yes();
    EXPECT_EQ(east.run({"A=8", "R=n"}).status, 110);
    EXPECT_EQ(east.gatebits(), before);
    expect_no_record(east);
}

// The file changes without the field: the text after the last ';' is removed.
TEST(History, RecordsEmptyValuesForFieldMissingInWrittenFile) {
    Region east = recorded_region().with_line(2, ";{stage}/depot;tail");
    east.operator_picks("S - 'S'ucessful attempts only logged").answers_yes();
    expect_recorded(east, "8", recorded("A08", "Region Logging Personality", "", ""));
}

TEST(NoRecord, ForRefusedChange) {
    Region read_only = recorded_region();
    const std::string before = read_only.gatebits();
    ASSERT_EQ(chmod(read_only.gatebits_path().c_str(), 0444), 0);
    read_only.types("new").answers_yes();
    EXPECT_EQ(read_only.run({"A=13", "R=n"}).status, 99);
    EXPECT_EQ(read_only.gatebits(), before);
    expect_no_record(read_only);

    // The size does not depend on the length of the stage's path.
    const std::size_t rest = 29800 - before.size();
    Region too_large = recorded_region().with_key(std::string(rest, 'x') + ";");
    too_large.types(std::string(250, 'y')).answers_yes();
    EXPECT_EQ(too_large.run({"A=13", "R=n"}).status, 99);
    expect_no_record(too_large);

    Region taken = recorded_region();
    taken.answers(
        {.kind = "file", .outfile = taken.path("new.txt"), .meanwhile = "echo other > new.txt"});
    taken.aborts();
    EXPECT_EQ(taken.run({"A=26", "R=n"}).status, 110);
    expect_no_record(taken);
}

// A change that cannot be recorded is not made.

struct Obstacle {
    std::string name;
    /// Shell commands that prevent the record.
    std::string commands;
    std::string path;
    std::string reason;
};

class UnfitHistories : public testing::TestWithParam<Obstacle> {};

TEST_P(UnfitHistories, KeepFileAndAreNamed) {
    const auto& [name, commands, path, reason] = GetParam();
    Region east = recorded_region();
    const std::string before = east.gatebits();
    ASSERT_EQ(std::system(("cd " + east.path("") + " && " + commands).c_str()), 0);
    const Dialog error =
        griped("ERROR: The change was not made, because it could not be recorded in (" +
               east.path(path) + "): " + reason + ".");
    east.types("new").answers_yes();
    Result result = east.run({"A=13", "R=n"});
    EXPECT_EQ(result.status, 99);
    EXPECT_EQ(result.dialogs().back(), error);
    EXPECT_EQ(east.gatebits(), before);

    east.chooses_file(east.path("new.txt"));
    result = east.run({"A=26", "R=n"});
    EXPECT_EQ(result.status, 99);
    EXPECT_EQ(result.dialogs().back(), error);
    EXPECT_FALSE(east.has_file("new.txt"));
    EXPECT_FALSE(east.has_file("elsewhere"));
}

INSTANTIATE_TEST_SUITE_P(
    Each, UnfitHistories,
    testing::Values(Obstacle{"Missing", "rm -r history", "history", "No such file or directory"},
                    Obstacle{"NoDirectory", "rm -r history && touch history",
                             "history/changes.jsonl", "Not a directory"},
                    Obstacle{"Link", "ln -s ../elsewhere history/changes.jsonl",
                             "history/changes.jsonl", "Not a regular file"},
                    Obstacle{"Pipe", "mkfifo history/changes.jsonl", "history/changes.jsonl",
                             "Not a regular file"},
                    Obstacle{"SecondName", "ln gatebits.txt history/changes.jsonl",
                             "history/changes.jsonl", "it has a second name"}),
    [](const testing::TestParamInfo<Obstacle>& obstacle) { return obstacle.param.name; });

}  // namespace
}  // namespace gatescope
