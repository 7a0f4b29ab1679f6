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
// In such a record ':' stands in two known places, '[', ']' before '<', and '<' in one each. So a
// text with one of them can be found at that place only, and "is it in the record" becomes "is it
// that field". The rest follows from the kind, the detail letter and the numbers.
//
// Where a filter asks for another user, command or value than the record has, less of the shape
// will do: the kind, the detail letter and a value of one byte may be anything. Even if they are a
// ':', '[' or '<', what comes next is a mark of the shape, and no such filter goes on with that
// mark there. So the plain rule does not count that record either. All it takes from it is its
// time, and that matters only if it is the earliest so far.

constexpr std::size_t KIND_PLACE = 11;
constexpr std::size_t USER_PLACE = 13;
/// With an empty user.
constexpr std::ptrdiff_t SHORTEST = 20;
/// Row of records outside the period.
constexpr unsigned NO_ROW = RecordTally::ROWS - 1;

constexpr char KINDS[] = "sdbp";
constexpr char DETAILS[] = "abcdkr-";
constexpr std::uint8_t NOT_CANONICAL = 0x80;

using Codes = std::array<std::uint8_t, 256>;

/// Letter to its place in `letters`, in either case, times `step`.
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

/// Digit to its value times `step`; `zero_too` counts as 0.
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
/// A value's last character, and the one before it, which is the '<' of a short one.
constexpr Codes UNITS = digit_codes(1, '-');
constexpr Codes TENS = digit_codes(10, '<');

/// What has to stand before the end, with one or two digits in the command and in the value. What
/// a value of one byte is, UNITS tells.
constexpr std::array<Ranges, 4> TAILS = {ranges_of("[0]*<*>"), ranges_of("[0]*<00>"),
                                         ranges_of("[00]*<*>"), ranges_of("[00]*<00>")};
constexpr std::size_t SHORTEST_TAIL = 7;

ALWAYS_INLINE std::uint8_t code(const Codes& codes, const char* at) {
    return codes[static_cast<std::uint8_t>(*at)];
}

/// Where the user ends: at '[' in a canonical record; null if nowhere in
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

/// Whether the four bytes at `at` agree with `wanted` where `mask` says so.
ALWAYS_INLINE bool same_number(const char* at, std::uint32_t wanted, std::uint32_t mask) {
    std::uint32_t number;
    std::memcpy(&number, at, sizeof number);
    return (number & mask) == wanted;
}

/// Whether the user at `at` and the '[' after it are those of the filter, if it asks for any.
template <class SET>
ALWAYS_INLINE bool same_user(const char* at, const CanonicalFilter& filter) {
    const auto same_half = [&](std::size_t i) {
        return SET::same_text(at + i, &filter.user[i], &filter.user_mask[i], &filter.user_case[i]);
    };
    return same_half(0) && (!filter.has_long_user || same_half(16));
}

/// The time of the earliest record, and its first digits; later than any as long as there is none.
struct Earliest {
    std::int64_t time = std::numeric_limits<std::int64_t>::max();
    std::uint64_t digits = std::numeric_limits<std::uint64_t>::max();
};

/// Counts the record in [at, end), or returns false when that is for the plain rule to do.
template <class SET, bool PER_DAY, bool HAS_FILTERS>
ALWAYS_INLINE bool count_canonical(const RecordQuery& query, const CanonicalFilter& filter,
                                   const char* at, const char* end, RecordTally* tally,
                                   Earliest* earliest) {
    if (end - at < SHORTEST) [[unlikely]]
        return false;
    const char* const bracket = user_end<SET>(at + USER_PLACE);
    if (bracket == nullptr) [[unlikely]]
        return false;

    // The tail's length, and where its value begins, say which it is.
    const std::size_t wide = end[-3] != '<';
    const std::size_t shape = 2 * (static_cast<std::size_t>(end - bracket) - SHORTEST_TAIL) - wide;
    if (shape >= TAILS.size()) [[unlikely]]
        return false;
    const unsigned good_bytes = static_cast<unsigned>(SET::are_in(CANONICAL_HEAD, at)) &
                                static_cast<unsigned>(SET::are_in(TAILS[shape], end - 16));
    if (good_bytes == 0 || !is_white(*end)) [[unlikely]]
        return false;

    const char* const angle = end - 3 - wide;
    const bool passes =
        !HAS_FILTERS || (same_user<SET>(at + USER_PLACE, filter) &&
                         same_number(bracket, filter.command, filter.command_mask) &&
                         same_number(angle, filter.value, filter.value_mask));
    const std::uint64_t digits = first_digits(at);
    if (!passes && digits > earliest->digits) return true;

    const unsigned kind = code(KIND_CODE, at + KIND_PLACE);
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

/// The plain rule for the word at or after `at`; returns where it ends.
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
    const char* at = after_white(piece.data(), end);
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
            // A byte that ends no word, or more than one word: the plain rule goes on after it.
            while (at < stop) at = count_next_word(query, at, end, tally);
            at = after_white(at, end);
        }
    }
    while (at < end) at = count_next_word(query, at, end, tally);
    tally->earliest = std::min(tally->earliest, earliest.time);
}

}  // namespace gatescope
