#include "records/canonical_records.h"

#include <algorithm>
#include <cstring>

#include "base/filled.h"
#include "records/canonical_scan.h"

namespace gatescope {
namespace {

/// Kind, detail letter.
constexpr char SAMPLE_RECORD[] = "86400:%c:u[1]%c<0>";

/// The digits of a text that is `open`, digits, `close`; empty for any other text.
std::string_view number_between(char open, std::string_view text, char close) {
    if (text.size() < 3 || text.front() != open || text.back() != close) return {};
    const std::string_view number = text.substr(1, text.size() - 2);
    const bool digits =
        std::all_of(number.begin(), number.end(), [](char c) { return c >= '0' && c <= '9'; });
    return digits ? number : std::string_view();
}

/// Sets the bytes to compare for "[12]" or "<12>". No canonical record contains a longer text, so
/// for that they are set to bytes that match none.
void set_compared_bytes(std::string_view text, std::uint32_t* wanted, std::uint32_t* mask) {
    std::memset(mask, 0xFF, std::min(text.size(), sizeof *mask));
    if (text.size() <= sizeof *wanted) std::memcpy(wanted, text.data(), text.size());
}

template <bool PER_DAY, bool HAS_FILTERS>
void count_canonical_piece(InstructionSet set, const RecordQuery& query,
                           const CanonicalFilter& filter, std::string_view piece,
                           RecordTally* tally) {
    const auto task = [&](auto kind) __attribute__((always_inline)) {
        count_piece<decltype(kind), PER_DAY, HAS_FILTERS>(query, filter, piece, tally);
    };
    with_instruction_set(set, task);
}

/// Whether a filter compares only the kind or the detail letter.
bool compares_letter(std::string_view filter) {
    return filter.size() == 3 && ((filter.front() == ':' && filter.back() == ':') ||
                                  (filter.front() == ']' && filter.back() == '<'));
}

}  // namespace

CanonicalQuery::CanonicalQuery(const RecordQuery& query, InstructionSet set)
    : plain_(query), instruction_set_(set) {
    RecordQuery letters = query;
    for (std::string& filter : letters.filters) {
        if (compares_letter(filter)) continue;
        has_fast_path_ = has_fast_path_ && add_filter(filter);
        filter.clear();
    }
    find_outcomes(letters);
}

/// False if the filter cannot be compared with a single field, or that field has a filter already.
bool CanonicalQuery::add_filter(std::string_view filter) {
    if (filter.empty() || filter == ":" || filter == "[") return true;
    filter_.has_fields = true;
    if (filter.front() == ':' && filter.back() == '[') return add_user_filter(filter.substr(1));
    if (!number_between('[', filter, ']').empty() && filter_.command_mask == 0) {
        set_compared_bytes(filter, &filter_.command, &filter_.command_mask);
        return true;
    }
    if (!number_between('<', filter, '>').empty() && filter_.value_mask == 0) {
        set_compared_bytes(filter, &filter_.value, &filter_.value_mask);
        return true;
    }
    return false;
}

bool CanonicalQuery::add_user_filter(std::string_view user_and_bracket) {
    const std::size_t size = user_and_bracket.size();
    // ":[" may also match at the kind, and ":<[" at the value.
    const bool one_field = size > 1 && user_and_bracket.find_first_of(":[<") == size - 1;
    if (!one_field || filter_.user_mask[0] != 0) return false;
    // No canonical record has a longer user or contains a NUL, so the NULs of `user` never match.
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

/// Applies the plain rule, with the filters on letters only, to a record of each kind and detail
/// letter.
void CanonicalQuery::find_outcomes(RecordQuery letters) {
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
    const auto count = counts_per_day(plain_.query)
                           ? (filter_.has_fields ? count_canonical_piece<true, true>
                                                 : count_canonical_piece<true, false>)
                           : (filter_.has_fields ? count_canonical_piece<false, true>
                                                 : count_canonical_piece<false, false>);
    count(instruction_set_, plain_, filter_, piece, tally);
    // Stops at the first word.
    tally->data_seen = tally->data_seen || !std::all_of(piece.begin(), piece.end(), is_white);
}

}  // namespace gatescope
