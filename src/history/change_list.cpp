#include "history/change_list.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <numeric>
#include <tuple>
#include <vector>

#include "base/utf8.h"
#include "messages/history_texts.h"

namespace gatescope {
namespace {

using Characters = std::vector<std::string>;

/// Number, time, operator, action, item.
using Columns = std::array<Characters, 5>;

constexpr char GAP[] = "  ";

/// Characters for both values on the narrowest terminal.
constexpr std::size_t LEAST_ROOM = 16;

/// The text if it has at most `length` characters; else its beginning and an ellipsis.
std::string cut_to(std::size_t length, Characters text) {
    if (text.size() > length) {
        text.resize(length);
        text.back() = CUT_HERE;
    }
    return std::accumulate(text.begin(), text.end(), std::string());
}

Columns columns_of(const ChangeRecord& change) {
    // Without the offset from UTC.
    std::string time = change.text("time").substr(0, std::strlen("2026-11-22T01:15:30"));
    std::replace(time.begin(), time.end(), 'T', ' ');
    return {shown_characters(std::to_string(change.number)), shown_characters(time),
            shown_characters(change.text("operator")), shown_characters(change.text("action")),
            shown_characters(change.text("item"))};
}

Characters value_of(const ChangeRecord& change, const char* member) {
    const auto value = change.value(member);
    return value ? shown_characters(value->empty() ? EMPTY_VALUE : *value) : Characters{NO_VALUE};
}

}  // namespace

std::string list_of(const ChangeRecords& changes, std::size_t width) {
    std::array<std::size_t, std::tuple_size_v<Columns>> widths = {};
    for (const ChangeRecord& change : changes) {
        const Columns row = columns_of(change);
        for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], row[i].size());
    }
    widths.back() = std::min(widths.back(), std::max(width, LEAST_ROOM) / 2);
    std::size_t others = shown_characters(ARROW).size();
    for (const std::size_t column : widths) others += column + std::strlen(GAP);
    const std::size_t room = std::max(width - std::min(width, others), LEAST_ROOM);
    std::string list;
    for (const ChangeRecord& change : changes) {
        Columns row = columns_of(change);
        for (std::size_t i = 0; i < row.size(); ++i) {
            row[i].resize(std::max(row[i].size(), widths[i]), " ");
            list += cut_to(widths[i], row[i]) + GAP;
        }
        // Each value has half of the room, and what the other one leaves of its half.
        const Characters from = value_of(change, "from");
        const Characters to = value_of(change, "to");
        const std::size_t from_room = std::min(from.size(), room - std::min(to.size(), room / 2));
        list += cut_to(from_room, from) + ARROW + cut_to(room - from_room, to) + '\n';
    }
    return list;
}

}  // namespace gatescope
