#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "records/query_period.h"
#include "records/record_rule.h"

namespace gatescope {

// Counts the records of a region's log files for a query.

/// The counts of a query.
struct QueryResult {
    RecordQuery asked;

    /// Time queries: allowed (or counted) and denied records per day cell, 0 being today. Bar
    /// queries: cell_success counts per bit or key number.
    std::array<std::uint32_t, QUERY_DAYS> cell_success = {};
    std::array<std::uint32_t, QUERY_DAYS> cell_denied = {};
    /// 1 if a record of that day or number passed the filters.
    std::array<std::int32_t, QUERY_DAYS> cell_read = {};
    /// The largest count of a time query.
    std::uint32_t cell_success_max = 0;
    std::uint32_t cell_denied_max = 0;
    /// The largest daily total (time) or the largest count (bar).
    std::uint32_t cell_max = 0;
    /// Time queries: the largest day cell of any record up to today, filtered or not, so it may
    /// exceed 119; -1 without records.
    std::int32_t first_cell_read = -1;
    /// Query 5: the largest key number counted; -1 if none was.
    std::int32_t highest_key_read = -1;
    /// The smallest record time read, in seconds since the epoch; the maximum without records.
    std::int64_t earliest_read_time = std::numeric_limits<std::int64_t>::max();
    /// Labels: one per day (time queries), or the first and last date of the period (bar queries).
    std::array<std::string, QUERY_DAYS> cell_time;

    /// Messages to the operator before the page is made, in this order: that there are records
    /// older than the query period, and that there was no data.
    std::vector<std::string> advice = {};
};

/// Counts the records of all log files of the directory. Gripes for a query other than 1 to 6.
QueryResult get_query_data(const RecordQuery& query, const std::string& logging_dir);

}  // namespace gatescope
