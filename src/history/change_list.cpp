#include "history/change_list.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <vector>

#include "base/utf8.h"
#include "messages/history_texts.h"

namespace gatescope {
namespace {

/// A text as a terminal may show it, character by character.
using Characters = std::vector<std::string>;

/// Number, time, operator, action, item.
constexpr std::size_t COLUMNS = 5;
using Columns = std::array<Characters, COLUMNS>;

constexpr std::size_t GAP = 2;
/// The least that two values get, on however narrow a terminal.
constexpr std::size_t LEAST_ROOM = 16;

Characters cut_to(std::size_t length, Characters text) {
    if (text.size() <= length) return text;
    text.resize(length);
    text.back() = CUT_HERE;
    return text;
}

std::string joined(const Characters& text) {
    return std::accumulate(text.begin(), text.end(), std::string());
}

Columns columns_of(const PastChange& change) {
    // "2026-11-22T01:15:30+01:00" without the place's offset.
    std::string time =
        change.text("time").substr(0, std::string_view("2026-11-22T01:15:30").size());
    std::replace(time.begin(), time.end(), 'T', ' ');
    return {shown_characters(std::to_string(change.number)), shown_characters(time),
            shown_characters(change.text("operator")), shown_characters(change.text("action")),
            shown_characters(change.text("item"))};
}

Characters value_of(const PastChange& change, const char* member) {
    const auto value = change.value(member);
    return value ? shown_characters(value->empty() ? EMPTY_VALUE : *value) : Characters{NO_VALUE};
}

}  // namespace

std::string list_of(const PastChanges& changes, std::size_t width) {
    std::vector<Columns> rows;
    std::array<std::size_t, COLUMNS> widths = {};
    for (const PastChange& change : changes) {
        const Columns& row = rows.emplace_back(columns_of(change));
        for (std::size_t i = 0; i < COLUMNS; ++i) widths[i] = std::max(widths[i], row[i].size());
    }
    widths.back() = std::min(widths.back(), std::max(width, LEAST_ROOM) / 2);
    const std::size_t taken = std::accumulate(widths.begin(), widths.end(),
                                              COLUMNS * GAP + shown_characters(ARROW).size());
    // The two values share what is left, and what one does not need of its half is the other's.
    const std::size_t room = std::max(width - std::min(width, taken), LEAST_ROOM);
    std::string list;
    for (std::size_t row = 0; row < rows.size(); ++row) {
        for (std::size_t i = 0; i < COLUMNS; ++i) {
            Characters column = cut_to(widths[i], rows[row][i]);
            column.resize(widths[i] + GAP, " ");
            list += joined(column);
        }
        const Characters to = value_of(changes[row], "to");
        const Characters from =
            cut_to(room - std::min(to.size(), room / 2), value_of(changes[row], "from"));
        list += joined(from) + ARROW + joined(cut_to(room - from.size(), to)) + '\n';
    }
    return list;
}

}  // namespace gatescope
