#include "history/change_list.h"

#include <algorithm>
#include <array>
#include <numeric>

#include "messages/history_texts.h"

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

std::string cut_to(std::string_view text, std::size_t length) {
    if (length_of(text) <= length) return std::string(text);
    std::string_view rest = text;
    for (; length > 1; --length) rest.remove_prefix(utf8_size(rest));
    return std::string(text.substr(0, text.size() - rest.size())) + CUT_HERE;
}

std::string padded(std::string_view text, std::size_t length, bool to_the_right = false) {
    const std::string padding(length - std::min(length_of(text), length), ' ');
    return to_the_right ? padding + std::string(text) : std::string(text) + padding;
}

/// How much of `room` the first of two texts of these lengths gets, which share it.
std::size_t share_of_first(std::size_t first, std::size_t second, std::size_t room) {
    const std::size_t left_by_second = room - std::min(second, room);
    return std::min(first, std::max({room / 2, left_by_second, SHORTEST}));
}

std::string value_text(const std::optional<std::string>& value) {
    if (!value) return NO_VALUE;
    return value->empty() ? EMPTY_VALUE : harmless(*value);
}

/// "2026-11-22T01:15:30+01:00" without the place's offset.
std::string time_text(std::string time) {
    std::replace(time.begin(), time.end(), 'T', ' ');
    return harmless(time).substr(0, std::string_view("2026-11-22 01:15:30").size());
}

/// Number, time, operator, action, item.
constexpr std::size_t ITEM = 4;
using Columns = std::array<std::string, ITEM + 1>;

Columns columns_of(const PastChange& change) {
    return {std::to_string(change.number), time_text(change.text("time")),
            harmless(change.text("operator")), harmless(change.text("action")),
            harmless(change.text("item"))};
}

}  // namespace

std::string harmless(std::string_view text) {
    std::string result;
    for (std::size_t size = 0; !text.empty(); text.remove_prefix(size)) {
        size = std::max<std::size_t>(utf8_size(text), 1);
        const std::string_view character = text.substr(0, size);
        const bool is_control = character < " " || character == "\x7F" ||
                                (character >= "\xC2\x80" && character < "\xC2\xA0");
        result += is_control || utf8_size(text) == 0 ? "?" : character;
    }
    return result;
}

std::string list_of(const std::vector<PastChange>& changes, std::size_t width) {
    std::array<std::size_t, ITEM + 1> widths = {};
    std::size_t values = 0;
    for (const PastChange& change : changes) {
        const Columns columns = columns_of(change);
        for (std::size_t i = 0; i <= ITEM; ++i) {
            widths[i] = std::max(widths[i], length_of(columns[i]));
        }
        values = std::max(values, length_of(value_text(change.record.at("from")) + ARROW +
                                            value_text(change.record.at("to"))));
    }
    std::size_t room = std::string::npos;
    if (width > 0) {
        const std::size_t used = std::accumulate(widths.begin(), widths.end() - 1, 5 * GAP.size());
        room = width - std::min(used, width);
        widths[ITEM] = share_of_first(widths[ITEM], values, room);
        room -= std::min(room, widths[ITEM] + length_of(ARROW));
    }
    std::string list;
    for (const PastChange& change : changes) {
        const Columns columns = columns_of(change);
        for (std::size_t i = 0; i <= ITEM; ++i) {
            list += padded(cut_to(columns[i], widths[i]), widths[i], i == 0).append(GAP);
        }
        const std::string from = value_text(change.record.at("from"));
        const std::string to = value_text(change.record.at("to"));
        const std::size_t for_from = share_of_first(length_of(from), length_of(to), room);
        const std::size_t for_to = share_of_first(length_of(to), length_of(from), room);
        list.append(cut_to(from, for_from)).append(ARROW).append(cut_to(to, for_to)) += '\n';
    }
    return list;
}
