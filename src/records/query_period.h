#pragma once

#include <array>
#include <cstdint>
#include <ctime>
#include <string>

namespace gatescope {

// The period of time that a query covers, and times as texts.

/// Days that a query shows, and days of records that pruning keeps.
inline constexpr int QUERY_DAYS = 120;
inline constexpr std::int64_t SECONDS_A_DAY = 86400;

/// The days that a query covers. Times are seconds since the epoch.
struct QueryPeriod {
    /// Today's 23:59:59 in local time, the last second of the period.
    std::int64_t end_of_day_time = 0;
    /// The last second before the period.
    std::int64_t start_of_period_time = 0;
    /// Number of day cells, of 86400 seconds each.
    int days_to_show = QUERY_DAYS;
    /// Local time of the query: second, minute, hour, day of the month, month from 0, year from
    /// 1900.
    std::array<int, 6> last_query_time = {};
};

/// The period of `days_to_show` days that ends with the day of `now` (seconds since the epoch).
QueryPeriod set_time_values(int days_to_show = QUERY_DAYS, std::int64_t now = std::time(nullptr));

/// `time` (seconds since the epoch) as "Sun Nov 15 23:59:59 2026", local time, without a line
/// end; the number itself if it exceeds the range of the calendar.
std::string time_text(std::int64_t time);

/// The same without the time of day: "Sun Nov 15 2026", and in ISO 8601: "2026-11-15".
std::string date_text(std::int64_t time);
std::string iso_date_text(std::int64_t time);

}  // namespace gatescope
