#include "logs/canonical_records.h"

#include <algorithm>

#include "base/filled.h"
#include "logs/log_reader.h"
#include "logs/record_scan.h"

// The canonical shape, as the policy engine writes its records:
//
//     1794787199:D:ann[2]K<17>\n
//
// ten digits, ':', one of S D B P, ':', the user, '[', one or two digits, ']', one of a b c d k r
// -, '<', one or two digits or a '-', '>', white space; letters in either case; a user of less
// than CanonicalFilter::USER_LIMIT bytes without ':', '[', '<'; no byte up to the blank inside; no
// longer than a word may be.
//
// In such a record ':' stands in two known places, '[', ']' before '<', and '<' in one each. So a
// text with one of them can be found at that place only, and "is it in the record" becomes "is it
// that field". The rest follows from the kind, the detail letter and the numbers.

namespace {

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

/// Kind, detail letter.
constexpr char SAMPLE_RECORD[] = "86400:%c:u[1]%c<0>";

constexpr std::uint8_t DETAIL_CODES = 8;
constexpr Codes KIND_CODE = letter_codes(KINDS, DETAIL_CODES);
constexpr Codes DETAIL_CODE = letter_codes(DETAILS, 1);
/// A value's last character, and the one before it, which is the '<' of a short one.
constexpr Codes UNITS = digit_codes(1, '-');
constexpr Codes TENS = digit_codes(10, '<');

/// What has to stand in the eight bytes up to the end, "]K<7>\n" or "]K<17>\n", and where;
/// of a number's second digit only the upper half, which tells it from a '-'.
constexpr std::array<std::uint64_t, 2> TAIL_BITS = {0xFFFF00FF00FF0000, 0xFFFFF000FF00FF00};
constexpr std::array<std::uint64_t, 2> TAIL = {0x0A3E003C005D0000, 0x0A3E30003C005D00};
/// The same for "[2" and "[12", with the upper half of each digit.
constexpr std::array<std::uint32_t, 2> COMMAND_BITS = {0x0000F0FF, 0x00F0F0FF};
constexpr std::array<std::uint32_t, 2> COMMAND = {0x0000305B, 0x0030305B};

ALWAYS_INLINE std::uint8_t code(const Codes& codes, const char* at) {
    return codes[static_cast<std::uint8_t>(*at)];
}

#if defined(__SSE2__)

/// One bit for each of the 16 bytes that no user of a canonical record holds.
ALWAYS_INLINE unsigned user_end_bits(const char* at) {
    const __m128i text = sixteen(at);
    return bits(_mm_or_si128(_mm_or_si128(_mm_cmpeq_epi8(text, _mm_set1_epi8('[')),
                                          _mm_cmpeq_epi8(text, _mm_set1_epi8(':'))),
                             _mm_cmpeq_epi8(text, _mm_set1_epi8('<'))));
}

/// Whether the 16 bytes agree with `wanted` where `mask` says so, apart from `other_case`.
ALWAYS_INLINE bool same_text(const char* at, const char* wanted, const char* mask,
                             const char* other_case) {
    const __m128i text =
        _mm_and_si128(_mm_or_si128(sixteen(at), sixteen(other_case)), sixteen(mask));
    return bits(_mm_cmpeq_epi8(text, sixteen(wanted))) == 0xFFFF;
}

#else

ALWAYS_INLINE unsigned user_end_bits(const char* at) {
    unsigned all = 0;
    for (unsigned i = 0; i < 16; ++i) {
        const unsigned is_end = at[i] == '[' || at[i] == ':' || at[i] == '<';
        all |= is_end << i;
    }
    return all;
}

ALWAYS_INLINE bool same_text(const char* at, const char* wanted, const char* mask,
                             const char* other_case) {
    for (unsigned i = 0; i < 16; ++i) {
        if (((at[i] | other_case[i]) & mask[i]) != wanted[i]) return false;
    }
    return true;
}

#endif

/// Where the user ends: at '[' in a canonical record; null if nowhere in
/// CanonicalFilter::USER_LIMIT bytes.
ALWAYS_INLINE const char* user_end(const char* user) {
    unsigned found = user_end_bits(user);
    if (found == 0) [[unlikely]] {
        found = user_end_bits(user + 16) << 16;
        if (found == 0) return nullptr;
    }
    return user + lowest_bit(found);
}

ALWAYS_INLINE bool same_user(const char* at, const CanonicalFilter& filter) {
    const auto same_half = [&](std::size_t i) {
        return same_text(at + i, &filter.user[i], &filter.user_mask[i], &filter.user_case[i]);
    };
    return same_half(0) && (!filter.has_long_user || same_half(16));
}

/// Counts the record in [at, end) if it is canonical and returns whether it is.
template <bool PER_DAY, bool HAS_FILTERS>
ALWAYS_INLINE bool count_canonical(const RecordQuery& query, const CanonicalFilter& filter,
                                   const char* at, const char* end, RecordTally* tally,
                                   std::int64_t* earliest) {
    const auto length = static_cast<std::size_t>(end - at);
    if (length - SHORTEST > LONGEST - SHORTEST) [[unlikely]]
        return false;
    const char* const bracket = user_end(at + USER_PLACE);
    if (bracket == nullptr) [[unlikely]]
        return false;

    // "]K<7>\n" or "]K<17>\n", looked at as eight bytes up to the end.
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
    const bool good_head = has_canonical_head(at, &time);
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
            static_cast<unsigned>(same_user(at + USER_PLACE, filter));
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

/// The plain rule for the word at or behind `at`; returns where it ends.
const char* count_next_word(const RecordQuery& query, const char* at, const char* end,
                            RecordTally* tally) {
    const std::string_view word = next_word(&at, end);
    if (!word.empty()) count_word(query, word, tally);
    return at;
}

template <bool PER_DAY, bool HAS_FILTERS>
void count_piece(const RecordQuery& query, const CanonicalFilter& filter, std::string_view piece,
                 RecordTally* tally) {
    const char* at = piece.data();
    const char* const end = at + piece.size();
    std::int64_t earliest = tally->earliest;
    WordEnds ends;
    for (const char* slice = at; slice < end; slice += SLICE) {
        const std::size_t size = std::min(SLICE, static_cast<std::size_t>(end - slice));
        const std::size_t count = find_word_ends(slice, size, &ends);
        for (std::size_t i = 0; i < count; ++i) {
            const char* const stop = slice + ends[i];
            if (count_canonical<PER_DAY, HAS_FILTERS>(query, filter, at, stop, tally, &earliest)) {
                at = stop + 1;
                continue;
            }
            // A byte that ends no word, or more than one word: the plain rule goes on behind it.
            while (at < stop) at = count_next_word(query, at, end, tally);
            if (at == stop && is_white(*at)) ++at;
        }
    }
    while (at < end) at = count_next_word(query, at, end, tally);
    tally->earliest = std::min(tally->earliest, earliest);
}

/// What stands between `open` and `close` when the text is nothing else and it is a number.
std::string_view number_between(char open, std::string_view text, char close) {
    if (text.size() < 3 || text.front() != open || text.back() != close) return {};
    const std::string_view number = text.substr(1, text.size() - 2);
    const bool digits =
        std::all_of(number.begin(), number.end(), [](char c) { return c >= '0' && c <= '9'; });
    return digits ? number : std::string_view();
}

/// Sets what has to be compared for "[12]" or "<12>"; longer ones are in no canonical record.
void take_number(std::string_view text, std::uint32_t* wanted, std::uint32_t* mask) {
    *mask = ~std::uint32_t{0};
    if (text.size() > sizeof *wanted) return;
    std::array<char, sizeof* wanted> bytes = {};
    std::copy(text.begin(), text.end(), bytes.begin());
    *wanted = little_endian<std::uint32_t>(bytes.data());
    *mask >>= 8 * (sizeof *wanted - text.size());
}

bool is_about_letters(std::string_view filter) {
    return filter.size() == 3 && ((filter.front() == ':' && filter.back() == ':') ||
                                  (filter.front() == ']' && filter.back() == '<'));
}

}  // namespace

CanonicalQuery::CanonicalQuery(const RecordQuery& query) : plain_(query) {
    RecordQuery letters = query;
    for (std::string& filter : letters.filters) {
        if (is_about_letters(filter)) continue;
        has_fast_path_ = has_fast_path_ && take_filter(filter);
        filter.clear();
    }
    ask_for_outcomes(letters);
}

/// False when it cannot be compared with one field, or another filter is compared with that field
/// already.
bool CanonicalQuery::take_filter(std::string_view filter) {
    if (filter.empty() || filter == ":" || filter == "[") return true;
    filter_.has_fields = true;
    if (filter.front() == ':' && filter.back() == '[') return take_user(filter.substr(1));
    if (!number_between('[', filter, ']').empty() && filter_.command_mask == 0) {
        take_number(filter, &filter_.command, &filter_.command_mask);
        return true;
    }
    if (!number_between('<', filter, '>').empty() && filter_.value_mask == 0) {
        take_number(filter, &filter_.value, &filter_.value_mask);
        return true;
    }
    return false;
}

bool CanonicalQuery::take_user(std::string_view user_and_bracket) {
    const std::size_t size = user_and_bracket.size();
    const bool one_field = user_and_bracket.find_first_of(":[") == size - 1;
    if (!one_field || filter_.user_mask[0] != 0) return false;
    // A longer user is in no canonical record, nor is a NUL, which this then asks for.
    filter_.user_mask.fill(size > CanonicalFilter::USER_LIMIT ? '\xff' : '\0');
    if (size > CanonicalFilter::USER_LIMIT) return true;
    for (std::size_t i = 0; i < size; ++i) {
        const char c = user_and_bracket[i];
        filter_.user[i] = c;
        filter_.user_mask[i] = '\xff';
        filter_.user_case[i] = c >= 'a' && c <= 'z' ? 'a' ^ 'A' : '\0';
    }
    filter_.has_long_user = size > 16;
    return true;
}

/// With the filters about letters still in force, the plain rule says what becomes of a record of
/// each kind and detail letter.
void CanonicalQuery::ask_for_outcomes(RecordQuery letters) {
    letters.period.start_of_period_time = 0;
    letters.period.end_of_day_time = SECONDS_A_DAY;
    for (std::size_t kind = 0; KINDS[kind] != '\0'; ++kind) {
        for (std::size_t detail = 0; DETAILS[detail] != '\0'; ++detail) {
            RecordTally tally;
            count_word(letters, filled(SAMPLE_RECORD, KINDS[kind], DETAILS[detail]), &tally);
            const auto& row = tally.rows[0];
            filter_.outcomes[kind * DETAIL_CODES + detail] =
                static_cast<std::uint8_t>(std::max_element(row.begin(), row.end()) - row.begin());
        }
    }
}

void CanonicalQuery::count(std::string_view piece, RecordTally* tally) const {
    if (!has_fast_path_) {
        const char* end = piece.data() + piece.size();
        for (const char* at = piece.data(); at < end;) {
            at = count_next_word(plain_, at, end, tally);
        }
        return;
    }
    const bool per_day = counts_per_day(plain_.query);
    const auto count_piece_for =
        per_day ? (filter_.has_fields ? count_piece<true, true> : count_piece<true, false>)
                : (filter_.has_fields ? count_piece<false, true> : count_piece<false, false>);
    count_piece_for(plain_, filter_, piece, tally);
    // Looks no farther than the first word.
    tally->data_seen = tally->data_seen || !std::all_of(piece.begin(), piece.end(), is_white);
}
