#pragma once

#include <string>

#include "logs/query_data.h"
#include "report/bar_lists.h"

namespace gatescope {

// The numbers of a page, for programs: a file beside it that spreadsheets and monitoring systems
// read. It is written where ZUL_GATESCOPE_CSV is "yes" (in any case).

/// Whether the environment asks for the numbers.
bool csv_is_wanted();

/// The numbers of query 1 to 6 as RFC 4180 has them, lines ended by CR and LF: a header line, then
/// one for each day of the period, the oldest first, or for each bit or key that the page shows.
std::string csv_of(const QueryResult& result, const KeyLines& lines);

/// The name of the numbers beside the page at `page_path`.
std::string csv_path(const std::string& page_path);

/// Puts `csv` into a file at `path`, in place of whatever file or link has that name: whole, or not
/// at all. Gripes, with nothing changed, when that cannot be done.
void store_csv(const std::string& path, const std::string& csv);

}  // namespace gatescope
