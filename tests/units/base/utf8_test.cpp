#include "base/utf8.h"

#include <gtest/gtest.h>

namespace gatescope {
namespace {

TEST(Utf8, CharactersHaveTheirSizes) {
    EXPECT_EQ(utf8_size("a-"), 1u);
    EXPECT_EQ(utf8_size(std::string("\0-", 2)), 1u);
    EXPECT_EQ(utf8_size("\xC2\x80-"), 2u);
    EXPECT_EQ(utf8_size("\xDF\xBF-"), 2u);
    EXPECT_EQ(utf8_size("\xE0\xA0\x80-"), 3u);
    EXPECT_EQ(utf8_size("\xED\x9F\xBF-"), 3u);
    EXPECT_EQ(utf8_size("\xEF\xBF\xBF-"), 3u);
    EXPECT_EQ(utf8_size("\xF0\x90\x80\x80-"), 4u);
    EXPECT_EQ(utf8_size("\xF4\x8F\xBF\xBF-"), 4u);
}

TEST(Utf8, WhatIsNoneHasNoSize) {
    // Nothing; what comes later in a character; longer forms than needed; surrogates; what lies
    // beyond the last character; characters that end too early.
    for (const std::string text :
         {"", "\x80", "\xBF", "\xC0\x80", "\xC1\xBF", "\xE0\x9F\xBF", "\xF0\x8F\xBF\xBF",
          "\xED\xA0\x80", "\xED\xBF\xBF", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFF", "\xC2",
          "\xC2-", "\xE0\xA0", "\xE0\xA0-", "\xF0\x90\x80", "\xF0\x90\x80-"}) {
        EXPECT_EQ(utf8_size(text), 0u) << harmless(text);
    }
}

TEST(Utf8, NothingThatATerminalWouldObeyIsShown) {
    EXPECT_EQ(harmless("a\033[2J\tb\n\x7F\xC2\x9B"
                       "c\xFF\xE2\x82"),
              "a?[2J\tb???c???");
    EXPECT_EQ(harmless(std::string("a\0b", 3)), "a?b");
    EXPECT_EQ(harmless("Müller €\xC2\xA0;~x"), "Müller €\xC2\xA0;~x");
    EXPECT_EQ(shown_characters("ä\n€"), (std::vector<std::string>{"ä", "?", "€"}));
}

}  // namespace
}  // namespace gatescope
