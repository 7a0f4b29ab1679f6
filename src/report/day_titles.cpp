#include "report/day_titles.h"

#include "base/filled.h"
#include "logs/query_data.h"
#include "messages/time_graph_texts.h"
#include "report/bars.h"

namespace {

/// What the log reader left for one day.
struct Day {
    explicit Day(int number)
        : allowed(cell_success.at(static_cast<std::size_t>(number))),
          denied(cell_denied.at(static_cast<std::size_t>(number))),
          total(allowed + denied),
          label(cell_time.at(static_cast<std::size_t>(number)).c_str()) {}

    std::uint32_t allowed;
    std::uint32_t denied;
    std::uint32_t total;
    const char* label;
};

}  // namespace

std::string title_of_allowed(int number, const char* /*what*/) {
    const Day day(number);
    if (day.total == 0) return filled(TITLE_NO_COMMANDS, day.label);
    if (day.allowed == 0) return filled(TITLE_NONE_ALLOWED, day.total, day.label);
    return filled(TITLE_ALLOWED, day.allowed, percentages(day.allowed, day.denied).allowed,
                  day.total, day.label);
}

std::string title_of_denied(int number, const char* /*what*/) {
    const Day day(number);
    if (day.total == 0) return filled(TITLE_NO_COMMANDS, day.label);
    if (day.denied == 0) return filled(TITLE_NONE_DENIED, day.total, day.label);
    return filled(TITLE_DENIED, day.denied, percentages(day.allowed, day.denied).denied, day.total,
                  day.label);
}

std::string title_of_invoked(int number, const char* what) {
    const Day day(number);
    return filled(TITLE_INVOKED, what, day.allowed, day.label);
}

std::string title_of_invoked_to_deny(int number, const char* what) {
    const Day day(number);
    return filled(TITLE_INVOKED_TO_DENY, what, day.denied, day.label);
}
