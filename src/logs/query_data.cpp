#include "logs/query_data.h"

#include <algorithm>
#include <vector>

#include "base/filled.h"
#include "dialog/messages.h"
#include "logs/log_files.h"
#include "logs/log_tally.h"
#include "messages/log_texts.h"

namespace gatescope {
namespace {

/// Records so much older than the query period cause a warning.
constexpr std::int64_t WARNING_DISTANCE = 10 * SECONDS_A_DAY;

std::string day_label(const QueryPeriod& period, int cell) {
    const std::string noon =
        date_text(period.end_of_day_time - SECONDS_A_DAY / 2 - cell * SECONDS_A_DAY);
    if (cell == 0) return filled(LABEL_TODAY, noon.c_str());
    if (cell == 1) return filled(LABEL_YESTERDAY, noon.c_str());
    return filled(LABEL_DAYS_AGO, noon.c_str(), cell);
}

std::vector<std::string> log_paths(const std::string& logging_dir) {
    std::vector<std::string> paths;
    paths.reserve(NUMBER_OF_LOG_FILES);
    for (int number = 0; number < NUMBER_OF_LOG_FILES; ++number) {
        paths.push_back(log_file_path(logging_dir, number));
    }
    return paths;
}

void set_cells(const RecordTally& tally, QueryResult* result) {
    for (std::size_t i = 0; i < result->cell_read.size(); ++i) {
        const auto& row = tally.rows[i];
        result->cell_success[i] = row[ALLOWED];
        result->cell_denied[i] = row[DENIED];
        result->cell_read[i] = row[SEEN] + row[ALLOWED] + row[DENIED] != 0;
    }
}

/// The day cell of the earliest record, which is the largest one.
std::int32_t first_cell(std::int64_t end_of_day_time, std::int64_t earliest) {
    if (earliest > end_of_day_time) return -1;
    constexpr std::int64_t LARGEST = std::numeric_limits<std::int32_t>::max();
    const bool is_in_range = earliest > end_of_day_time - LARGEST * SECONDS_A_DAY;
    return static_cast<std::int32_t>(is_in_range ? day_cell(end_of_day_time, earliest) : LARGEST);
}

void describe_days(QueryResult* result) {
    const QueryPeriod& period = result->asked.period;
    for (int cell = 0; cell < QUERY_DAYS; ++cell) {
        const auto i = static_cast<std::size_t>(cell);
        result->cell_time[i] = day_label(period, cell);
        const std::uint32_t allowed = result->cell_success[i];
        const std::uint32_t denied = result->cell_denied[i];
        result->cell_success_max = std::max(result->cell_success_max, allowed);
        result->cell_denied_max = std::max(result->cell_denied_max, denied);
        result->cell_max = std::max(result->cell_max, allowed + denied);
    }
    result->first_cell_read = first_cell(period.end_of_day_time, result->earliest_read_time);
}

void describe_numbers(QueryResult* result) {
    result->cell_time[0] = date_text(result->asked.period.start_of_period_time);
    result->cell_time[1] = date_text(result->asked.period.end_of_day_time);
    const auto& counts = result->cell_success;
    result->cell_max = *std::max_element(counts.begin(), counts.end());
    if (result->asked.query != 5) return;
    for (std::size_t i = 0; i < counts.size(); ++i) {
        if (counts[i] != 0) result->highest_key_read = static_cast<std::int32_t>(i);
    }
}

std::vector<std::string> advice_on(const RecordTally& tally, const QueryPeriod& period) {
    std::vector<std::string> advice;
    if (tally.earliest <= period.start_of_period_time - WARNING_DISTANCE) {
        advice.push_back(filled(CONSIDER_PRUNING, time_text(tally.earliest).c_str(),
                                time_text(period.start_of_period_time).c_str()));
    }
    if (!tally.data_seen) advice.emplace_back(NO_DATA);
    return advice;
}

}  // namespace

QueryResult get_query_data(const RecordQuery& query, const std::string& logging_dir) {
    if (!counts_per_day(query.query) && !counts_per_number(query.query)) {
        gripe_uncoded("get_query_data");
    }
    const RecordTally tally = tally_logs(query, log_paths(logging_dir));
    QueryResult result;
    result.asked = query;
    result.earliest_read_time = tally.earliest;
    set_cells(tally, &result);
    if (counts_per_day(query.query)) {
        describe_days(&result);
    } else {
        describe_numbers(&result);
    }
    result.advice = advice_on(tally, query.period);
    return result;
}

}  // namespace gatescope
