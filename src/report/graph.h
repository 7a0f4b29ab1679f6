#pragma once

#include <string>

#include "logs/query_data.h"
#include "report/bar_lists.h"
#include "report/page_display.h"

namespace gatescope {

/// The content of a query's page.
struct QueryGraph {
    /// The heading of the page; may contain HTML.
    std::string graph_title;
    QueryResult result;
    /// Query 5: the lines of at least the keys up to the highest one counted.
    KeyLines key_lines;
};

/// Writes the page of query 1 to 6 into the results directory, with its CSV file if that is
/// requested, and shows the page in a browser or, without `display`, prints its path on standard
/// output. Gripes if page or CSV file cannot be written.
void Make_Graph(const QueryGraph& graph, const PageRegion& region, bool display);

}  // namespace gatescope
