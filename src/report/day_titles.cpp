#include "report/day_titles.h"

#include "base/filled.h"
#include "messages/day_title_texts.h"
#include "report/bars.h"

namespace gatescope {
namespace {

/// The counts and the label of one day.
struct Day {
    Day(const QueryResult& result, int cell)
        : allowed(result.cell_success.at(static_cast<std::size_t>(cell))),
          denied(result.cell_denied.at(static_cast<std::size_t>(cell))),
          total(allowed + denied),
          label(result.cell_time.at(static_cast<std::size_t>(cell)).c_str()) {}

    std::uint32_t allowed;
    std::uint32_t denied;
    std::uint32_t total;
    const char* label;
};

}  // namespace

std::string title_of_allowed(const QueryResult& result, int cell, const char* /*noun*/) {
    const Day day(result, cell);
    if (day.total == 0) return filled(TITLE_NO_COMMANDS, day.label);
    if (day.allowed == 0) return filled(TITLE_NONE_ALLOWED, day.total, day.label);
    return filled(TITLE_ALLOWED, day.allowed, percentages(day.allowed, day.denied).allowed,
                  day.total, day.label);
}

std::string title_of_denied(const QueryResult& result, int cell, const char* /*noun*/) {
    const Day day(result, cell);
    if (day.total == 0) return filled(TITLE_NO_COMMANDS, day.label);
    if (day.denied == 0) return filled(TITLE_NONE_DENIED, day.total, day.label);
    return filled(TITLE_DENIED, day.denied, percentages(day.allowed, day.denied).denied, day.total,
                  day.label);
}

std::string title_of_invoked(const QueryResult& result, int cell, const char* noun) {
    const Day day(result, cell);
    return filled(TITLE_INVOKED, noun, day.allowed, day.label);
}

std::string title_of_invoked_to_deny(const QueryResult& result, int cell, const char* noun) {
    const Day day(result, cell);
    return filled(TITLE_INVOKED_TO_DENY, noun, day.denied, day.label);
}

}  // namespace gatescope
