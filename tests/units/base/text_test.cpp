#include "base/text.h"

#include <gtest/gtest.h>

#include <cstring>

#include "base/filled.h"
#include "dialog/toolkit.h"

namespace gatescope {
namespace {

using Pieces = std::vector<std::string>;

/// All that STRTOK returns for `text`.
Pieces pieces(std::string_view text, const char* delimiters = ",") {
    Pieces all;
    while (const auto piece = STRTOK(&text, delimiters)) all.emplace_back(*piece);
    return all;
}

TEST(WholeLines, HaveTheirNewlines) {
    using Lines = std::vector<std::string_view>;
    EXPECT_EQ(whole_lines(""), Lines());
    EXPECT_EQ(whole_lines("a\n\nb"), (Lines{"a\n", "\n", "b"}));
    EXPECT_EQ(whole_lines(std::string_view("a\0b\n", 4)), Lines{std::string_view("a\0b\n", 4)});
}

TEST(Strtok, DropsALastPieceWithoutADelimiter) {
    EXPECT_EQ(pieces("a,b"), Pieces{"a"});
    EXPECT_EQ(pieces("a"), Pieces{});
    EXPECT_EQ(pieces(""), Pieces{});
}

TEST(Strtok, ReturnsEveryTerminatedPiece) {
    EXPECT_EQ(pieces("a,b,"), (Pieces{"a", "b"}));
}

TEST(Strtok, ReturnsEmptyPieces) {
    EXPECT_EQ(pieces(",a,"), (Pieces{"", "a"}));
    EXPECT_EQ(pieces("a,,b,"), (Pieces{"a", "", "b"}));
    EXPECT_EQ(pieces(","), Pieces{""});
}

TEST(Strtok, SplitsAtAnyOfTheDelimiters) {
    EXPECT_EQ(pieces("a;b,c;", ",;"), (Pieces{"a", "b", "c"}));
}

TEST(Strtok, ReturnsNothingAgainAtTheEnd) {
    std::string_view rest = "a,rest";
    EXPECT_EQ(STRTOK(&rest, ","), "a");
    EXPECT_EQ(STRTOK(&rest, ","), std::nullopt);
    EXPECT_EQ(STRTOK(&rest, ","), std::nullopt);
}

TEST(Strtok, ReturnsLongPiecesWhole) {
    const std::string long_piece(5000, 'x');
    EXPECT_EQ(pieces(long_piece + ",b,"), (Pieces{long_piece, "b"}));
}

TEST(TerminatedFields, EndAtSemicolons) {
    EXPECT_EQ(terminated_fields(";;O;"), (Pieces{"", "", "O"}));
    EXPECT_EQ(terminated_fields("a;b"), Pieces{"a"});
    EXPECT_EQ(terminated_fields("no field"), Pieces{});
}

TEST(Cases, ChangeAsciiLettersInPlace) {
    std::string text = "aBc-9\xc4";
    EXPECT_EQ(&STRING_LOWER(text), &text);
    EXPECT_EQ(text, "abc-9\xc4");
    EXPECT_EQ(STRING_UPPER(text), "ABC-9\xc4");
}

TEST(ZulStrstri, IgnoresCaseAndReturnsAPlaceInTheHaystack) {
    const char* haystack = "mkelem,checkin";
    EXPECT_EQ(zul_strstri(haystack, "CHECKIN"), haystack + 7);
    EXPECT_STREQ(zul_strstri(haystack, "CHECKIN"), "checkin");
}

TEST(ZulStrstri, PrefersAnExactMatchToAnEarlierOneOfOtherCase) {
    const char* haystack = "xKEYkey";
    EXPECT_EQ(zul_strstri(haystack, "key"), haystack + 4);
    EXPECT_EQ(zul_strstri(haystack, "kEy"), haystack + 1);
}

TEST(ZulStrstri, ReturnsNullWithoutAMatch) {
    EXPECT_EQ(zul_strstri("abc", "d"), nullptr);
    EXPECT_EQ(zul_strstri("", "d"), nullptr);
    EXPECT_STREQ(zul_strstri("abc", ""), "abc");
}

TEST(ZulStrstri, SearchesLongTextsWhole) {
    const std::string haystack = std::string(2000, '.') + "Needle";
    EXPECT_STREQ(zul_strstri(haystack.c_str(), "nEEDLE"), "Needle");
}

TEST(EscapedQuotedString, ReturnsNullForATextWithoutQuotes) {
    std::string text = "a'b\\c";
    EXPECT_EQ(escaped_quoted_string(text), nullptr);
    EXPECT_EQ(text, "a'b\\c");
}

TEST(EscapedQuotedString, PutsABackslashBeforeEveryQuote) {
    std::string text = "\"a\"\"b\\\"";
    EXPECT_EQ(escaped_quoted_string(text), &text);
    EXPECT_EQ(text, "\\\"a\\\"\\\"b\\\\\"");
}

TEST(DoubleAmpString, DoublesEveryAmpersand) {
    std::string text = "a&b&&c";
    double_amp_string(text);
    EXPECT_EQ(text, "a&&b&&&&c");
    text = "none";
    double_amp_string(text);
    EXPECT_EQ(text, "none");
}

TEST(InsertAfterNth, InsertsAfterTheNthOccurrence) {
    std::string text = "a/b/c";
    EXPECT_EQ(in_string__insert_this_char_after_nth_instance_of_that_char(text, 'X', 2, '/'),
              &text);
    EXPECT_EQ(text, "a/b/Xc");
    in_string__insert_this_char_after_nth_instance_of_that_char(text, 'Y', 1, '/');
    EXPECT_EQ(text, "a/Yb/Xc");
}

TEST(InsertAfterNth, LeavesATextWithFewerOccurrences) {
    std::string text = "a/b/c";
    EXPECT_EQ(in_string__insert_this_char_after_nth_instance_of_that_char(text, 'X', 3, '/'),
              &text);
    EXPECT_EQ(text, "a/b/c");
    EXPECT_EQ(in_string__insert_this_char_after_nth_instance_of_that_char(text, 'X', 1, '!'),
              nullptr);
    EXPECT_EQ(text, "a/b/c");
}

TEST(IncludesAllCases, RecognizesTheSevenForms) {
    for (const char* form : {"(*)", "<*>", "[*]", "{*}", "%*%", "'*'", "@*@"}) {
        EXPECT_TRUE(includes_all_cases(form)) << form;
        EXPECT_TRUE(includes_all_cases("(a) " + std::string(form) + " x")) << form;
    }
    for (const char* other : {"", "*", "(a*)", "(*>", "\"*\"", "( * )"}) {
        EXPECT_FALSE(includes_all_cases(other)) << other;
    }
}

TEST(HoldsOnly, IsTrueWhenEveryCharacterIsAllowed) {
    EXPECT_TRUE(holds_only("", "abc"));
    EXPECT_TRUE(holds_only("cab", "abc"));
    EXPECT_FALSE(holds_only("cabd", "abc"));
    EXPECT_FALSE(holds_only("a", ""));
    EXPECT_FALSE(holds_only(nullptr, "abc"));
}

TEST(HoldsAnyOf, IsTrueWhenACharacterIsForbidden) {
    EXPECT_FALSE(holds_any_of("", ",;"));
    EXPECT_FALSE(holds_any_of("abc", ",;"));
    EXPECT_TRUE(holds_any_of("ab;c", ",;"));
    EXPECT_FALSE(holds_any_of(nullptr, ",;"));
}

TEST(WordsJoined, HasOneBlankBetweenWordsAndNoneAround) {
    EXPECT_EQ(words_joined("  two \t\n words \r\n"), "two words");
    EXPECT_EQ(words_joined("one"), "one");
    EXPECT_EQ(words_joined(" \n\t "), "");
    EXPECT_EQ(words_joined(""), "");
    EXPECT_EQ(words_joined("a\vb\fc"), "a b c");
}

TEST(WordsJoined, DropsTheRestOfAWordWithANul) {
    EXPECT_EQ(words_joined(std::string_view("ab\0cd ef", 8)), "ab ef");
    EXPECT_EQ(words_joined(std::string_view("\0 x", 3)), " x");
}

TEST(LeadingNumber, EndsAtTheFirstOtherCharacter) {
    EXPECT_EQ(leading_number("7x"), 7);
    EXPECT_EQ(leading_number("x"), 0);
    EXPECT_EQ(leading_number(""), 0);
    EXPECT_EQ(leading_number("0012,3"), 12);
    EXPECT_EQ(leading_number("-4"), -4);
    EXPECT_EQ(leading_number("99999999999999999999999"), 9223372036854775807L);
}

TEST(Filled, EndsAtANul) {
    EXPECT_EQ(filled("a%cb", '\0'), "a");
    EXPECT_EQ(filled("%s=%d", "x", 7), "x=7");
    EXPECT_EQ(filled("%s", ""), "");
}

TEST(Filled, InsertsLongTextsWhole) {
    const std::string text(100000, 'x');
    EXPECT_EQ(filled("<%s>", text.c_str()), "<" + text + ">");
}

TEST(CText, EndsAtTheFirstNul) {
    EXPECT_EQ(c_text(std::string_view("ab\0cd", 5)), "ab");
    EXPECT_EQ(c_text("ab"), "ab");
}

}  // namespace
}  // namespace gatescope
