#pragma once

#include <string>

#include "logs/query_data.h"
#include "report/bar_lists.h"
#include "report/page_display.h"

namespace gatescope {

/// What a query shows.
struct QueryGraph {
    /// The heading of the page; may hold HTML.
    std::string graph_title;
    QueryResult result;
    /// Query 5: at least the keys up to the highest one counted.
    KeyLines key_lines;
};

/// Writes the page of query 1 to 6 into the results directory, and its numbers beside it where they
/// are wanted, and shows the page in a browser or, without `display`, names it on standard output.
/// Gripes when either cannot be written.
void Make_Graph(const QueryGraph& graph, const PageRegion& region, bool display);

}  // namespace gatescope
