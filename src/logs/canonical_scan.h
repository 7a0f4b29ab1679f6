#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

#include "logs/canonical_filter.h"
#include "logs/log_reader.h"
#include "logs/record_rule.h"
#include "logs/record_scan.h"

// The canonical shape, as the policy engine writes its records:
//
//     1794787199:D:ann[2]K<17>
//
// ten digits, ':', one of S D B P, ':', the user, '[', one or two digits, ']', one of a b c d k r
// -, '<', one or two digits or a '-', '>', white space; letters in either case; a user of less
// than CanonicalFilter::USER_LIMIT bytes without ':', '[', '<'; no byte up to the blank inside; no
// longer than a word may be.
//
// In such a record ':' stands in two known places, '[', ']' before '<', and '<' in one each. So a
// text with one of them can be found at that place only, and "is it in the record" becomes "is it
// that field". The rest follows from the kind, the detail letter and the numbers.

constexpr std::size_t KIND_PLACE = 11;
constexpr std::size_t USER_PLACE = 13;
/// With an empty user, and as a word.
constexpr std::size_t SHORTEST = 20;
constexpr std::size_t LONGEST = WORD_LIMIT;
/// Row of records outside the period.
constexpr std::uint64_t NO_ROW = RecordTally::ROWS - 1;

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

/// What has to stand in the eight bytes up to the end, "]K<7>" or "]K<17>" and any byte, and where;
/// of a number's second digit only the upper half, which tells it from a '-'.
constexpr std::array<std::uint64_t, 2> TAIL_BITS = {0x00FF00FF00FF0000, 0x00FFF000FF00FF00};
constexpr std::array<std::uint64_t, 2> TAIL = {0x003E003C005D0000, 0x003E30003C005D00};
/// The same for "[2" and "[12", with the upper half of each digit.
constexpr std::array<std::uint32_t, 2> COMMAND_BITS = {0x0000F0FF, 0x00F0F0FF};
constexpr std::array<std::uint32_t, 2> COMMAND = {0x0000305B, 0x0030305B};

/// What may come after a record.
constexpr Codes white_codes() {
    Codes codes = {};
    codes.fill(NOT_CANONICAL);
    for (const char c : {' ', '\t', '\n', '\v', '\f', '\r'})
        codes[static_cast<std::uint8_t>(c)] = 0;
    return codes;
}
constexpr Codes WHITE = white_codes();

ALWAYS_INLINE std::uint8_t code(const Codes& codes, const char* at) {
    return codes[static_cast<std::uint8_t>(*at)];
}

/// Where the user ends: at '[' in a canonical record; null if nowhere in
/// CanonicalFilter::USER_LIMIT bytes.
template <class LANES>
ALWAYS_INLINE const char* user_end(const char* user) {
    unsigned found = LANES::user_end_bits(user);
    if (found == 0) [[unlikely]] {
        found = LANES::user_end_bits(user + 16) << 16;
        if (found == 0) return nullptr;
    }
    return user + lowest_bit(found);
}

template <class LANES>
ALWAYS_INLINE bool same_user(const char* at, const CanonicalFilter& filter) {
    const auto same_half = [&](std::size_t i) {
        return LANES::same_text(at + i, &filter.user[i], &filter.user_mask[i],
                                &filter.user_case[i]);
    };
    return same_half(0) && (!filter.has_long_user || same_half(16));
}

