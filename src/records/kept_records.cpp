#include "records/kept_records.h"

#include <algorithm>
#include <string>

#include "base/filled.h"
#include "base/text.h"
#include "records/record_scan.h"
#include "records/words.h"

namespace gatescope {

// The fast path: a word that begins with ten digits, ':', any byte and ':', is no longer than
// WORD_LIMIT and ends at the first byte up to a blank is kept or dropped by these digits alone. All
// other words take the plain rule. A piece is copied only if a word is dropped or does not end in
// '\n'.
//
// The vectorised search for word ends stays: with next_word, pruning half a log is much slower.

namespace {

/// Whether the word in [at, end), where `end` is a byte up to a blank, can take the fast path.
template <class SET>
ALWAYS_INLINE bool has_canonical_head(const char* at, const char* end) {
    const auto length = static_cast<std::size_t>(end - at);
    return length - HEAD_SIZE <= WORD_LIMIT - HEAD_SIZE && SET::are_in(CANONICAL_HEAD, at);
}

}  // namespace

KeptRecords::KeptRecords(std::int64_t cut_off, InstructionSet set)
    : cut_off_(cut_off), cut_off_digits_(first_digits(cut_off)), instruction_set_(set) {}

std::string_view KeptRecords::of(std::string_view piece) {
    std::string_view kept;
    const auto task = [&](auto operations) __attribute__((always_inline)) {
        kept = kept_of<decltype(operations)>(piece);
    };
    with_instruction_set(instruction_set_, task);
    return kept;
}

/// Applies the plain rule to the words in [at, end) that begin before `stop`; returns where the
/// next word begins.
const char* KeptRecords::filter_by_plain_rule(const char* at, const char* stop, const char* end) {
    while (at < stop) {
        const std::string_view word = next_word(&at, end);
        if (word.empty()) break;
        ++total_;
        const std::string text(c_text(word));
        if (leading_number(text.c_str()) >= cut_off_) {
            kept_.append(text) += '\n';
        } else {
            ++removed_;
        }
    }
    return skip_white(at, end);
}

/// Whether the word in [at, end) is kept with the line end after it.
template <class SET>
ALWAYS_INLINE bool KeptRecords::is_kept_unchanged(const char* at, const char* end) const {
    // For most records the first digits decide.
    return *end == '\n' && has_canonical_head<SET>(at, end) &&
           (first_digits(at) > cut_off_digits_ || SET::time(at) >= cut_off_);
}

template <class SET>
ALWAYS_INLINE std::string_view KeptRecords::kept_of(std::string_view piece) {
    const char* const end = piece.data() + piece.size();
    const char* at = piece.data();
    bool is_unchanged = true;
    std::int64_t total = 0;
    std::int64_t removed = 0;
    WordEnds ends;
    for (const char* slice = piece.data(); slice < end; slice += SLICE) {
        const std::size_t count = find_word_ends<SET>(
            slice, std::min<std::size_t>(SLICE, static_cast<std::size_t>(end - slice)), &ends);
        std::size_t i = 0;
        if (is_unchanged) {
            for (; i < count && is_kept_unchanged<SET>(at, ends[i]); ++i) at = ends[i] + 1;
            total += static_cast<std::int64_t>(i);
            if (i == count) continue;
            is_unchanged = false;
            kept_.assign(piece.data(), at);
        }
        for (; i < count; ++i) {
            const char* const stop = ends[i];
            if (!has_canonical_head<SET>(at, stop) || !is_white(*stop)) [[unlikely]] {
                at = filter_by_plain_rule(at, stop, end);
                continue;
            }
            ++total;
            if (SET::time(at) >= cut_off_) {
                kept_.append(at, stop) += '\n';
            } else {
                ++removed;
            }
            at = std::min(after_line_end(stop), end);
        }
    }
    total_ += total;
    removed_ += removed;
    if (at < end) {
        if (is_unchanged) kept_.assign(piece.data(), at);
        is_unchanged = false;
        filter_by_plain_rule(at, end, end);
    }
    return is_unchanged || kept_ == piece ? piece : kept_;
}

}  // namespace gatescope
