#include "records/words.h"

#include <algorithm>
#include <cstdint>

namespace gatescope {
namespace {

/// Bytes tested in one step. Compilers vectorise a loop of fixed length, but not one that may end
/// at any byte.
constexpr std::ptrdiff_t SEARCH_STEP = 64;

bool contains_white(const char* at) {
    std::uint8_t any = 0;
    for (std::ptrdiff_t i = 0; i < SEARCH_STEP; ++i) {
        const auto after_tab = static_cast<std::uint8_t>(at[i] - '\t');
        any = at[i] == ' ' ? std::uint8_t{1} : any;
        any = after_tab <= '\r' - '\t' ? std::uint8_t{1} : any;
    }
    return any != 0;
}

}  // namespace

const char* find_white(const char* begin, const char* end) {
    while (end - begin >= SEARCH_STEP && !contains_white(begin)) begin += SEARCH_STEP;
    return std::find_if(begin, end, is_white);
}

const char* after_last_white(const char* begin, const char* end) {
    while (end - begin >= SEARCH_STEP && !contains_white(end - SEARCH_STEP)) {
        end -= SEARCH_STEP;
    }
    while (end > begin && !is_white(end[-1])) --end;
    return end;
}

std::string_view next_word(const char** at, const char* end) {
    const char* start = std::find_if_not(*at, end, is_white);
    const char* limit = start + std::min<std::ptrdiff_t>(end - start, WORD_LIMIT);
    *at = find_white(start, limit);
    return {start, static_cast<std::size_t>(*at - start)};
}

}  // namespace gatescope
