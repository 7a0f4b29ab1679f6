#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string_view>

#include "records/canonical_filter.h"
#include "records/record_rule.h"
#include "records/record_scan.h"
#include "records/words.h"

namespace gatescope {

// The canonical shape, as the policy engine writes its records:
//
//     1794787199:D:ann[2]K<17>
//
// ten digits, ':', one of S D B P, ':', the user, '[', one or two digits, ']', one of a b c d k r
// -, '<', one or two digits or a '-', '>', white space; letters in either case; a user of less
// than CanonicalFilter::USER_LIMIT bytes without ':', '[', '<'; no byte up to the blank inside.
//
// In such a record ':' occurs at two known positions; '[', the ']' before '<', and '<' at one each.
// A filter that contains one of them can match at that position only, so a search of the record
// reduces to the comparison of one field. The outcome follows from the kind, the detail letter and
// the numbers.
//
// A record whose user, command or value differs from the filter's is skipped without a check of its
// kind, its detail letter and a value of one byte. Even if one of these is ':', '[' or '<', the
// next byte is a delimiter of the shape, with which no such filter continues: the plain rule does
// not count the record either. It only takes the record's time, which matters if that is the
// earliest so far; then everything is checked.

constexpr std::size_t KIND_OFFSET = 11;
constexpr std::size_t USER_OFFSET = 13;
/// Length of a record with an empty user.
constexpr std::ptrdiff_t SHORTEST_RECORD = 20;
/// Row for records outside the period.
constexpr unsigned NO_ROW = RecordTally::ROWS - 1;

constexpr char KINDS[] = "sdbp";
constexpr char DETAILS[] = "abcdkr-";
constexpr std::uint8_t NOT_CANONICAL = 0x80;

using Codes = std::array<std::uint8_t, 256>;

/// Maps each letter, in either case, to its index in `letters` times `step`.
constexpr Codes letter_codes(std::string_view letters, std::uint8_t step) {
    Codes codes = {};
    codes.fill(NOT_CANONICAL);
    for (std::size_t i = 0; i < letters.size(); ++i) {
        const char lower = letters[i];
        const char upper = lower >= 'a' ? static_cast<char>(lower - 'a' + 'A') : lower;
        codes[static_cast<std::uint8_t>(lower)] = static_cast<std::uint8_t>(i * step);
        codes[static_cast<std::uint8_t>(upper)] = static_cast<std::uint8_t>(i * step);
    }
    return codes;
}

/// Maps each digit to its value times `step`, and `zero_too` to 0.
constexpr Codes digit_codes(std::uint8_t step, char zero_too) {
    Codes codes = {};
    codes.fill(NOT_CANONICAL);
    for (std::uint8_t digit = 0; digit < 10; ++digit) {
        codes[std::size_t{'0'} + digit] = static_cast<std::uint8_t>(digit * step);
    }
    codes[static_cast<std::uint8_t>(zero_too)] = 0;
    return codes;
}

constexpr std::uint8_t DETAIL_CODES = 8;
constexpr Codes KIND_CODE = letter_codes(KINDS, DETAIL_CODES);
constexpr Codes DETAIL_CODE = letter_codes(DETAILS, 1);
/// For the last character of a value, and for the one before it: the '<' if it has one digit.
constexpr Codes UNITS = digit_codes(1, '-');
constexpr Codes TENS = digit_codes(10, '<');

/// The end of a record with one or two digits in the command and in the value. UNITS checks a value
/// of one byte.
constexpr std::array<Ranges, 4> TAILS = {ranges_of("[0]*<*>"), ranges_of("[0]*<00>"),
                                         ranges_of("[00]*<*>"), ranges_of("[00]*<00>")};
constexpr std::size_t SHORTEST_TAIL = 7;

ALWAYS_INLINE std::uint8_t code(const Codes& codes, const char* at) {
    return codes[static_cast<std::uint8_t>(*at)];
}

/// The end of the user, a '[' in a canonical record; null if there is none in
/// CanonicalFilter::USER_LIMIT bytes.
template <class SET>
ALWAYS_INLINE const char* user_end(const char* user) {
    unsigned found = SET::user_end_bits(user);
    if (found == 0) [[unlikely]] {
        found = SET::user_end_bits(user + 16) << 16;
        if (found == 0) return nullptr;
    }
    return user + SET::lowest_bit(found);
}

/// Whether the four bytes at `at` equal `wanted` in the bits of `mask`.
ALWAYS_INLINE bool same_number(const char* at, std::uint32_t wanted, std::uint32_t mask) {
    std::uint32_t number;
    std::memcpy(&number, at, sizeof number);
    return (number & mask) == wanted;
}

/// Whether the user at `at` and the '[' after it are the filter's, or the filter has no user.
template <class SET>
ALWAYS_INLINE bool same_user(const char* at, const CanonicalFilter& filter) {
    const auto same_half = [&](std::size_t i) {
        return SET::same_text(at + i, &filter.user[i], &filter.user_mask[i], &filter.user_case[i]);
    };
    return same_half(0) && (!filter.has_long_user || same_half(16));
}

/// The time of the earliest record and its first digits; the largest values without a record.
struct Earliest {
    std::int64_t time = std::numeric_limits<std::int64_t>::max();
    std::uint64_t digits = std::numeric_limits<std::uint64_t>::max();
};

/// Counts the record in [at, end); false, with nothing counted, if it has to take the plain rule.
template <class SET, bool PER_DAY, bool HAS_FILTERS>
ALWAYS_INLINE bool count_canonical(const RecordQuery& query, const CanonicalFilter& filter,
                                   const char* at, const char* end, RecordTally* tally,
                                   Earliest* earliest) {
    if (end - at < SHORTEST_RECORD) [[unlikely]]
        return false;
    const char* const bracket = user_end<SET>(at + USER_OFFSET);
    if (bracket == nullptr) [[unlikely]]
        return false;

    // The length of the tail and the position of its '<' determine its index in TAILS.
    const std::size_t extra_digit = end[-3] != '<';
    const std::size_t tail =
        2 * (static_cast<std::size_t>(end - bracket) - SHORTEST_TAIL) - extra_digit;
    if (tail >= TAILS.size()) [[unlikely]]
        return false;
    const unsigned has_shape = static_cast<unsigned>(SET::are_in(CANONICAL_HEAD, at)) &
                               static_cast<unsigned>(SET::are_in(TAILS[tail], end - 16));
    if (has_shape == 0 || !is_white(*end)) [[unlikely]]
        return false;

    const char* const angle = end - 3 - extra_digit;
    const bool passes =
        !HAS_FILTERS || (same_user<SET>(at + USER_OFFSET, filter) &&
                         same_number(bracket, filter.command, filter.command_mask) &&
                         same_number(angle, filter.value, filter.value_mask));
    const std::uint64_t digits = first_digits(at);
    if (!passes && digits > earliest->digits) return true;

    const unsigned kind = code(KIND_CODE, at + KIND_OFFSET);
    const unsigned detail = code(DETAIL_CODE, angle - 1);
    const unsigned units = code(UNITS, end - 2);
    if (((kind | detail | units) & NOT_CANONICAL) != 0) [[unlikely]]
        return false;
    const std::int64_t time = SET::time(at);
    const std::int64_t age = query.period.end_of_day_time - time;
    if (age < 0) [[unlikely]]
        return true;
    if (time < earliest->time) *earliest = {time, digits};
    if (!passes) return true;

    unsigned row;
    if constexpr (PER_DAY) {
        const std::uint64_t day = static_cast<std::uint64_t>(age) / SECONDS_A_DAY;
        row = static_cast<unsigned>(std::min<std::uint64_t>(day, NO_ROW));
    } else {
        row = static_cast<std::uint64_t>(age) < QUERY_DAYS * SECONDS_A_DAY
                  ? code(TENS, end - 3) + units
                  : NO_ROW;
    }
    ++tally->rows[row][filter.outcomes[kind | detail]];
    return true;
}

/// Counts the word at or after `at` by the plain rule; returns its end.
inline const char* count_next_word(const RecordQuery& query, const char* at, const char* end,
                                   RecordTally* tally) {
    const std::string_view word = next_word(&at, end);
    if (!word.empty()) count_word(query, word, tally);
    return at;
}

template <class SET, bool PER_DAY, bool HAS_FILTERS>
ALWAYS_INLINE void count_piece(const RecordQuery& query, const CanonicalFilter& filter,
                               std::string_view piece, RecordTally* tally) {
    const char* const end = piece.data() + piece.size();
    const char* at = skip_white(piece.data(), end);
    Earliest earliest;
    WordEnds ends;
    for (const char* slice = piece.data(); slice < end; slice += SLICE) {
        const std::size_t size = std::min(SLICE, static_cast<std::size_t>(end - slice));
        const std::size_t count = find_word_ends<SET>(slice, size, &ends);
        for (std::size_t i = 0; i < count; ++i) {
            const char* const stop = ends[i];
            if (count_canonical<SET, PER_DAY, HAS_FILTERS>(query, filter, at, stop, tally,
                                                           &earliest)) {
                at = after_line_end(stop);
                continue;
            }
            // `stop` may be a control character inside a word, or [at, stop) several words: the
            // plain rule continues after it.
            while (at < stop) at = count_next_word(query, at, end, tally);
            at = skip_white(at, end);
        }
    }
    while (at < end) at = count_next_word(query, at, end, tally);
    tally->earliest = std::min(tally->earliest, earliest.time);
}

}  // namespace gatescope
