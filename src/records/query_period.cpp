#include "records/query_period.h"

#include "base/filled.h"

namespace gatescope {
namespace {

constexpr std::array<const char*, 7> WEEKDAYS = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
constexpr std::array<const char*, 12> MONTHS = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

/// Converts `time` to local time; false if it exceeds the range of the calendar.
bool to_local_time(std::int64_t time, std::tm* local) {
    const std::time_t seconds = time;
    return localtime_r(&seconds, local) != nullptr;
}

std::size_t as_index(int calendar_field) {
    return static_cast<std::size_t>(calendar_field);
}

/// "Sun Nov 15".
std::string day_text(const std::tm& local) {
    return filled("%s %s%3d", WEEKDAYS[as_index(local.tm_wday)], MONTHS[as_index(local.tm_mon)],
                  local.tm_mday);
}

/// The last second of the day of `now`, whose local time is `local`. If the clock is turned back at
/// midnight, 23:59:59 occurs twice: the second one is returned once the first has passed.
std::int64_t end_of_day(std::int64_t now, const std::tm& local) {
    std::tm last = local;
    last.tm_hour = 23;
    last.tm_min = 59;
    last.tm_sec = 59;
    // Daylight-saving time may begin or end later on the same day.
    last.tm_isdst = -1;
    const std::int64_t end = std::mktime(&last);
    if (end >= now) return end;
    return now + (23 - local.tm_hour) * 3600 + (59 - local.tm_min) * 60 + (59 - local.tm_sec);
}

long long year_of(const std::tm& local) {
    return 1900LL + local.tm_year;
}

}  // namespace

QueryPeriod set_time_values(int days_to_show, std::int64_t now) {
    QueryPeriod period;
    period.days_to_show = days_to_show;
    std::tm local = {};
    to_local_time(now, &local);
    period.last_query_time = {local.tm_sec,  local.tm_min, local.tm_hour,
                              local.tm_mday, local.tm_mon, local.tm_year};
    period.end_of_day_time = end_of_day(now, local);
    period.start_of_period_time = period.end_of_day_time - days_to_show * SECONDS_A_DAY;
    return period;
}

std::string time_text(std::int64_t time) {
    std::tm local = {};
    if (!to_local_time(time, &local)) return std::to_string(time);
    return filled("%s %02d:%02d:%02d %lld", day_text(local).c_str(), local.tm_hour, local.tm_min,
                  local.tm_sec, year_of(local));
}

std::string date_text(std::int64_t time) {
    std::tm local = {};
    if (!to_local_time(time, &local)) return std::to_string(time);
    return filled("%s %lld", day_text(local).c_str(), year_of(local));
}

std::string iso_date_text(std::int64_t time) {
    std::tm local = {};
    if (!to_local_time(time, &local)) return std::to_string(time);
    return filled("%04lld-%02d-%02d", year_of(local), local.tm_mon + 1, local.tm_mday);
}

}  // namespace gatescope
