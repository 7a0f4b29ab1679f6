#pragma once

#include "logs/query_data.h"
#include "report/page.h"

namespace gatescope {

// The pages of the time queries: 120 narrow columns, one a day, the oldest on the left. Each graph
// has its own scale, whatever cell_max is.

/// Allowed commands above a middle line, denied ones below it.
void Display_Graph__twist(const QueryResult& result, Page* page);

/// One bar a day: how often `what` ("bits") was used.
void Display_Graph__success_only(const QueryResult& result, const char* what, Page* page);

/// One bar a day: how often `what` ("keys") denied a command.
void Display_Graph__denied_only(const QueryResult& result, const char* what, Page* page);

}  // namespace gatescope
