#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "logs/log_files.h"
#include "logs/record_rule.h"

// The reader of the region's log files: filters in, counters out.

/// A filter that every record passes.
inline constexpr char ANY_LOG_ENTRY[] = ":";

/// The four texts that a record must hold (in any case) to be counted. Reset to ANY_LOG_ENTRY by
/// the main loop before every request; set by the query drivers.
extern std::string GLOBAL_TEST_STRING_1;
extern std::string GLOBAL_TEST_STRING_2;
extern std::string GLOBAL_TEST_STRING_3;
extern std::string GLOBAL_TEST_STRING_4;

// The results, all set anew by every get_query_data and read by the page writers.

/// Time queries: allowed (or counted) and denied records per day cell, 0 being today. Bar
/// queries: cell_success counts per bit or key number.
extern std::array<std::uint32_t, QUERY_DAYS> cell_success;
extern std::array<std::uint32_t, QUERY_DAYS> cell_denied;
/// 1 where a record passed the filters for that day or number.
extern std::array<std::int32_t, QUERY_DAYS> cell_read;
/// The largest count; cell_max is the largest daily total (time) or the largest count (bar). The
/// time graphs then set cell_max to their own scale.
extern std::uint32_t cell_success_max;
extern std::uint32_t cell_denied_max;
extern std::uint32_t cell_max;
/// Time queries: the largest day cell of any record up to today, before any filter, so it may
/// exceed 119; -1 without records.
extern std::int32_t first_cell_read;
/// Query 5: the largest key number counted; -1 when none was.
extern std::int32_t highest_key_read;
/// The smallest record time read by the last query.
extern std::int64_t earliest_read_time;
/// Labels: one per day (time queries), or the first and last date of the period (bar queries).
extern std::array<std::string, QUERY_DAYS> cell_time;

/// What query 1 to 6 asks of each record with the filters, edition and period that are set.
RecordQuery record_query(int query);

/// Reads all log files and fills the results for query 1 to 6. Shows a warning when there are
/// records older than the queries reach, and a message when there was no data at all. Gripes for
/// any other number.
void get_query_data(int query);
