#include "base/json.h"

#include <algorithm>
#include <cstdint>

#include "base/filled.h"

namespace {

constexpr std::string_view DIGITS = "0123456789";
constexpr std::string_view HEX_DIGITS = "0123456789abcdef";
constexpr char NULL_VALUE[] = "null";

bool is_between(unsigned value, unsigned lowest, unsigned highest) {
    return lowest <= value && value <= highest;
}

/// What is left of the line.
class Reader {
  public:
    explicit Reader(std::string_view line) : rest_(line) {}

    bool takes(std::string_view word) {
        if (!rest_.starts_with(word)) return false;
        rest_.remove_prefix(word.size());
        return true;
    }
    [[nodiscard]] bool is_at_end() const { return rest_.empty(); }

    std::optional<std::string> text() {
        std::string bytes;
        if (!takes("\"")) return std::nullopt;
        while (!takes("\"")) {
            if (rest_.empty()) return std::nullopt;
            const char next = rest_.front();
            rest_.remove_prefix(1);
            const auto byte = next == '\\' ? escaped() : next;
            if (!byte) return std::nullopt;
            bytes += *byte;
        }
        return bytes;
    }

    std::optional<std::string> number() {
        const std::string digits(rest_.substr(0, rest_.find_first_not_of(DIGITS)));
        rest_.remove_prefix(digits.size());
        return digits.empty() ? std::nullopt : std::optional(digits);
    }

  private:
    std::optional<char> escaped() {
        if (takes("\"")) return '"';
        if (takes("\\")) return '\\';
        if (!takes("u00") || rest_.size() < 2) return std::nullopt;
        const auto high = HEX_DIGITS.find(rest_[0]);
        const auto low = HEX_DIGITS.find(rest_[1]);
        if (high == std::string_view::npos || low == std::string_view::npos) return std::nullopt;
        rest_.remove_prefix(2);
        return static_cast<char>(high * HEX_DIGITS.size() + low);
    }

    std::string_view rest_;
};

}  // namespace

std::size_t utf8_size(std::string_view text) {
    const auto byte = [&](std::size_t at) -> unsigned {
        return at < text.size() ? static_cast<std::uint8_t>(text[at]) : 0;
    };
    const unsigned lead = byte(0);
    if (lead < 0x80) return std::min<std::size_t>(text.size(), 1);
    const std::size_t size = is_between(lead, 0xC2, 0xDF)   ? 2
                             : is_between(lead, 0xE0, 0xEF) ? 3
                             : is_between(lead, 0xF0, 0xF4) ? 4
                                                            : 0;
    // No longer forms than needed, no surrogates, nothing beyond the last character.
    const unsigned lowest = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    const unsigned highest = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    if (!is_between(byte(1), lowest, highest)) return 0;
    for (std::size_t at = 2; at < size; ++at) {
        if (!is_between(byte(at), 0x80, 0xBF)) return 0;
    }
    return size;
}

std::string json_string(std::string_view bytes) {
    std::string text = "\"";
    while (!bytes.empty()) {
        const std::size_t size = utf8_size(bytes);
        const char byte = bytes.front();
        if (size == 0 || is_between(static_cast<std::uint8_t>(byte), 0, 0x1F) || byte == 0x7F) {
            text += filled("\\u%04x", static_cast<std::uint8_t>(byte));
        } else {
            if (byte == '"' || byte == '\\') text += '\\';
            text += bytes.substr(0, size);
        }
        bytes.remove_prefix(std::max<std::size_t>(size, 1));
    }
    return text + '"';
}

std::string json_value(const std::optional<std::string>& bytes) {
    return bytes ? json_string(*bytes) : NULL_VALUE;
}

std::optional<JsonObject> read_json_object(std::string_view line) {
    Reader reader(line);
    JsonObject object;
    if (!reader.takes("{")) return std::nullopt;
    do {
        const auto name = reader.text();
        if (!name || !reader.takes(":")) return std::nullopt;
        auto& value = object[*name];
        if (reader.takes(NULL_VALUE)) continue;
        value = reader.number();
        if (!value) value = reader.text();
        if (!value) return std::nullopt;
    } while (reader.takes(","));
    return reader.takes("}") && reader.is_at_end() ? std::optional(object) : std::nullopt;
}
