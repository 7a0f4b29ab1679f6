#pragma once

#include <cstdio>
#include <string>

/// The page being written. Set by Make_Graph; read by the page writers.
extern FILE* DISPLAY_STREAM;
/// The heading of the page; may hold HTML. Set by the query drivers.
extern std::string graph_title;
/// The browser's path; empty until a page is first displayed. Set when one is.
extern std::string browser;

/// Writes the page of query 1 to 6 from the counters of the last get_query_data into the results
/// directory, and shows it in a browser or, without `display`, names it on standard output. Gripes
/// when the page cannot be written.
void Make_Graph(int query, bool display);
