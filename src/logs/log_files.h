#pragma once

#include <array>
#include <cstdint>
#include <string>

// Where the region's log files are, and the period of time that the queries look at.

/// Log files are numbered 0 to 20.
inline constexpr int NUMBER_OF_LOG_FILES = 21;
/// Demo records go to this one.
inline constexpr int DEMO_LOG_FILE = 20;
/// Days that a query shows; also the days of records that pruning keeps.
inline constexpr int QUERY_DAYS = 120;
inline constexpr std::int64_t SECONDS_A_DAY = 86400;

/// logging_dir's files: the log file and its pruning companion by number, the pruner's scratch
/// file and its token.
std::string log_file_path(int number);
std::string pruning_companion_path(int number);
std::string pruning_scratch_path();
std::string pruning_token_path();

/// Today's 23:59:59 in local time, in seconds since the epoch. Set by set_time_values.
extern std::int64_t end_of_day_time;
/// The moment of the last set_time_values: second, minute, hour, day of the month, month from 0,
/// year from 1900, in local time.
extern std::array<int, 6> last_query_time;
/// Number of day cells and the second before which nothing is inside the period (that second is
/// outside). Set by whoever calls set_time_values, right after the call.
extern int days_to_show;
extern std::int64_t start_of_period_time;

/// Takes the current time; sets and returns end_of_day_time, sets last_query_time.
std::int64_t set_time_values();

/// `time` (seconds since the epoch) as "Sun Nov 15 23:59:59 2026", local time, without a line
/// end; the bare number where the calendar cannot express it.
std::string time_text(std::int64_t time);

/// The same without the clock time: "Sun Nov 15 2026".
std::string date_text(std::int64_t time);
