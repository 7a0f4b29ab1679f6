#include "base/utf8.h"

#include <algorithm>
#include <cstdint>
#include <numeric>

namespace gatescope {

std::size_t utf8_size(std::string_view text) {
    const auto byte = [&](std::size_t at) -> int {
        return at < text.size() ? static_cast<std::uint8_t>(text[at]) : 0;
    };
    const int lead = byte(0);
    if (lead < 0x80) return std::min<std::size_t>(text.size(), 1);
    if (lead < 0xC2 || lead > 0xF4) return 0;
    // No longer forms than needed, no surrogates, nothing beyond the last character.
    const int lowest = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    const int highest = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    if (byte(1) < lowest || byte(1) > highest) return 0;
    const std::size_t size = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    for (std::size_t at = 2; at < size; ++at) {
        if ((byte(at) & 0xC0) != 0x80) return 0;
    }
    return size;
}

std::vector<std::string> shown_characters(std::string_view text) {
    std::vector<std::string> characters;
    for (std::size_t size = 0; !text.empty(); text.remove_prefix(size)) {
        size = std::max<std::size_t>(utf8_size(text), 1);
        const std::string_view character = text.substr(0, size);
        const bool is_control = (character < " " && character != "\t") || character == "\x7F" ||
                                (character >= "\xC2\x80" && character < "\xC2\xA0");
        characters.emplace_back(is_control || utf8_size(text) == 0 ? "?" : character);
    }
    return characters;
}

std::string harmless(std::string_view text) {
    const auto characters = shown_characters(text);
    return std::accumulate(characters.begin(), characters.end(), std::string());
}

}  // namespace gatescope