/// Counts the record in [at, end) if it is canonical and returns whether it is.
template <class LANES, bool PER_DAY, bool HAS_FILTERS>
ALWAYS_INLINE bool count_canonical(const RecordQuery& query, const CanonicalFilter& filter,
                                   const char* at, const char* end, RecordTally* tally,
                                   std::int64_t* earliest) {
    const auto length = static_cast<std::size_t>(end - at);
    if (length - SHORTEST > LONGEST - SHORTEST) [[unlikely]]
        return false;
    if (*end != '\n' && !is_white(*end)) [[unlikely]]
        return false;
    const char* const bracket = user_end<LANES>(at + USER_PLACE);
    if (bracket == nullptr) [[unlikely]]
        return false;

    // "]K<7>" or "]K<17>", looked at as eight bytes up to the end.
    const unsigned wide = end[-3] != '<';
    const bool good_tail = (little_endian<std::uint64_t>(end - 7) & TAIL_BITS[wide]) == TAIL[wide];
    const char* const angle = end - 3 - wide;

    // "[2]" or "[12]": the bracket that closes is known from the tail.
    const std::size_t wide_command = static_cast<std::size_t>(angle - bracket) - 4;
    const auto command = little_endian<std::uint32_t>(bracket);
    const bool good_command =
        (command & COMMAND_BITS[wide_command & 1]) == COMMAND[wide_command & 1] &&
        ((command + 0x00060600) & COMMAND_BITS[wide_command & 1]) == COMMAND[wide_command & 1];

    const unsigned kind = code(KIND_CODE, at + KIND_PLACE);
    const unsigned detail = code(DETAIL_CODE, angle - 1);
    const unsigned tens = code(TENS, end - 3);
    const unsigned units = code(UNITS, end - 2);
    const bool good_codes = ((kind | detail | tens | units) & NOT_CANONICAL) == 0;

    std::int64_t time;
    const bool good_head = LANES::has_canonical_head(at, &time);
    if (!(static_cast<unsigned>(good_head) & static_cast<unsigned>(good_tail) &
          static_cast<unsigned>(good_command) & static_cast<unsigned>(good_codes) &
          static_cast<unsigned>(wide_command <= 1))) [[unlikely]] {
        return false;
    }
    const std::int64_t age = query.period.end_of_day_time - time;
    if (age < 0) [[unlikely]]
        return true;
    *earliest = std::min(*earliest, time);

    std::size_t outcome = filter.outcomes[kind | detail];
    if constexpr (HAS_FILTERS) {
        const bool passes =
            static_cast<unsigned>((command & filter.command_mask) == filter.command) &
            static_cast<unsigned>((little_endian<std::uint32_t>(angle) & filter.value_mask) ==
                                  filter.value) &
            static_cast<unsigned>(same_user<LANES>(at + USER_PLACE, filter));
        outcome = passes ? outcome : std::size_t{FILTERED};
    }
    std::uint64_t row;
    if constexpr (PER_DAY) {
        row = std::min<std::uint64_t>(static_cast<std::uint64_t>(age) / SECONDS_A_DAY, NO_ROW);
    } else {
        row = static_cast<std::uint64_t>(age) < QUERY_DAYS * SECONDS_A_DAY ? tens + units : NO_ROW;
    }
    ++tally->rows[row][outcome];
    return true;
}

/// The plain rule for the word at or after `at`; returns where it ends.
inline const char* count_next_word(const RecordQuery& query, const char* at, const char* end,
                                   RecordTally* tally) {
    const std::string_view word = next_word(&at, end);
    if (!word.empty()) count_word(query, word, tally);
    return at;
}

template <class LANES, bool PER_DAY, bool HAS_FILTERS>
void count_piece(const RecordQuery& query, const CanonicalFilter& filter, std::string_view piece,
                 RecordTally* tally) {
    const char* const end = piece.data() + piece.size();
    const char* at = after_white(piece.data(), end);
    std::int64_t earliest = tally->earliest;
    WordEnds ends;
    for (const char* slice = piece.data(); slice < end; slice += SLICE) {
        const std::size_t size = std::min(SLICE, static_cast<std::size_t>(end - slice));
        const std::size_t count = find_word_ends<LANES>(slice, size, &ends);
        for (std::size_t i = 0; i < count; ++i) {
            const char* const stop = slice + ends[i];
            if (count_canonical<LANES, PER_DAY, HAS_FILTERS>(query, filter, at, stop, tally,
                                                             &earliest)) {
                at = stop + 1;
                if (*stop != '\n') at = after_line_end(stop);
                continue;
            }
            // A byte that ends no word, or more than one word: the plain rule goes on after it.
            while (at < stop) at = count_next_word(query, at, end, tally);
            at = after_white(at, end);
        }
    }
    while (at < end) at = count_next_word(query, at, end, tally);
    tally->earliest = std::min(tally->earliest, earliest);
}
