#include "base/json.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "base/filled.h"
#include "base/utf8.h"

namespace gatescope {

std::string json_value(std::optional<std::string_view> bytes) {
    if (!bytes) return "null";
    std::string text = "\"";
    while (!bytes->empty()) {
        const char byte = bytes->front();
        const bool is_control = static_cast<std::uint8_t>(byte) < ' ' || byte == '\x7F';
        const std::size_t size = is_control ? 0 : utf8_size(*bytes);
        if (size == 0) text += filled("\\u%04x", static_cast<std::uint8_t>(byte));
        if (byte == '"' || byte == '\\') text += '\\';
        text += bytes->substr(0, size);
        bytes->remove_prefix(size == 0 ? 1 : size);
    }
    return text + '"';
}

std::optional<std::string> json_text(std::string_view line, const std::string& member) {
    // Quotes inside strings are escaped, so this text is no part of a string.
    const std::string begin = "\"" + member + "\":\"";
    const auto found = line.find(begin);
    if (found == std::string_view::npos) return std::nullopt;
    std::string bytes;
    std::string_view rest = line.substr(found + begin.size());
    while (!rest.empty() && rest.front() != '"') {
        std::size_t size = 1;
        if (rest.starts_with("\\u00") && rest.size() >= std::strlen("\\u00e4")) {
            size = std::strlen("\\u00e4");
            const std::string digits(rest.substr(2, 4));
            bytes += static_cast<char>(std::strtoul(digits.c_str(), nullptr, 16));
        } else if (rest.starts_with("\\\"") || rest.starts_with("\\\\")) {
            size = 2;
            bytes += rest[1];
        } else if (rest.front() == '\\') {
            return std::nullopt;
        } else {
            bytes += rest.front();
        }
        rest.remove_prefix(size);
    }
    return rest.empty() ? std::nullopt : std::optional(bytes);
}

}  // namespace gatescope
