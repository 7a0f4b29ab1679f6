#pragma once

#include <string>

// What the text box under a time graph shows for a day's bar, from the counters of the last
// get_query_data. `number` is the day cell; `what` names what was counted, for the graphs that
// count one thing only.

std::string title_of_allowed(int number, const char* what);
std::string title_of_denied(int number, const char* what);
std::string title_of_invoked(int number, const char* what);
std::string title_of_invoked_to_deny(int number, const char* what);
