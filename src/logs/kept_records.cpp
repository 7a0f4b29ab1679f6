#include "logs/kept_records.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "base/filled.h"
#include "base/text.h"
#include "logs/log_reader.h"
#include "logs/record_scan.h"

// The fast path: a line that begins with ten digits, ':', any character and ':', holds no byte up
// to a blank, is no longer than a word may be and ends in "\n" is written as it stands when it is
// kept. Neighbours of that kind are copied together, or not at all when a piece holds nothing
// else. Everything else goes word by word.

namespace {

enum Fate { KEPT, DROPPED, NOT_A_PLAIN_LINE };

/// What becomes of the line in [at, end), where `end` is a byte up to a blank.
ALWAYS_INLINE Fate fate_of(const char* at, const char* end, std::int64_t cut_off) {
    const auto length = static_cast<std::size_t>(end - at);
    const bool plain = length - HEAD_SIZE <= WORD_LIMIT - HEAD_SIZE && *end == '\n';
    std::int64_t time;
    if (!plain || !has_canonical_head(at, &time)) [[unlikely]]
        return NOT_A_PLAIN_LINE;
    return time >= cut_off ? KEPT : DROPPED;
}

char* appended(char* out, const char* begin, const char* end) {
    const auto size = static_cast<std::size_t>(end - begin);
    std::memcpy(out, begin, size);
    return out + size;
}

}  // namespace

std::string_view KeptRecords::of(std::string_view piece) {
    // Every word gains a line end, and a long one has a word in each WORD_LIMIT bytes.
    kept_.resize(piece.size() + piece.size() / WORD_LIMIT + 2);
    char* out = kept_.data();
    const char* const begin = piece.data();
    const char* const end = begin + piece.size();
    const char* at = begin;
    // What is kept of [run, at) stands there as it is to be written.
    const char* run = begin;
    const auto take_word = [&] {
        out = appended(out, run, at);
        const std::string_view word = next_word(&at, end);
        run = at;
        if (word.empty()) return;
        ++total_;
        const std::string text(c_text(word));
        if (leading_number(text.c_str()) < cut_off_) {
            ++removed_;
            return;
        }
        out = appended(out, text.data(), text.data() + text.size());
        *out++ = '\n';
    };

    WordEnds ends;
    for (const char* slice = begin; slice < end; slice += SLICE) {
        const std::size_t size = std::min(SLICE, static_cast<std::size_t>(end - slice));
        const std::size_t count = find_word_ends(slice, size, &ends);
        for (std::size_t i = 0; i < count; ++i) {
            const char* const stop = slice + ends[i];
            const Fate fate = fate_of(at, stop, cut_off_);
            if (fate == NOT_A_PLAIN_LINE) [[unlikely]] {
                while (at < stop) take_word();
                if (at == stop && is_white(*at)) {
                    out = appended(out, run, at);
                    run = ++at;
                }
                continue;
            }
            ++total_;
            if (fate == DROPPED) {
                ++removed_;
                out = appended(out, run, at);
                run = stop + 1;
            }
            at = stop + 1;
        }
    }
    while (at < end) take_word();
    if (run == begin) return piece;
    out = appended(out, run, end);
    const std::string_view kept(kept_.data(), static_cast<std::size_t>(out - kept_.data()));
    return kept == piece ? piece : kept;
}
