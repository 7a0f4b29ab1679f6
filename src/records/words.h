#pragma once

#include <cstddef>
#include <string_view>

namespace gatescope {

// Log bytes in, words out. A word is what stands between white space (blank, \t, \n, \v, \f, \r);
// one that is longer than WORD_LIMIT is read as several. One word is one record.

inline constexpr std::size_t WORD_LIMIT = std::size_t{64} * 1024;

/// How many bytes may be looked at after the end of a piece that LogReader hands out: vector
/// code reads there and ignores what it finds.
inline constexpr std::size_t READER_MARGIN = 64;

/// Whether `c` separates words.
constexpr bool is_white(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

/// The first word in [*at, end), and `*at` moved to its end; empty, with `*at` at the end, when
/// there is none. NUL bytes are part of a word; what counts of a word is its C text.
std::string_view next_word(const char** at, const char* end);

/// The first white space in [begin, end), or `end`.
const char* find_white(const char* begin, const char* end);

/// Where the text after the last white space in [begin, end) begins; `begin` when there is none.
const char* after_last_white(const char* begin, const char* end);

}  // namespace gatescope
