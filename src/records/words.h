#pragma once

#include <cstddef>
#include <string_view>

namespace gatescope {

// Splits log bytes into words, each of which is a record. Words are separated by white space
// (blank, \t, \n, \v, \f, \r); one that is longer than WORD_LIMIT is read as several.

inline constexpr std::size_t WORD_LIMIT = std::size_t{64} * 1024;

/// Number of bytes that may be read after the end of a piece from LogReader. Vector code reads them
/// and ignores their content.
inline constexpr std::size_t READER_MARGIN = 64;

/// Whether `c` separates words.
constexpr bool is_white(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

/// The first word in [*at, end); moves `*at` to its end. Empty, with `*at` at `end`, if there is
/// none. NUL bytes are part of a word, but only the text before the first one counts.
std::string_view next_word(const char** at, const char* end);

/// The first white space in [begin, end), or `end`.
const char* find_white(const char* begin, const char* end);

/// The byte after the last white space in [begin, end), or `begin`.
const char* after_last_white(const char* begin, const char* end);

}  // namespace gatescope
