#pragma once

#include <string>

#include "logs/query_data.h"
#include "report/bar_lists.h"

namespace gatescope {

// The numbers of a page as a CSV file beside it, for spreadsheets and monitoring systems. It is
// written if ZUL_GATESCOPE_CSV is "yes" (in any case).

/// Whether the environment requests the CSV file.
bool csv_is_requested();

/// The numbers of query 1 to 6 in the format of RFC 4180, lines ended by CR LF: a header line, then
/// one for each day of the period, the oldest first, or for each bit or key that the page shows.
std::string csv_of(const QueryResult& result, const KeyLines& lines);

/// The path of the CSV file beside the page at `page_path`.
std::string csv_path(const std::string& page_path);

/// Atomically replaces the file or symbolic link at `path` by a file with the content `csv`, or
/// creates it. Gripes, with nothing changed, if that fails.
void store_csv(const std::string& path, const std::string& csv);

}  // namespace gatescope
