#include "records/query_period.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <ctime>
#include <limits>
#include <string>

namespace gatescope {
namespace {

/// Sets the local time zone until the end of the scope.
class TimeZone {
  public:
    explicit TimeZone(const char* zone) {
        setenv("TZ", zone, 1);
        tzset();
    }
    ~TimeZone() {
        unsetenv("TZ");
        tzset();
    }
};

TEST(QueryPeriod, EndsAtTheLastSecondOfTheLocalDay) {
    const std::time_t before = std::time(nullptr);
    const std::int64_t end = set_time_values().end_of_day_time;
    EXPECT_GE(end, before);
    EXPECT_LE(end - before, SECONDS_A_DAY + 3600);
    const std::time_t seconds = end;
    const std::tm local = *std::localtime(&seconds);
    EXPECT_EQ(local.tm_hour, 23);
    EXPECT_EQ(local.tm_min, 59);
    EXPECT_EQ(local.tm_sec, 59);
}

TEST(QueryPeriod, EndsAfterNowIfTheClockTurnsBackAtMidnight) {
    struct {
        const char* zone;
        std::int64_t first_end;
    } const days[] = {{"<-04>4<-03>,M9.1.6/24,M4.1.6/24", 1775357999},
                      {"<-02>2<-01>,M3.5.0/-1,M10.5.0/0", 1792889999}};
    for (const auto& [name, first_end] : days) {
        const TimeZone zone(name);
        const auto end_seen_at = [](std::int64_t now) {
            return set_time_values(QUERY_DAYS, now).end_of_day_time;
        };
        for (const std::int64_t end : {first_end, first_end + 3600}) {
            EXPECT_THAT(time_text(end), testing::HasSubstr(" 23:59:59 "));
        }
        for (const std::int64_t before : {20 * 3600, 3600, 1, 0}) {
            // The C library chooses one of the two.
            EXPECT_THAT(end_seen_at(first_end - before),
                        testing::AnyOf(first_end, first_end + 3600))
                << name << " " << before;
        }
        for (const std::int64_t after : {1, 2, 1800, 3599, 3600}) {
            EXPECT_EQ(end_seen_at(first_end + after), first_end + 3600) << name << " " << after;
        }
        EXPECT_EQ(end_seen_at(first_end + 3601), first_end + 3600 + SECONDS_A_DAY) << name;
        const QueryPeriod period = set_time_values(QUERY_DAYS, first_end + 1);
        EXPECT_EQ(period.start_of_period_time, first_end + 3600 - QUERY_DAYS * SECONDS_A_DAY);
    }
}

TEST(QueryPeriod, HasOneEndIfTheClockChangesAtAnotherHour) {
    const TimeZone zone("CET-1CEST,M3.5.0,M10.5.0/3");
    constexpr std::int64_t ENDS[] = {1792969199, 1774821599};
    constexpr std::int64_t HOURS[] = {25, 23};
    for (int day = 0; day < 2; ++day) {
        for (std::int64_t hour = 0; hour < HOURS[day]; ++hour) {
            EXPECT_EQ(set_time_values(QUERY_DAYS, ENDS[day] - hour * 3600).end_of_day_time,
                      ENDS[day]);
        }
    }
}

TEST(QueryPeriod, StoresTheTimeOfTheCall) {
    const std::time_t before = std::time(nullptr);
    const auto last_query_time = set_time_values().last_query_time;
    std::tm local = {};
    local.tm_sec = last_query_time[0];
    local.tm_min = last_query_time[1];
    local.tm_hour = last_query_time[2];
    local.tm_mday = last_query_time[3];
    local.tm_mon = last_query_time[4];
    local.tm_year = last_query_time[5];
    local.tm_isdst = -1;
    const std::time_t remembered = std::mktime(&local);
    EXPECT_GE(remembered, before);
    EXPECT_LE(remembered, std::time(nullptr));
}

TEST(QueryPeriod, HasTheGivenNumberOfDays) {
    const QueryPeriod week = set_time_values(7);
    EXPECT_EQ(week.days_to_show, 7);
    EXPECT_EQ(week.end_of_day_time - week.start_of_period_time, 7 * 86400);
    const QueryPeriod period = set_time_values();
    EXPECT_EQ(period.days_to_show, 120);
    EXPECT_EQ(period.end_of_day_time - period.start_of_period_time, 120 * 86400);
}

TEST(TimeTexts, EqualThoseOfTheCLibrary) {
    const TimeZone zone("UTC");
    constexpr std::array<std::time_t, 4> times = {0, 1794787199, 951782400, 4102444800};
    for (const std::time_t time : times) {
        std::string expected = std::asctime(std::gmtime(&time));
        expected.pop_back();
        EXPECT_EQ(time_text(time), expected);
        expected.erase(11, 9);
        EXPECT_EQ(date_text(time), expected);
    }
    EXPECT_EQ(time_text(1794787199), "Sun Nov 15 23:59:59 2026");
    EXPECT_EQ(date_text(1794787199), "Sun Nov 15 2026");
}

TEST(TimeTexts, PadDaysOfOneDigit) {
    const TimeZone zone("UTC");
    EXPECT_EQ(date_text(5 * SECONDS_A_DAY), "Tue Jan  6 1970");
}

TEST(TimeTexts, UseLocalTime) {
    const TimeZone zone("XYZ-3");
    EXPECT_EQ(time_text(0), "Thu Jan  1 03:00:00 1970");
}

TEST(TimeTexts, ExpressTimesAfter2038) {
    const TimeZone zone("UTC");
    EXPECT_EQ(time_text(2147483648), "Tue Jan 19 03:14:08 2038");
}

TEST(TimeTexts, ExpressTimesBeyondTheCalendarAsNumbers) {
    const TimeZone zone("UTC");
    EXPECT_EQ(time_text(253402300800), "Sat Jan  1 00:00:00 10000");
    EXPECT_EQ(date_text(67767976233532800), "Wed Jan  1 2147483648");
    constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
    constexpr std::int64_t smallest = std::numeric_limits<std::int64_t>::min();
    EXPECT_EQ(time_text(largest), "9223372036854775807");
    EXPECT_EQ(date_text(smallest), "-9223372036854775808");
}

}  // namespace
}  // namespace gatescope
