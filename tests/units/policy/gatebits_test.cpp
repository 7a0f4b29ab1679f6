#include "policy/gatebits.h"

#include <gtest/gtest.h>

#include "policy/edition.h"

namespace gatescope {
namespace {

const std::string KEYLESS_BLOCK =
    "gatewarden;;;east;\n;/depot;O;\n;;\n;;\n; ;\n; ;\n;;;\nD;000000000000000000000000;\n";

class GatebitsText : public testing::Test {
  protected:
    void use(const std::string& text) { gatebits = Gatebits(text); }
    /// The text with `count` significant lines "line 1" and so on.
    void use_lines(int count) {
        std::string text;
        for (int i = 1; i <= count; ++i) text += "line " + std::to_string(i) + "\n";
        use(text);
    }
    std::string line(int n) const { return get_a_line(gatebits, n).value_or(NONE); }
    std::string field(int n, int f) const { return get_a_field(gatebits, n, f).value_or(NONE); }

    /// `gatebits` becomes the new text as a reader parses it.
    ChangeResult take(const Rewrite& rewrite) {
        if (rewrite.text) use(rewrite.text->text());
        return rewrite.result;
    }
    ChangeResult set_line(int n, const std::string& text) {
        return take(set_a_line(gatebits, n, text));
    }
    ChangeResult set_field(const FieldValue& value, const std::vector<FieldValue>& further = {}) {
        return take(set_a_field(gatebits, value, further));
    }

