#include "logs/kept_records.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "base/filled.h"
#include "base/text.h"
#include "logs/log_reader.h"
#include "logs/record_scan.h"

// The fast path: a word that begins with ten digits, ':', any character and ':', holds no byte up
// to a blank and is no longer than a word may be is kept or dropped by its time alone. Where it
// stands on a line of its own it is written as it stands: neighbours of that kind are copied
// together, or not at all when a piece holds nothing else. Everything else goes word by word.

namespace {

enum Fate { KEPT, DROPPED, NOT_PLAIN };

/// What becomes of the word in [at, end), where `end` is a byte up to a blank.
template <class LANES>
ALWAYS_INLINE Fate fate_of(const char* at, const char* end, std::int64_t cut_off) {
    const auto length = static_cast<std::size_t>(end - at);
    std::int64_t time;
    if (length - HEAD_SIZE > WORD_LIMIT - HEAD_SIZE || !LANES::has_canonical_head(at, &time))
        [[unlikely]] {
        return NOT_PLAIN;
    }
    return time >= cut_off ? KEPT : DROPPED;
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

std::string_view KeptRecords::of(std::string_view piece) {
    // Every word gains a line end, and a long one has a word in each WORD_LIMIT bytes.
    const std::size_t room = piece.size() + piece.size() / WORD_LIMIT + 2 + COPY_SIZE;
    if (kept_.size() < room) kept_.resize(room);
    return lanes_ == Lanes::VECTORS ? kept_of<VectorLanes>(piece) : kept_of<ByteLanes>(piece);
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

template <class LANES>
std::string_view KeptRecords::kept_of(std::string_view piece) {
    const char* const begin = piece.data();
    const char* const end = begin + piece.size();
    const char* at = begin;
    // Nothing is copied until something changes.
    char* out = nullptr;
    const auto copy_what_was = [&] { return std::copy(begin, at, kept_.data()); };
    std::int64_t total = 0;
    std::int64_t removed = 0;
    WordEnds ends;
    for (const char* slice = begin; slice < end; slice += SLICE) {
        const std::size_t count = find_word_ends<LANES>(
            slice, std::min<std::size_t>(SLICE, static_cast<std::size_t>(end - slice)), &ends);
        for (std::size_t i = 0; i < count; ++i) {
            const char* const stop = slice + ends[i];
            const Fate fate = fate_of<LANES>(at, stop, cut_off_);
            if (out == nullptr) {
                if (fate == KEPT && *stop == '\n') {
                    ++total;
                    at = stop + 1;
                    continue;
                }
                out = copy_what_was();
            }
            if (fate == NOT_PLAIN || !is_white(*stop)) [[unlikely]] {
                const Places places = take_words({at, out}, stop, end);
                at = places.at;
                out = places.out;
                continue;
            }
            ++total;
            removed += fate == DROPPED;
            const auto size = static_cast<std::size_t>(stop - at);
            copy_word(out, at, size);
            out += fate == KEPT ? size + 1 : 0;
            at = std::min(after_line_end(stop), end);
        }
    }
    total_ += total;
    removed_ += removed;
    if (at < end) {
        if (out == nullptr) out = copy_what_was();
        out = take_words({at, out}, end, end).out;
    }
    if (out == nullptr) return piece;
    const std::string_view kept(kept_.data(), static_cast<std::size_t>(out - kept_.data()));
    return kept == piece ? piece : kept;
}
