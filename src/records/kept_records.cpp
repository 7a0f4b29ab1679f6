#include "records/kept_records.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "base/filled.h"
#include "base/text.h"
#include "records/record_scan.h"
#include "records/words.h"

namespace gatescope {

// The fast path: a word that begins with ten digits, ':', any character and ':', holds no byte up
// to a blank and is no longer than a word may be is kept or dropped by its time alone. Where it
// stands on a line of its own it is written as it stands: neighbours of that kind are copied
// together, or not at all when a piece holds nothing else. Everything else goes word by word.

namespace {

enum class Fate { KEPT, DROPPED, NOT_PLAIN };

/// Whether the word in [at, end), where `end` is a byte up to a blank, begins with its time and is
/// nothing out of the ordinary.
template <class SET>
ALWAYS_INLINE bool is_plain(const char* at, const char* end) {
    const auto length = static_cast<std::size_t>(end - at);
    return length - HEAD_SIZE <= WORD_LIMIT - HEAD_SIZE && SET::are_in(CANONICAL_HEAD, at);
}

/// What becomes of it.
template <class SET>
ALWAYS_INLINE Fate fate_of(const char* at, const char* end, std::int64_t cut_off) {
    if (!is_plain<SET>(at, end)) [[unlikely]]
        return Fate::NOT_PLAIN;
    return SET::time(at) >= cut_off ? Fate::KEPT : Fate::DROPPED;
}

/// Copying a few bytes too many is quicker than finding out how many there are.
constexpr std::size_t COPY_SIZE = READER_MARGIN;

ALWAYS_INLINE void copy_word(char* out, const char* word, std::size_t size) {
    std::memcpy(out, word, COPY_SIZE);
    if (size > COPY_SIZE) [[unlikely]]
        std::memcpy(out, word, size);
    out[size] = '\n';
}

}  // namespace

KeptRecords::KeptRecords(std::int64_t cut_off, InstructionSet set)
    : cut_off_(cut_off), first_digits_(first_digits(cut_off)), instruction_set_(set) {}

std::string_view KeptRecords::of(std::string_view piece) {
    std::string_view kept;
    const auto task = [&](auto operations) __attribute__((always_inline)) {
        kept = kept_of<decltype(operations)>(piece);
    };
    with_instruction_set(instruction_set_, task);
    return kept;
}

/// Copies the piece up to `until`; returns where the copy ends.
char* KeptRecords::copied(std::string_view piece, const char* until) {
    // Every word gains a line end, and a long one has a word in each WORD_LIMIT bytes.
    const std::size_t room = piece.size() + piece.size() / WORD_LIMIT + 2 + COPY_SIZE;
    if (kept_.size() < room) kept_.resize(room);
    return std::copy(piece.data(), until, kept_.data());
}

/// Takes the words that begin before `stop` by the plain rule.
KeptRecords::Places KeptRecords::take_words(Places places, const char* stop, const char* end) {
    while (places.at < stop) {
        const std::string_view word = next_word(&places.at, end);
        if (word.empty()) break;
        ++total_;
        const std::string text(c_text(word));
        if (leading_number(text.c_str()) < cut_off_) {
            ++removed_;
            continue;
        }
        std::memcpy(places.out, text.data(), text.size());
        places.out += text.size();
        *places.out++ = '\n';
    }
    places.at = after_white(places.at, end);
    return places;
}

/// Whether the word in [at, end) is kept with its end, as it stands.
template <class SET>
ALWAYS_INLINE bool KeptRecords::stays(const char* at, const char* end) const {
    // Most are later than the cut-off by so much that their first digits tell.
    return *end == '\n' && is_plain<SET>(at, end) &&
           (first_digits(at) > first_digits_ || SET::time(at) >= cut_off_);
}

template <class SET>
ALWAYS_INLINE std::string_view KeptRecords::kept_of(std::string_view piece) {
    const char* const end = piece.data() + piece.size();
    const char* at = piece.data();
    // Nothing is copied until something changes.
    char* out = nullptr;
    std::int64_t total = 0;
    std::int64_t removed = 0;
    WordEnds ends;
    for (const char* slice = piece.data(); slice < end; slice += SLICE) {
        const std::size_t count = find_word_ends<SET>(
            slice, std::min<std::size_t>(SLICE, static_cast<std::size_t>(end - slice)), &ends);
        std::size_t i = 0;
        if (out == nullptr) {
            for (; i < count && stays<SET>(at, ends[i]); ++i) at = ends[i] + 1;
            total += static_cast<std::int64_t>(i);
            if (i == count) continue;
            out = copied(piece, at);
        }
        for (; i < count; ++i) {
            const char* const stop = ends[i];
            const Fate fate = fate_of<SET>(at, stop, cut_off_);
            if (fate == Fate::NOT_PLAIN || !is_white(*stop)) [[unlikely]] {
                const Places places = take_words({at, out}, stop, end);
                at = places.at;
                out = places.out;
                continue;
            }
            ++total;
            removed += fate == Fate::DROPPED;
            const auto size = static_cast<std::size_t>(stop - at);
            copy_word(out, at, size);
            out += fate == Fate::KEPT ? size + 1 : 0;
            at = std::min(after_line_end(stop), end);
        }
    }
    total_ += total;
    removed_ += removed;
    if (at < end) {
        if (out == nullptr) out = copied(piece, at);
        out = take_words({at, out}, end, end).out;
    }
    if (out == nullptr) return piece;
    const std::string_view kept(kept_.data(), static_cast<std::size_t>(out - kept_.data()));
    return kept == piece ? piece : kept;
}

}  // namespace gatescope
