#pragma once

#include <string>

#include "logs/query_data.h"

namespace gatescope {

// What the text box under a time graph shows for a day's bar, from what the logs hold. `number` is
// the day cell, 0 being today; `what` names what was counted, for the graphs that count one thing
// only.

std::string title_of_allowed(const QueryResult& result, int number, const char* what);
std::string title_of_denied(const QueryResult& result, int number, const char* what);
std::string title_of_invoked(const QueryResult& result, int number, const char* what);
std::string title_of_invoked_to_deny(const QueryResult& result, int number, const char* what);

}  // namespace gatescope
