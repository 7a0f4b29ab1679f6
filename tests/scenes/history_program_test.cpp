// The program gatescope-history, on histories that gatescope has made.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>

#include "scenes/actions.h"

namespace gatescope {
namespace {

namespace fs = std::filesystem;

/// A region with two changes in its history: the MOTD, and a key.
Region region_with_two_changes() {
    Region east = a_region()
                      .with_line(7, ";old;;")
                      .with_key("first;")
                      .with_env("ZUL_GATESCOPE_HISTORY", "{stage}/history")
                      .with_file("history/.kept", "");
    east.types("new").answers_yes();
    EXPECT_EQ(east.run({"A=13", "R=n"}).status, 110);
    east.operator_picks("000 first;").types("second;").answers_yes().cancels();
    EXPECT_EQ(east.run({"A=22", "R=n"}).status, 110);
    return east;
}

/// The program that was built beside the tests, or one that scripts/machines starts for them.
std::string history_program() {
    const char* other = std::getenv("GATESCOPE_TESTED_PROGRAM");
    return other != nullptr ? std::string(other) + "-history" : HISTORY_PROGRAM_FILE;
}

Result history(Region& region, const Args& args) {
    return region.run_program(history_program(), "gatescope-history", args);
}

/// The error is one line, status 2 and nothing on standard output.
void expect_error(Region& region, const Args& args, const std::string& message) {
    const Result result = history(region, args);
    EXPECT_EQ(result.err, "gatescope-history: " + message + "\n");
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
}

/// The text that stands before the change of that number, from 1.
std::string saved_name(const Region& region, std::size_t number) {
    std::string lines = region.file("history/changes.jsonl");
    for (; number > 1; --number) lines.erase(0, lines.find('\n') + 1);
    const std::string mark = "\"saved\":\"";
    lines.erase(0, lines.find(mark) + mark.size());
    return lines.substr(0, lines.find('"'));
}

/// What the list shows, without the times.
std::string list_without_times(const std::string& list) {
    std::string rest = list;
    for (auto at = rest.find("  20"); at != std::string::npos; at = rest.find("  20", at + 1)) {
        rest.replace(at + 2, std::string("2026-11-22 01:15:30").size(), "TIME");
    }
    return rest;
}

TEST(HistoryProgram, ListsTheChanges) {
    Region east = region_with_two_changes();
    const Result result = history(east, {"list"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(list_without_times(result.out),
              "1  TIME  operator  A13  Region MOTD String  old → new\n"
              "2  TIME  operator  A22  Command Key 001     - → second;\n");
}

/// The first lines of a diff.
std::string head(const std::string& file, int number) {
    const std::string change = " change " + std::to_string(number) + "\n";
    return "--- " + file + "\tbefore" + change + "+++ " + file + "\tafter" + change;
}

TEST(HistoryProgram, ShowsWhatAChangeDid) {
    Region east = region_with_two_changes();
    const Result first = history(east, {"diff", "1"});
    EXPECT_EQ(first.status, 1);
    EXPECT_EQ(first.out, head(east.gatebits_path(), 1) +
                             "@@ -12,6 +12,6 @@\n ;;\n ; ;\n ; ;\n-;old;;\n+;new;;\n "
                             "D;000000000000000000000000;\n first;\n");
    const Result second = history(east, {"diff", "2"});
    EXPECT_EQ(second.status, 1);
    EXPECT_EQ(second.out, head(east.gatebits_path(), 2) +
                              "@@ -15,3 +15,4 @@\n ;new;;\n D;000000000000000000000000;\n "
                              "first;\n+second;\n");
}

TEST(HistoryProgram, AChangeThatChangedNothingHasNoDifferences) {
    Region east = region_with_two_changes();
    east.types("new").answers_yes();
    EXPECT_EQ(east.run({"A=13", "R=n"}).status, 110);
    const Result result = history(east, {"diff", "3"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "");
}

TEST(HistoryProgram, AFileThatWasCreatedCameWhole) {
    Region east = region_with_two_changes();
    east.chooses_file(east.gatebits_path()).chooses_file(east.path("copy.txt"));
    EXPECT_EQ(east.run({"A=27", "R=n"}).status, 110);
    const Result result = history(east, {"diff", "3"});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.out.starts_with(head(east.path("copy.txt"), 3) +
                                       "@@ -0,0 +1,18 @@\n+#!gatescope_unix_gatewarden_check="))
        << result.out;
    expect_error(east, {"restore", "3"},
                 "before change 3 there was no file (" + east.path("copy.txt") + ")");
}

TEST(HistoryProgram, PutsBackWhatStoodBeforeAChange) {
    Region east = region_with_two_changes();
    const std::string changed = east.gatebits();
    const Result result = history(east, {"restore", "1"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out + result.err, "");
    EXPECT_EQ(east.gatebits(), east.file("history/" + saved_name(east, 1)));
    EXPECT_EQ(east.field(7, 2), "old");
    EXPECT_EQ(list_without_times(history(east, {"list"}).out),
              "1  TIME  operator  A13      Region MOTD String    old → new\n"
              "2  TIME  operator  A22      Command Key 001       - → second;\n"
              "3  TIME  operator  restore  Text before change 1  - → " +
                  saved_name(east, 1) + "\n");
    EXPECT_EQ(east.file("history/" + saved_name(east, 3)), changed);
    // That can be taken back, too.
    EXPECT_EQ(history(east, {"restore", "3"}).status, 0);
    EXPECT_EQ(east.gatebits(), changed);
    EXPECT_EQ(east.files_in("tmp"), std::vector<std::string>());
}

TEST(HistoryProgram, BytesComeBackAsTheyWere) {
    const std::string odd = "gatewarden;;;east;\r\n\n;" + std::string("\xFF") +
                            ";O;\n;;\n;;\n; ;\n; ;\n;old;;\nD;0;\nno end";
    Region east = a_region()
                      .with_gatebits(odd)
                      .with_env("ZUL_GATESCOPE_HISTORY", "{stage}/history")
                      .with_file("history/.kept", "");
    east.types("new").answers_yes();
    EXPECT_EQ(east.run({"A=13", "R=n"}).status, 110);
    EXPECT_NE(east.gatebits(), odd);
    EXPECT_EQ(history(east, {"restore", "1"}).status, 0);
    EXPECT_EQ(east.gatebits(), odd);
}

TEST(HistoryProgram, AFileThatIsPutBackKeepsItsModeAndItsLinks) {
    Region east = region_with_two_changes();
    fs::rename(east.gatebits_path(), east.path("real.txt"));
    fs::create_symlink("real.txt", east.gatebits_path());
    ASSERT_EQ(chmod(east.path("real.txt").c_str(), 0640), 0);
    EXPECT_EQ(history(east, {"restore", "1"}).status, 0);
    EXPECT_TRUE(fs::is_symlink(east.gatebits_path()));
    EXPECT_EQ(east.field(7, 2), "old");
    EXPECT_EQ(fs::status(east.path("real.txt")).permissions(), fs::perms(0640));

    fs::create_hard_link(east.path("real.txt"), east.path("other.txt"));
    EXPECT_EQ(history(east, {"restore", "2"}).status, 0);
    EXPECT_EQ(east.field(7, 2), "new");
    EXPECT_EQ(east.file("other.txt"), east.gatebits());
}

TEST(HistoryProgram, NothingIsPutBackThatCannotBeRecorded) {
    Region east = region_with_two_changes();
    const std::string before = east.gatebits();
    const std::string lines = east.file("history/changes.jsonl");
    fs::create_hard_link(east.path("history/changes.jsonl"), east.path("second"));
    expect_error(east, {"restore", "1"},
                 "ERROR: The change was not made, because it could not be recorded in (" +
                     east.path("history/changes.jsonl") + "): it has a second name.");
    EXPECT_EQ(east.gatebits(), before);
    EXPECT_EQ(east.file("history/changes.jsonl"), lines);
}

TEST(HistoryProgram, AFileThatMayNotBeWrittenStaysAndSaysWhy) {
    Region east = region_with_two_changes();
    const std::string before = east.gatebits();
    const std::string lines = east.file("history/changes.jsonl");
    ASSERT_EQ(chmod(east.gatebits_path().c_str(), 0444), 0);
    const Result result = history(east, {"restore", "1"});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(result.err.starts_with("gatescope-history: #1 Could not move (")) << result.err;
    EXPECT_TRUE(result.err.ends_with("with 13: Permission denied\n")) << result.err;
    EXPECT_EQ(east.gatebits(), before);
    EXPECT_EQ(east.file("history/changes.jsonl"), lines);
}

TEST(HistoryProgram, AFileThatIsGoneIsNamed) {
    Region east = region_with_two_changes();
    fs::remove(east.gatebits_path());
    const std::string reason =
        "ERROR: Can't open the enterprise permissions file.....: " + east.gatebits_path() +
        ": No such file or directory";
    expect_error(east, {"restore", "1"}, reason);
    expect_error(east, {"diff", "2"}, reason);
    EXPECT_EQ(history(east, {"diff", "1"}).status, 1);
}

TEST(HistoryProgram, TheOptionsNameTheHistoryAndTheFile) {
    Region east = region_with_two_changes();
    east.chooses_file(east.gatebits_path()).chooses_file(east.path("copy.txt"));
    EXPECT_EQ(east.run({"A=27", "R=n"}).status, 110);
    fs::rename(east.path("history"), east.path("elsewhere"));
    const std::string directory = east.path("elsewhere");
    expect_error(east, {"-d", directory, "list"},
                 "(" + directory + ") holds changes of several policy files, such as (" +
                     east.gatebits_path() + ") and (" + east.path("copy.txt") +
                     "); name one with -f");
    EXPECT_EQ(list_without_times(history(east, {"-d", directory, "-f", "copy.txt", "list"}).out),
              "3  TIME  operator  A27  Copy of " + east.gatebits_path() + "  - → " +
                  east.path("copy.txt") + "\n");
    const Result nothing = history(east, {"-d" + directory, "list", "-fnone.txt"});
    EXPECT_EQ(nothing.status, 1);
    EXPECT_EQ(nothing.out + nothing.err, "");
    // Numbers say which file it is.
    EXPECT_EQ(history(east, {"diff", "1", "-d", directory}).status, 1);
    expect_error(east, {"-d", directory, "-f", "copy.txt", "diff", "1"},
                 "there is no change 1 in (" + directory + ")");
    // Where -d names it, it is recorded there, too.
    EXPECT_EQ(history(east, {"-d", directory, "restore", "2"}).status, 0);
    EXPECT_NE(east.file("elsewhere/changes.jsonl").find("\"restore\""), std::string::npos);
    EXPECT_FALSE(east.has_file("history"));
}

TEST(HistoryProgram, WrongWordsAreAnError) {
    Region east = region_with_two_changes();
    for (const Args& args :
         {Args{}, Args{"lists"}, Args{"list", "1"}, Args{"diff"}, Args{"diff", "1", "2"},
          Args{"restore"}, Args{"-x", "list"}, Args{"--other"}, Args{"list", "-d"}}) {
        expect_error(east, args, "give list, diff N or restore N; --help says more");
    }
    for (const std::string number : {"0", "3", "01", "x", "-1", ""}) {
        expect_error(east, {"diff", "--", number},
                     "there is no change " + number + " in (" + east.path("history") + ")");
    }
}

TEST(HistoryProgram, WithoutAHistoryItSaysSo) {
    Region east = a_region();
    expect_error(east, {"list"}, "ZUL_GATESCOPE_HISTORY is not set; name the history with -d");
    expect_error(east, {"-d", "none", "list"},
                 "(none/changes.jsonl) cannot be read: No such file or directory");
}

TEST(HistoryProgram, ReportsALineWithoutACompleteRecordAndShowsTheOthers) {
    Region east = region_with_two_changes();
    const std::string list = history(east, {"list"}).out;
    east.write_file("history/changes.jsonl",
                    east.file("history/changes.jsonl") + "{\"time\":\"2026");
    const Result result = history(east, {"list"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, list);
    EXPECT_EQ(result.err, "gatescope-history: line 3 of (" + east.path("history/changes.jsonl") +
                              ") is not a complete record\n");
    EXPECT_EQ(history(east, {"restore", "1"}).status, 0);
    EXPECT_TRUE(
        list_without_times(history(east, {"list"}).out).find("4  TIME  operator  restore  ") !=
        std::string::npos);
}

TEST(HistoryProgram, RefusesToPutBackATextOfMoreThan30000Bytes) {
    Region east = region_with_two_changes();
    const std::string saved = "history/" + saved_name(east, 1);
    const std::string before = east.gatebits();
    fs::remove(east.path(saved));
    east.write_file(saved, std::string(30001, 'x'));
    expect_error(east, {"restore", "1"},
                 "ERROR: The enterprise permissions file (" + east.path(saved) +
                     ") is larger than the limit of 30000 bytes.");
    EXPECT_TRUE(east.gatebits() == before);
    EXPECT_EQ(history(east, {"list"}).out.find("restore"), std::string::npos);
}

TEST(HistoryProgram, PutsBackATextAlsoOverAnEmptyFileOrNulBytes) {
    Region east = region_with_two_changes();
    const std::string old = east.file("history/" + saved_name(east, 1));
    for (const std::string& ruined : {std::string(), std::string("\n"), std::string("a\0b", 3)}) {
        east.write_file("gatebits.txt", ruined);
        EXPECT_EQ(history(east, {"restore", "1"}).status, 0);
        EXPECT_EQ(east.gatebits(), old);
    }
    const std::string empty = saved_name(east, 3);
    expect_error(east, {"restore", "3"},
                 "ERROR: The enterprise permissions file (" + empty + ") is empty.");
    EXPECT_EQ(east.gatebits(), old);
}

TEST(HistoryProgram, SaysWhatItIs) {
    Region east = a_region();
    const Result help = history(east, {"--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_TRUE(help.out.starts_with("Usage: gatescope-history ")) << help.out;
    EXPECT_EQ(history(east, {"--version"}).out, "gatescope-history " GATESCOPE_VERSION "\n");
}

TEST(HistoryProgram, OutputThatCannotBeWrittenIsAnError) {
    Region east = region_with_two_changes();
    const Result result =
        east.run_program("/bin/sh", "sh", {"-c", history_program() + " list >/dev/full"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err,
              "gatescope-history: standard output could not be written: No space left on device\n");
}

/// The output of a terminal with so many columns.
std::string on_terminal(Region& region, const std::string& command, int columns = 80) {
    region.run_program("/bin/sh", "sh",
                       {"-c", "script -qec 'stty cols " + std::to_string(columns) + " -onlcr; " +
                                  history_program() + " " + command + "' /dev/null >terminal"});
    return region.file("terminal");
}

bool has_terminals() {
    Region region = a_region();
    return on_terminal(region, "--version").find("gatescope-history") != std::string::npos;
}

TEST(HistoryProgram, HasColoursOnATerminalThatTakesThem) {
    if (!has_terminals()) GTEST_SKIP() << "no terminal";
    const std::string coloured = "\033[31m-;old;;\033[m\n\033[32m+;new;;\033[m\n";
    Region east = region_with_two_changes();
    east.set_env("TERM", "xterm");
    EXPECT_NE(on_terminal(east, "diff 1").find(coloured), std::string::npos);
    EXPECT_EQ(history(east, {"diff", "1"}).out.find('\033'), std::string::npos);
    east.set_env("NO_COLOR", "");
    EXPECT_NE(on_terminal(east, "diff 1").find(coloured), std::string::npos);
    east.set_env("NO_COLOR", "1");
    EXPECT_EQ(on_terminal(east, "diff 1").find('\033'), std::string::npos);
    east.set_env("NO_COLOR", "");
    east.set_env("TERM", "dumb");
    EXPECT_EQ(on_terminal(east, "diff 1").find('\033'), std::string::npos);
    EXPECT_NE(on_terminal(east, "diff 1").find("\n-;old;;\n+;new;;\n"), std::string::npos);
}

TEST(HistoryProgram, CutsLongValuesAsTheTerminalIsWide) {
    if (!has_terminals()) GTEST_SKIP() << "no terminal";
    Region east = region_with_two_changes();
    east.types(std::string(100, 'x')).answers_yes();
    EXPECT_EQ(east.run({"A=13", "R=n"}).status, 110);
    EXPECT_NE(on_terminal(east, "list").find("  A13  Region MOTD String  new → xxxxxxxxxxxxxx…\n"),
              std::string::npos)
        << on_terminal(east, "list");
    EXPECT_NE(on_terminal(east, "list", 20).find("  A13  Region MO…  new → xxxxxxxxxxxx…\n"),
              std::string::npos)
        << on_terminal(east, "list", 20);
    EXPECT_NE(history(east, {"list"}).out.find(std::string(100, 'x')), std::string::npos);
}

}  // namespace
}  // namespace gatescope
