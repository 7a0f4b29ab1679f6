#include "records/words.h"

#include <gtest/gtest.h>

#include "units/records/words_of.h"

namespace gatescope {
namespace {

TEST(NextWord, SplitsAtAnyWhiteSpace) {
    EXPECT_EQ(words_of(" a\tb\nc\vd\fe\rf  "), (Words{"a", "b", "c", "d", "e", "f"}));
}

TEST(NextWord, KeepsOtherControlCharacters) {
    EXPECT_EQ(words_of("a\x01z\x1f\x7f\xa0 b"), (Words{"a\x01z\x1f\x7f\xa0", "b"}));
}

TEST(NextWord, SplitsWordsLongerThanTheLimit) {
    const std::string long_word(2 * WORD_LIMIT + 1, 'x');
    EXPECT_EQ(words_of(" " + long_word + " y"),
              (Words{std::string(65536, 'x'), std::string(65536, 'x'), "x", "y"}));
    EXPECT_EQ(words_of(std::string(65536, 'x') + " y"), (Words{std::string(65536, 'x'), "y"}));
}

TEST(NextWord, EndsAtTheFirstWhiteSpaceAtAnyOffset) {
    for (const char white : {' ', '\t', '\n', '\v', '\f', '\r'}) {
        for (std::size_t size = 1; size < 300; ++size) {
            for (const char other : {'x', '\0', '\x08', '\x0e', '\x1f', '!', '\x80', '\xff'}) {
                const std::string word(size, other);
                const std::string text = word + white + std::string(100, 'y') + white + 'z';
                ASSERT_EQ(words_of(text), (Words{word, std::string(100, 'y'), "z"}))
                    << size << " of " << static_cast<int>(other);
            }
        }
    }
}

TEST(NextWord, KeepsNulBytes) {
    const std::string text("a\0b c", 5);
    EXPECT_EQ(words_of(text), (Words{std::string("a\0b", 3), "c"}));
}

TEST(NextWord, FindsNoWordInWhiteSpaceAlone) {
    EXPECT_EQ(words_of(" \n\r\n"), Words{});
    EXPECT_EQ(words_of(""), Words{});
}

}  // namespace
}  // namespace gatescope
