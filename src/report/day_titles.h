#pragma once

#include <string>

#include "logs/query_data.h"

namespace gatescope {

// The titles of the bars, which the text box under a time graph shows. `cell` is the day cell, 0
// being today. `noun` names the things counted, in the graphs with one bar a day.

std::string title_of_allowed(const QueryResult& result, int cell, const char* noun);
std::string title_of_denied(const QueryResult& result, int cell, const char* noun);
std::string title_of_invoked(const QueryResult& result, int cell, const char* noun);
std::string title_of_invoked_to_deny(const QueryResult& result, int cell, const char* noun);

}  // namespace gatescope
