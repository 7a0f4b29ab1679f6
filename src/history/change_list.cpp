#include "history/change_list.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "messages/history_texts.h"

namespace gatescope {
namespace {

constexpr std::string_view GAP = "  ";
/// The least that is left of a value, on however narrow a terminal.
constexpr std::size_t SHORTEST = 8;

/// How many characters a harmless text has.
std::size_t length_of(std::string_view text) {
    std::size_t length = 0;
    for (; !text.empty(); text.remove_prefix(utf8_size(text))) ++length;
    return length;
}

std::string cut_to(std::size_t length, const std::string& text) {
    if (length_of(text) <= length) return text;
    std::string_view rest = text;
    for (; length > 1; --length) rest.remove_prefix(utf8_size(rest));
    return text.substr(0, text.size() - rest.size()) + CUT_HERE;
}

std::string padding(std::size_t length, const std::string& text) {
    return std::string(length - std::min(length_of(text), length), ' ');
}

std::string value_text(const PastChange& change, const char* member) {
    if (!change.has(member)) return NO_VALUE;
    return change.text(member).empty() ? EMPTY_VALUE : harmless(change.text(member));
}

/// Number, time, operator, action, item.
constexpr std::size_t COLUMNS = 5;

std::array<std::string, COLUMNS> columns_of(const PastChange& change) {
    // "2026-11-22T01:15:30+01:00" without the place's offset.
    std::string time = harmless(change.text("time")).substr(0, std::strlen("2026-11-22T01:15:30"));
    std::replace(time.begin(), time.end(), 'T', ' ');
    return {std::to_string(change.number), time, harmless(change.text("operator")),
            harmless(change.text("action")), harmless(change.text("item"))};
}

}  // namespace

std::string harmless(std::string_view text) {
    std::string result;
    for (std::size_t size = 0; !text.empty(); text.remove_prefix(size)) {
        size = std::max<std::size_t>(utf8_size(text), 1);
        const std::string_view character = text.substr(0, size);
        const bool is_control = (character < " " && character != "\t") || character == "\x7F" ||
                                (character >= "\xC2\x80" && character < "\xC2\xA0");
        result += is_control || utf8_size(text) == 0 ? "?" : character;
    }
    return result;
}

std::string list_of(const std::vector<PastChange>& changes, std::size_t width) {
    std::array<std::size_t, COLUMNS> widths = {};
    for (const PastChange& change : changes) {
        const auto columns = columns_of(change);
        for (std::size_t i = 0; i < COLUMNS; ++i) {
            widths[i] = std::max(widths[i], length_of(columns[i]));
        }
    }
    widths.back() = std::min(widths.back(), width / 2);
    std::string list;
    for (const PastChange& change : changes) {
        const auto columns = columns_of(change);
        std::string line = padding(widths[0], columns[0]);
        for (std::size_t i = 0; i < COLUMNS; ++i) {
            const std::string text = cut_to(widths[i], columns[i]);
            line.append(text).append(i == 0 ? "" : padding(widths[i], text)).append(GAP);
        }
        // The two values share what is left, and what one does not need of its half is the other's.
        const std::string from = value_text(change, "from");
        const std::string to = value_text(change, "to");
        const std::size_t room = width - std::min(width, length_of(line) + length_of(ARROW));
        const std::size_t room_for_to = std::max(room / 2, room - std::min(room, length_of(from)));
        const std::size_t room_for_from = std::max(room / 2, room - std::min(room, length_of(to)));
        line += cut_to(std::max(room_for_from, SHORTEST), from) + ARROW;
        list += line + cut_to(std::max(room_for_to, SHORTEST), to) + '\n';
    }
    return list;
}

}  // namespace gatescope
