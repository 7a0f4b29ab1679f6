#include "policy/gatebits_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "policy/edition.h"
#include "units/on_stage.h"

namespace {

const std::string DEPOT_BLOCK =
    "gatewarden;;;east;\n;/depot;O;\n;;\n;;\n; ;\n; ;\n;;;\nD;000000000000000000000000;\n";

class GatebitsFile : public OnStage {
  protected:
    std::string line(int n) const {
        std::string text = "(untouched)";
        return get_a_line(gatebits_file, n, &text) ? text : "(none)" + text;
    }
    std::string field(int n, int f) const {
        std::string text = "(untouched)";
        return get_a_field(gatebits_file, n, f, &text) ? text : "(none)" + text;
    }
    /// The file with `count` significant lines "line 1" and so on.
    void use_lines(int count) const {
        std::string text;
        for (int i = 1; i <= count; ++i) text += "line " + std::to_string(i) + "\n";
        use_gatebits(text);
    }
};
using GatebitsFileDeathTest = GatebitsFile;

const std::string NONE = "(none)(untouched)";

TEST_F(GatebitsFile, OnlySignificantLinesAreCounted) {
    use_gatebits(
        "# comment\n"
        "#!gatescope_unix_browser=/b\n"
        "first;\n"
        "\n\n"
        "  \t# indented comment\n"
        "#!gatewarden_alias name value\n"
        " \t \n"
        " \tsecond;\n"
        "#\n"
        "third");
    EXPECT_EQ(line(1), "first;");
    EXPECT_EQ(line(2), " \tsecond;");
    EXPECT_EQ(line(3), "third");
    EXPECT_EQ(line(4), NONE);
    EXPECT_EQ(line(0), NONE);
}

TEST_F(GatebitsFile, NumbersUpTo127AddressLinesAndNoOthersDo) {
    use_lines(300);
    EXPECT_EQ(line(127), "line 127");
    EXPECT_EQ(line(128), NONE);
    EXPECT_EQ(line(129), NONE);
    EXPECT_EQ(line(257), NONE);
    EXPECT_EQ(line(300), NONE);
    EXPECT_EQ(line(1), "line 1");
}

TEST_F(GatebitsFile, FieldsAreWhatSemicolonsEnd) {
    use_gatebits(";;O;\none;two\nno field\n");
    EXPECT_EQ(field(1, 1), "");
    EXPECT_EQ(field(1, 2), "");
    EXPECT_EQ(field(1, 3), "O");
    EXPECT_EQ(field(1, 4), NONE);
    EXPECT_EQ(field(1, 0), NONE);
    EXPECT_EQ(field(2, 1), "one");
    EXPECT_EQ(field(2, 2), NONE);
    EXPECT_EQ(field(3, 1), NONE);
    EXPECT_EQ(field(4, 1), NONE);
    EXPECT_EQ(field_or_empty(gatebits_file, 1, 3), "O");
    EXPECT_EQ(field_or_empty(gatebits_file, 1, 4), "");
}

TEST_F(GatebitsFile, LongLinesAreReadAndWrittenWhole) {
    const std::string text(3000, 'x');
    use_gatebits(";" + text + ";O;\n");
    EXPECT_EQ(field(1, 2), text);
    set_a_field(gatebits_file, {1, 3, "S"});
    EXPECT_EQ(region.gatebits(), ";" + text + ";S;\n");
}

TEST_F(GatebitsFile, SetALineReplacesThatLineOnly) {
    use_gatebits("# top\n first;\n\n#!gatewarden_alias a b\nsecond;\n\nthird");
    EXPECT_EQ(set_a_line(gatebits_file, 2, "new;line;"), ChangeResult::WRITTEN);
    EXPECT_EQ(region.gatebits(), "# top\n first;\n#!gatewarden_alias a b\nnew;line;\nthird\n");
}

TEST_F(GatebitsFile, TheDeletionTokenRemovesAKey) {
    use_gatebits(DEPOT_BLOCK + "# keys\nkey 0;\nkey 1;\n");
    EXPECT_EQ(set_a_line(gatebits_file, FIRST_KEY_LINE, DELETION_TOKEN), ChangeResult::WRITTEN);
    EXPECT_EQ(region.gatebits(), DEPOT_BLOCK + "# keys\n\nkey 1;\n");
    EXPECT_EQ(line(FIRST_KEY_LINE), "key 1;");
    EXPECT_EQ(line(FIRST_KEY_LINE + 1), NONE);
}

TEST_F(GatebitsFile, TheEmptyLineInADeletedOnesPlaceGoesWithTheNextRewrite) {
    use_gatebits(DEPOT_BLOCK + "key 0;\nkey 1;\n");
    set_a_line(gatebits_file, FIRST_KEY_LINE, DELETION_TOKEN);
    set_a_line(gatebits_file, FIRST_KEY_LINE, "key 2;");
    EXPECT_EQ(region.gatebits(), DEPOT_BLOCK + "key 2;\n");
}

TEST_F(GatebitsFile, AnEmptyTextIsWrittenAsAnEmptyLine) {
    use_gatebits(DEPOT_BLOCK + "key 0;\nkey 1;\n");
    set_a_line(gatebits_file, FIRST_KEY_LINE, "");
    EXPECT_EQ(region.gatebits(), DEPOT_BLOCK + "\nkey 1;\n");
    set_a_line(gatebits_file, 0, "");
    EXPECT_EQ(region.gatebits(), DEPOT_BLOCK + "key 1;\n\n");
}

TEST_F(GatebitsFile, OnlyTheExactTokenDeletes) {
    use_gatebits("one;\n");
    set_a_line(gatebits_file, 1, std::string(DELETION_TOKEN) + " ");
    EXPECT_EQ(region.gatebits(), "<[;;;;;deletme;;;;;]> \n");
}

TEST_F(GatebitsFile, LineZeroAppendsAfterEverything) {
    use_gatebits(DEPOT_BLOCK + "# the end\n");
    EXPECT_EQ(set_a_line(gatebits_file, 0, "a key;"), ChangeResult::WRITTEN);
    EXPECT_EQ(region.gatebits(), DEPOT_BLOCK + "# the end\na key;\n");
}

TEST_F(GatebitsFile, ANumberAfterTheLastLineOnlyDropsBlankLines) {
    use_gatebits("one;\n\ntwo;\n\n# three\n");
    EXPECT_EQ(set_a_line(gatebits_file, 5, "x;"), ChangeResult::NO_SUCH_LINE);
    EXPECT_EQ(region.gatebits(), "one;\ntwo;\n# three\n");
}

TEST_F(GatebitsFile, WhereTheCounterStartsOverOnlyTheFirstLineWithTheNumberIsReplaced) {
    use_lines(600);
    set_a_line(gatebits_file, 5, "new");
    std::string expected;
    for (int i = 1; i <= 600; ++i) {
        expected += i == 5 ? "new\n" : "line " + std::to_string(i) + "\n";
    }
    EXPECT_EQ(region.gatebits(), expected);
}

TEST_F(GatebitsFile, AFieldOfALongFileIsSetInItsLineOnly) {
    std::string keys;
    for (int i = 0; i < 281; ++i) keys += "key " + std::to_string(i) + ";one;two;\n";
    use_gatebits(DEPOT_BLOCK + keys);
    EXPECT_EQ(set_a_field(gatebits_file, {MOTD_LINE, 2, "hello"}, {{PARENT_LINE, 1, "p"}}),
              ChangeResult::WRITTEN);
    EXPECT_EQ(region.gatebits(),
              "gatewarden;;;east;\n;/depot;O;\np;;\n;;\n; ;\n; ;\n;hello;;\n"
              "D;000000000000000000000000;\n" +
                  keys);
}

TEST_F(GatebitsFile, LinesAfterThe127thAreNotReplaced) {
    use_lines(200);
    const std::string before = region.gatebits();
    set_a_line(gatebits_file, 128, "new");
    set_a_line(gatebits_file, 200, "new");
    EXPECT_EQ(region.gatebits(), before);
}

TEST_F(GatebitsFile, SetAFieldChangesThatFieldOnly) {
    use_gatebits("#c\n;;O;\nkeep\n");
    EXPECT_EQ(set_a_field(gatebits_file, {1, 2, "/a/path"}), ChangeResult::WRITTEN);
    EXPECT_EQ(region.gatebits(), "#c\n;/a/path;O;\nkeep\n");
    set_a_field(gatebits_file, {1, 1, "C:\\depot"});
    EXPECT_EQ(line(1), "C:\\depot;/a/path;O;");
    set_a_field(gatebits_file, {1, 3, ""});
    EXPECT_EQ(line(1), "C:\\depot;/a/path;;");
}

TEST_F(GatebitsFile, ATextWithoutItsSemicolonIsLostOnAFieldEdit) {
    use_gatebits("one;two\n");
    set_a_field(gatebits_file, {1, 1, "new"});
    EXPECT_EQ(line(1), "new;");
}

TEST_F(GatebitsFile, AFieldOnePastTheLastRewritesTheLineWithoutTheValue) {
    use_gatebits(";;O;trailing\n\n");
    EXPECT_EQ(set_a_field(gatebits_file, {1, 4, "value"}), ChangeResult::NO_SUCH_FIELD);
    EXPECT_EQ(region.gatebits(), ";;O;\n");
}

TEST_F(GatebitsFile, AFieldFurtherOutWritesNothing) {
    use_gatebits(";;O;trailing\n\n");
    EXPECT_EQ(set_a_field(gatebits_file, {1, 5, "value"}), ChangeResult::NO_SUCH_FIELD);
    EXPECT_EQ(region.gatebits(), ";;O;trailing\n\n");
}

TEST_F(GatebitsFile, AMissingLineOrOneWithoutFieldsIsLeftAlone) {
    use_gatebits("no field\n\n");
    EXPECT_EQ(set_a_field(gatebits_file, {1, 1, "value"}), ChangeResult::NO_SUCH_FIELD);
    EXPECT_EQ(set_a_field(gatebits_file, {2, 1, "value"}), ChangeResult::NO_SUCH_LINE);
    EXPECT_EQ(region.gatebits(), "no field\n\n");
}

TEST_F(GatebitsFile, AnAliasReferenceAtAFieldsEndGetsABlank) {
    use_gatebits("; ;\n");
    set_a_field(gatebits_file, {1, 2, "(ann) ~team"});
    EXPECT_EQ(line(1), ";(ann) ~team ;");
    use_gatebits("; ;\n");
    set_a_field(gatebits_file, {1, 2, "~team"});
    EXPECT_EQ(line(1), ";~team ;");
    use_gatebits("; ;\n");
    set_a_field(gatebits_file, {1, 2, "~team (ann)"});
    EXPECT_EQ(line(1), ";~team (ann);");
    use_gatebits("; ;\n");
    set_a_field(gatebits_file, {1, 2, "~team "});
    EXPECT_EQ(line(1), ";~team ;");
}

TEST_F(GatebitsFile, AReferenceInAnotherFieldGetsItsBlankToo) {
    use_gatebits(";~team;x;\n");
    set_a_field(gatebits_file, {1, 3, "y"});
    EXPECT_EQ(line(1), ";~team ;y;");
}

TEST_F(GatebitsFile, TheLineAsAWholeDecidesAboutTheBlank) {
    // No blank after the '~' so far, so each further field gets one until there is.
    use_gatebits("~a;b;c;\n");
    set_a_field(gatebits_file, {1, 3, "d"});
    EXPECT_EQ(line(1), "~a ;b;d;");
}

TEST_F(GatebitsFile, SeveralFieldsChangeInOneWrite) {
    use_gatebits("h;;;east;\n\nd;u;E;tail\np;q;\nn;m;\n");
    EXPECT_EQ(
        set_a_field(gatebits_file, {2, 1, ""}, {{2, 3, "O"}, {3, 1, ""}, {9, 1, "x"}, {3, 4, "y"}}),
        ChangeResult::WRITTEN);
    EXPECT_EQ(region.gatebits(), "h;;;east;\n;u;O;\n;q;\nn;m;\n");
}

TEST_F(GatebitsFile, FieldsThatAreNotThereLeaveTheFileAlone) {
    use_gatebits("h;\n\nd;u;O;\n");
    EXPECT_EQ(set_a_field(gatebits_file, {9, 1, "x"}, {{2, 1, "y"}}), ChangeResult::NO_SUCH_LINE);
    EXPECT_EQ(set_a_field(gatebits_file, {2, 5, "x"}), ChangeResult::NO_SUCH_FIELD);
    EXPECT_EQ(region.gatebits(), "h;\n\nd;u;O;\n");
}

TEST_F(GatebitsFile, ALineThatNoLongerHoldsWhatWasShownIsLeftAlone) {
    const std::string text = "one;\n\ntwo;\n";
    use_gatebits(text);
    EXPECT_EQ(set_a_line(gatebits_file, 2, "new;", "one;"), ChangeResult::CHANGED_MEANWHILE);
    EXPECT_EQ(set_a_line(gatebits_file, 3, "new;", "two;"), ChangeResult::CHANGED_MEANWHILE);
    EXPECT_EQ(region.gatebits(), text);
    EXPECT_EQ(set_a_line(gatebits_file, 2, DELETION_TOKEN, "two;"), ChangeResult::WRITTEN);
    EXPECT_EQ(region.gatebits(), "one;\n\n");
}

TEST_F(GatebitsFile, AllFieldsHaveToHoldWhatWasShown) {
    const std::string text = "h;\n\nd;u;O;\n";
    use_gatebits(text);
    EXPECT_EQ(set_a_field(gatebits_file, {2, 1, "x", "d"}, {{2, 2, "y", "v"}}),
              ChangeResult::CHANGED_MEANWHILE);
    EXPECT_EQ(set_a_field(gatebits_file, {2, 3, "S", ""}), ChangeResult::CHANGED_MEANWHILE);
    EXPECT_EQ(region.gatebits(), text);
    EXPECT_EQ(set_a_field(gatebits_file, {2, 1, "x", "d"}, {{2, 2, "y", "u"}}),
              ChangeResult::WRITTEN);
    EXPECT_EQ(line(2), "x;y;O;");
    // What does not exist was shown as empty.
    EXPECT_EQ(set_a_field(gatebits_file, {9, 1, "x", ""}), ChangeResult::NO_SUCH_LINE);
    EXPECT_EQ(set_a_field(gatebits_file, {2, 4, "x", ""}), ChangeResult::NO_SUCH_FIELD);
}

TEST_F(GatebitsFile, AValueEndsAtItsNul) {
    use_gatebits(";;O;\n");
    set_a_field(gatebits_file, {1, 2, std::string("a\0b", 3)});
    EXPECT_EQ(region.gatebits(), ";a;O;\n");
    set_a_line(gatebits_file, 1, std::string("x;\0y", 4));
    EXPECT_EQ(region.gatebits(), "x;\n");
}

TEST_F(GatebitsFile, AFileOf30000BytesIsReadAndOneMoreIsNot) {
    const std::string largest = "x;" + std::string(GATEBITS_FILE_LIMIT - 3, 'y') + "\n";
    use_gatebits(largest);
    EXPECT_EQ(line(1), largest.substr(0, largest.size() - 1));
    EXPECT_EQ(set_a_field(gatebits_file, {1, 1, "z"}), ChangeResult::WRITTEN);
}

TEST_F(GatebitsFileDeathTest, AFileThatIsTooLargeIsRefusedAndTheLimitNamed) {
    use_gatebits("x;" + std::string(GATEBITS_FILE_LIMIT - 2, 'y') + "\n");
    EXPECT_GRIPE(line(1), "ERROR: The enterprise permissions file (" + gatebits_file +
                              ") is larger than the limit of 30000 bytes.");
}

TEST_F(GatebitsFileDeathTest, AFileThatCannotBeReadIsFatal) {
    gatebits_file = region.path("none");
    EXPECT_GRIPE(line(1), "ERROR: Can't open the enterprise permissions file.....");
    EXPECT_GRIPE(set_a_line(gatebits_file, 1, "x"),
                 "ERROR: Can't open the enterprise permissions file.....");
    gatebits_file = "";
    EXPECT_GRIPE(line(1), "ERROR: Can't open the enterprise permissions file.....");
    gatebits_file = region.path("depot");
    EXPECT_GRIPE(line(1), "ERROR: Read failure on enterprise permissions file...");
}

TEST_F(GatebitsFileDeathTest, AFileWithoutALineIsFatal) {
    for (const char* empty : {"", "\n\n\n"}) {
        use_gatebits(empty);
        EXPECT_GRIPE(line(1),
                     "ERROR: The enterprise permissions file (" + gatebits_file + ") is empty.");
    }
}

TEST_F(GatebitsFileDeathTest, AChangeThatCouldNotBeReadBackIsRefused) {
    const std::string text = DEPOT_BLOCK + "key;\n";
    use_gatebits(text);
    const std::string too_long = std::to_string(DEPOT_BLOCK.size() + GATEBITS_FILE_LIMIT + 1);
    EXPECT_GRIPE(set_a_line(gatebits_file, 9, std::string(GATEBITS_FILE_LIMIT, 'x')),
                 "ERROR: The change would make the enterprise permissions file (" + gatebits_file +
                     ") " + too_long + " bytes long, but at most 30000 bytes can be read.  " +
                     "The change was not made in (" + gatebits_file + ").");
    const std::string line_break =
        "ERROR: The value entered for the enterprise permissions file (" + gatebits_file +
        ") holds a line break.  The change was not made.";
    EXPECT_GRIPE(set_a_line(gatebits_file, 9, "two\nlines"), line_break);
    EXPECT_GRIPE(set_a_field(gatebits_file, {2, 2, "two\nlines"}), line_break);
    EXPECT_EQ(region.gatebits(), text);
}

TEST_F(GatebitsFileDeathTest, NoScratchFileNoChange) {
    use_gatebits(DEPOT_BLOCK);
    TEMP_DIR = "/no/such/dir";
    EXPECT_GRIPE(set_a_line(gatebits_file, 1, "x"), "Could not create needed temp file");
    EXPECT_EQ(region.gatebits(), DEPOT_BLOCK);
}

TEST_F(GatebitsFile, AChangeKeepsModeAndLinksAndLeavesNothingBehind) {
    use_gatebits(";;O;\n");
    ASSERT_EQ(chmod(region.gatebits_path().c_str(), 0640), 0);
    ASSERT_EQ(symlink("gatebits.txt", region.path("link.txt").c_str()), 0);
    gatebits_file = region.path("link.txt");
    const std::vector<std::string> before = region.files_in(".");
    set_a_field(gatebits_file, {1, 3, "S"});
    EXPECT_EQ(region.gatebits(), ";;S;\n");
    struct stat status = {};
    ASSERT_EQ(lstat(region.path("link.txt").c_str(), &status), 0);
    EXPECT_TRUE(S_ISLNK(status.st_mode));
    ASSERT_EQ(stat(region.gatebits_path().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, mode_t{0640});
    EXPECT_EQ(region.files_in("."), before);
    EXPECT_TRUE(region.files_in("tmp").empty());
}

TEST_F(GatebitsFile, AFileWithTwoNamesKeepsBoth) {
    use_gatebits(";;O;\n");
    ASSERT_EQ(link(region.gatebits_path().c_str(), region.path("other.txt").c_str()), 0);
    set_a_field(gatebits_file, {1, 3, "S"});
    EXPECT_EQ(region.file("other.txt"), ";;S;\n");
    EXPECT_EQ(region.gatebits(), ";;S;\n");
    EXPECT_TRUE(region.files_in("tmp").empty());
}

TEST_F(GatebitsFile, TheEditionIsWhatLineOneBeginsWith) {
    const std::pair<const char*, int> headers[] = {{"gatewarden;;;x;\n", 1},
                                                   {"gatewarden_lite;;;x;\n", 0},
                                                   {"gatewarden_lite 2;;;x;\n", 0},
                                                   {"gatewarden_lit;;;x;\n", 1},
                                                   {"GATEWARDEN_LITE;;;x;\n", 1},
                                                   {"# nothing significant\n", 1},
                                                   {"#c\ngatewarden_lite;\ngatewarden;\n", 0}};
    for (const auto& [text, edition] : headers) {
        use_gatebits(text);
        EXPECT_EQ(read_edition(gatebits_file), edition) << text;
    }
}

TEST(LineCounter, CountsInEightSignedBits) {
    LineCounter counter;
    for (int i = 1; i <= 127; ++i) EXPECT_TRUE(counter.counts_as(i, "x"));
    EXPECT_TRUE(counter.counts_as(-128, "x"));
    EXPECT_FALSE(counter.counts_as(-127, "# x"));
    EXPECT_TRUE(counter.counts_as(-127, "x"));
}

}  // namespace