    const std::string NONE = "(none)";
    Gatebits gatebits{std::string()};
};

TEST_F(GatebitsText, CountsSignificantLinesOnly) {
    use("# comment\n"
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

TEST_F(GatebitsText, AddressesLinesUpToNumber127) {
    use_lines(300);
    EXPECT_EQ(line(127), "line 127");
    EXPECT_EQ(line(128), NONE);
    EXPECT_EQ(line(129), NONE);
    EXPECT_EQ(line(257), NONE);
    EXPECT_EQ(line(300), NONE);
    EXPECT_EQ(line(1), "line 1");
}

TEST_F(GatebitsText, EndsFieldsAtSemicolons) {
    use(";;O;\none;two\nno field\n");
    EXPECT_EQ(field(1, 1), "");
    EXPECT_EQ(field(1, 2), "");
    EXPECT_EQ(field(1, 3), "O");
    EXPECT_EQ(field(1, 4), NONE);
    EXPECT_EQ(field(1, 0), NONE);
    EXPECT_EQ(field(2, 1), "one");
    EXPECT_EQ(field(2, 2), NONE);
    EXPECT_EQ(field(3, 1), NONE);
    EXPECT_EQ(field(4, 1), NONE);
    EXPECT_EQ(field_or_empty(gatebits, 1, 3), "O");
    EXPECT_EQ(field_or_empty(gatebits, 1, 4), "");
}

TEST_F(GatebitsText, ReadsAndWritesLongLinesWhole) {
    const std::string text(3000, 'x');
    use(";" + text + ";O;\n");
    EXPECT_EQ(field(1, 2), text);
    set_field({1, 3, "S"});
    EXPECT_EQ(gatebits.text(), ";" + text + ";S;\n");
}

TEST_F(GatebitsText, ReplacesOneLineOnly) {
    use("# top\n first;\n\n#!gatewarden_alias a b\nsecond;\n\nthird");
    EXPECT_EQ(set_line(2, "new;line;"), ChangeResult::WRITTEN);
    EXPECT_EQ(gatebits.text(), "# top\n first;\n#!gatewarden_alias a b\nnew;line;\nthird\n");
}

TEST_F(GatebitsText, DeletesALineByTheDeletionToken) {
    use(KEYLESS_BLOCK + "# keys\nkey 0;\nkey 1;\n");
    EXPECT_EQ(set_line(FIRST_KEY_LINE, DELETION_TOKEN), ChangeResult::WRITTEN);
    EXPECT_EQ(gatebits.text(), KEYLESS_BLOCK + "# keys\n\nkey 1;\n");
    EXPECT_EQ(line(FIRST_KEY_LINE), "key 1;");
    EXPECT_EQ(line(FIRST_KEY_LINE + 1), NONE);
}

TEST_F(GatebitsText, DropsTheBlankLineOfADeletedOneInTheNextRewrite) {
    use(KEYLESS_BLOCK + "key 0;\nkey 1;\n");
    set_line(FIRST_KEY_LINE, DELETION_TOKEN);
    set_line(FIRST_KEY_LINE, "key 2;");
    EXPECT_EQ(gatebits.text(), KEYLESS_BLOCK + "key 2;\n");
}

TEST_F(GatebitsText, WritesAnEmptyTextAsABlankLine) {
    use(KEYLESS_BLOCK + "key 0;\nkey 1;\n");
    set_line(FIRST_KEY_LINE, "");
    EXPECT_EQ(gatebits.text(), KEYLESS_BLOCK + "\nkey 1;\n");
    set_line(0, "");
    EXPECT_EQ(gatebits.text(), KEYLESS_BLOCK + "key 1;\n\n");
}

TEST_F(GatebitsText, DeletesByTheExactTokenOnly) {
    use("one;\n");
    set_line(1, std::string(DELETION_TOKEN) + " ");
    EXPECT_EQ(gatebits.text(), "<[;;;;;deletme;;;;;]> \n");
}

TEST_F(GatebitsText, AppendsLineZero) {
    use(KEYLESS_BLOCK + "# the end\n");
    EXPECT_EQ(set_line(0, "a key;"), ChangeResult::WRITTEN);
    EXPECT_EQ(gatebits.text(), KEYLESS_BLOCK + "# the end\na key;\n");
}

TEST_F(GatebitsText, DropsBlankLinesIfThereIsNoSuchLine) {
    use("one;\n\ntwo;\n\n# three\n");
    EXPECT_EQ(set_line(5, "x;"), ChangeResult::NO_SUCH_LINE);
    EXPECT_EQ(gatebits.text(), "one;\ntwo;\n# three\n");
}

TEST_F(GatebitsText, ReplacesTheFirstOfLinesWithTheSameNumber) {
    use_lines(600);
    set_line(5, "new");
    std::string expected;
    for (int i = 1; i <= 600; ++i) {
        expected += i == 5 ? "new\n" : "line " + std::to_string(i) + "\n";
    }
    EXPECT_EQ(gatebits.text(), expected);
}

TEST_F(GatebitsText, SetsAFieldOfALongFileInItsLineOnly) {
    std::string keys;
    for (int i = 0; i < 281; ++i) keys += "key " + std::to_string(i) + ";one;two;\n";
    use(KEYLESS_BLOCK + keys);
    EXPECT_EQ(set_field({MOTD_LINE, 2, "hello"}, {{PARENT_LINE, 1, "p"}}), ChangeResult::WRITTEN);
    EXPECT_EQ(gatebits.text(),
              "gatewarden;;;east;\n;/depot;O;\np;;\n;;\n; ;\n; ;\n;hello;;\n"
              "D;000000000000000000000000;\n" +
                  keys);
}

TEST_F(GatebitsText, DoesNotReplaceLinesAfterThe127th) {
    use_lines(200);
    const std::string before = gatebits.text();
    set_line(128, "new");
    set_line(200, "new");
    EXPECT_EQ(gatebits.text(), before);
}

TEST_F(GatebitsText, SetsOneFieldOnly) {
    use("#c\n;;O;\nkeep\n");
    EXPECT_EQ(set_field({1, 2, "/a/path"}), ChangeResult::WRITTEN);
    EXPECT_EQ(gatebits.text(), "#c\n;/a/path;O;\nkeep\n");
    set_field({1, 1, "C:\\depot"});
    EXPECT_EQ(line(1), "C:\\depot;/a/path;O;");
    set_field({1, 3, ""});
    EXPECT_EQ(line(1), "C:\\depot;/a/path;;");
}

TEST_F(GatebitsText, DropsTextAfterTheLastSemicolonInAFieldEdit) {
    use("one;two\n");
    set_field({1, 1, "new"});
    EXPECT_EQ(line(1), "new;");
}

TEST_F(GatebitsText, RewritesTheLineWithoutTheValueForAFieldOnePastTheLast) {
    use(";;O;trailing\n\n");
    EXPECT_EQ(set_field({1, 4, "value"}), ChangeResult::NO_SUCH_FIELD);
    EXPECT_EQ(gatebits.text(), ";;O;\n");
}

TEST_F(GatebitsText, WritesNothingForAFieldTwoPastTheLast) {
    use(";;O;trailing\n\n");
    EXPECT_EQ(set_field({1, 5, "value"}), ChangeResult::NO_SUCH_FIELD);
    EXPECT_EQ(gatebits.text(), ";;O;trailing\n\n");
}

TEST_F(GatebitsText, WritesNothingForAMissingLineOrOneWithoutFields) {
    use("no field\n\n");
    EXPECT_EQ(set_field({1, 1, "value"}), ChangeResult::NO_SUCH_FIELD);
    EXPECT_EQ(set_field({2, 1, "value"}), ChangeResult::NO_SUCH_LINE);
    EXPECT_EQ(gatebits.text(), "no field\n\n");
}

TEST_F(GatebitsText, AddsABlankAfterAReferenceAtTheEndOfAField) {
    use("; ;\n");
    set_field({1, 2, "(ann) ~team"});
    EXPECT_EQ(line(1), ";(ann) ~team ;");
    use("; ;\n");
    set_field({1, 2, "~team"});
    EXPECT_EQ(line(1), ";~team ;");
    use("; ;\n");
    set_field({1, 2, "~team (ann)"});
    EXPECT_EQ(line(1), ";~team (ann);");
    use("; ;\n");
    set_field({1, 2, "~team "});
    EXPECT_EQ(line(1), ";~team ;");
}

TEST_F(GatebitsText, AddsABlankAfterAReferenceInAnotherField) {
    use(";~team;x;\n");
    set_field({1, 3, "y"});
    EXPECT_EQ(line(1), ";~team ;y;");
}

TEST_F(GatebitsText, AddsBlanksToFieldsUntilOneFollowsTheTilde) {
    // As long as no blank follows the '~', each field gets one.
    use("~a;b;c;\n");
    set_field({1, 3, "d"});
    EXPECT_EQ(line(1), "~a ;b;d;");
}

TEST_F(GatebitsText, SetsSeveralFieldsInOneEdit) {
    use("h;;;east;\n\nd;u;E;tail\np;q;\nn;m;\n");
    EXPECT_EQ(set_field({2, 1, ""}, {{2, 3, "O"}, {3, 1, ""}, {9, 1, "x"}, {3, 4, "y"}}),
              ChangeResult::WRITTEN);
    EXPECT_EQ(gatebits.text(), "h;;;east;\n;u;O;\n;q;\nn;m;\n");
}

TEST_F(GatebitsText, WritesNothingForMissingFields) {
    use("h;\n\nd;u;O;\n");
    EXPECT_EQ(set_field({9, 1, "x"}, {{2, 1, "y"}}), ChangeResult::NO_SUCH_LINE);
    EXPECT_EQ(set_field({2, 5, "x"}), ChangeResult::NO_SUCH_FIELD);
    EXPECT_EQ(gatebits.text(), "h;\n\nd;u;O;\n");
}

TEST_F(GatebitsText, CutsAValueAtItsNul) {
    use(";;O;\n");
    set_field({1, 2, std::string("a\0b", 3)});
    EXPECT_EQ(gatebits.text(), ";a;O;\n");
    set_line(1, std::string("x;\0y", 4));
    EXPECT_EQ(gatebits.text(), "x;\n");
}

TEST_F(GatebitsText, HasTheEditionThatLineOneBeginsWith) {
    const std::pair<const char*, int> headers[] = {{"gatewarden;;;x;\n", 1},
                                                   {"gatewarden_lite;;;x;\n", 0},
                                                   {"gatewarden_lite 2;;;x;\n", 0},
                                                   {"gatewarden_lit;;;x;\n", 1},
                                                   {"GATEWARDEN_LITE;;;x;\n", 1},
                                                   {"# nothing significant\n", 1},
                                                   {"#c\ngatewarden_lite;\ngatewarden;\n", 0}};
    for (const auto& [text, edition] : headers) {
        EXPECT_EQ(read_edition(Gatebits(std::string(text))), edition) << text;
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
}  // namespace gatescope
