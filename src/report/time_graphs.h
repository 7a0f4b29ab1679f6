#pragma once

#include "logs/query_data.h"
#include "report/page.h"

namespace gatescope {

// The pages of the time queries: 120 narrow columns, one a day, the oldest on the left. The scales
// are the maxima of the bars shown, not cell_max.

/// Allowed commands above a middle line, denied ones below it.
void Display_Graph__twist(const QueryResult& result, Page* page);

/// One bar a day: the uses of `noun` ("bits").
void Display_Graph__success_only(const QueryResult& result, const char* noun, Page* page);

/// One bar a day: the denials by `noun` ("keys").
void Display_Graph__denied_only(const QueryResult& result, const char* noun, Page* page);

}  // namespace gatescope
