#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "records/words.h"

namespace gatescope {

using Words = std::vector<std::string>;

inline Words words_of(std::string_view text) {
    Words words;
    const char* at = text.data();
    while (true) {
        const std::string_view word = next_word(&at, text.data() + text.size());
        if (word.empty()) return words;
        words.emplace_back(word);
    }
}

}  // namespace gatescope
