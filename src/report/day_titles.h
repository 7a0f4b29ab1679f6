#pragma once

#include <string>

// What the text box under a time graph shows for a day's bar, from the counters of the last
// get_query_data. `day` is the day cell; `what` names what was counted, for the graphs that
// count one thing only.

std::string title_of_allowed(int day, const char* what);
std::string title_of_denied(int day, const char* what);
std::string title_of_invoked(int day, const char* what);
std::string title_of_invoked_to_deny(int day, const char* what);
