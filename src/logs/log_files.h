#pragma once

#include <array>
#include <cstdint>
#include <ctime>
#include <string>

namespace gatescope {

// Where the region's log files are, and the period of time that the queries look at.

/// Log files are numbered 0 to 20.
inline constexpr int NUMBER_OF_LOG_FILES = 21;
/// Demo records go to this one.
inline constexpr int DEMO_LOG_FILE = 20;
/// Days that a query shows; also the days of records that pruning keeps.
inline constexpr int QUERY_DAYS = 120;
inline constexpr std::int64_t SECONDS_A_DAY = 86400;

/// The files of a region's logging directory: the log file and its pruning companion by number, the
/// pruner's scratch file and its token.
std::string log_file_path(const std::string& logging_dir, int number);
std::string pruning_companion_path(const std::string& logging_dir, int number);
std::string pruning_scratch_path(const std::string& logging_dir);
std::string pruning_token_path(const std::string& logging_dir);

/// The days that are looked at. Times are seconds since the epoch.
struct QueryPeriod {
    /// Today's 23:59:59 in local time, the last second of the period.
    std::int64_t end_of_day_time = 0;
    /// The last second before the period.
    std::int64_t start_of_period_time = 0;
    /// Number of day cells, of 86400 seconds each.
    int days_to_show = QUERY_DAYS;
    /// The moment when the period was taken: second, minute, hour, day of the month, month from 0,
    /// year from 1900, in local time.
    std::array<int, 6> last_query_time = {};
};

/// The period of so many days that ends with today, which is the day of `now` (seconds since the
/// epoch).
QueryPeriod set_time_values(int days_to_show = QUERY_DAYS, std::int64_t now = std::time(nullptr));

/// `time` (seconds since the epoch) as "Sun Nov 15 23:59:59 2026", local time, without a line
/// end; the bare number where the calendar cannot express it.
std::string time_text(std::int64_t time);

/// The same without the clock time: "Sun Nov 15 2026"; and as ISO 8601 has it: "2026-11-15".
std::string date_text(std::int64_t time);
std::string iso_date_text(std::int64_t time);

}  // namespace gatescope
