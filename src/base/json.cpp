#include "base/json.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <utility>

#include "base/filled.h"

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

std::string json_string(std::string_view bytes) {
    std::string text = "\"";
    for (std::size_t size = 0; !bytes.empty(); bytes.remove_prefix(size)) {
        const std::uint8_t byte = static_cast<std::uint8_t>(bytes.front());
        size = std::max<std::size_t>(utf8_size(bytes), 1);
        if (utf8_size(bytes) == 0 || byte < ' ' || byte == '\x7F') {
            text += filled("\\u%04x", byte);
        } else {
            if (byte == '"' || byte == '\\') text += '\\';
            text += bytes.substr(0, size);
        }
    }
    return text + '"';
}

std::optional<JsonObject> read_json_object(std::string_view line) {
    JsonObject object;
    std::string name;
    std::string word;
    bool is_string = false;
    bool in_string = false;
    for (std::size_t at = 0; at < line.size(); ++at) {
        if (line[at] == '"') {
            is_string = true;
            in_string = !in_string;
        } else if (in_string && line.substr(at).starts_with("\\u00")) {
            const std::string digits(line.substr(at + 4, 2));
            word += static_cast<char>(std::strtoul(digits.c_str(), nullptr, 16));
            at += 5;
        } else if (in_string) {
            if (line[at] == '\\') ++at;
            word += line.substr(at, 1);
        } else if (line[at] == ':') {
            name = std::exchange(word, "");
            is_string = false;
        } else if (line[at] == ',' || line[at] == '}') {
            const std::string value = std::exchange(word, "");
            if (is_string || value != "null") object[name] = value;
            is_string = false;
        } else if (line[at] != '{') {
            word += line[at];
        }
    }
    const bool is_object = line.starts_with('{') && line.ends_with('}') && !in_string;
    return is_object ? std::optional(object) : std::nullopt;
}

}  // namespace gatescope
