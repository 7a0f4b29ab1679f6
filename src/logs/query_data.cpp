#include "logs/query_data.h"

#include <algorithm>
#include <limits>
#include <string>
#include <vector>

#include "base/filled.h"
#include "base/process_end.h"
#include "base/text.h"
#include "dialog/messages.h"
#include "logs/log_tally.h"
#include "logs/record_rule.h"
#include "messages/log_texts.h"
#include "policy/edition.h"

std::string GLOBAL_TEST_STRING_1 = ANY_LOG_ENTRY;
std::string GLOBAL_TEST_STRING_2 = ANY_LOG_ENTRY;
std::string GLOBAL_TEST_STRING_3 = ANY_LOG_ENTRY;
std::string GLOBAL_TEST_STRING_4 = ANY_LOG_ENTRY;

std::array<std::uint32_t, QUERY_DAYS> cell_success = {};
std::array<std::uint32_t, QUERY_DAYS> cell_denied = {};
std::array<std::int32_t, QUERY_DAYS> cell_read = {};
std::uint32_t cell_success_max = 0;
std::uint32_t cell_denied_max = 0;
std::uint32_t cell_max = 0;
std::int32_t first_cell_read = -1;
std::int32_t highest_key_read = -1;
std::int64_t earliest_read_time = std::numeric_limits<std::int64_t>::max();
std::array<std::string, QUERY_DAYS> cell_time;

namespace {

/// Records that lie this much before the query period are worth a warning.
constexpr std::int64_t WARNING_DISTANCE = 10 * SECONDS_A_DAY;

void reset_results() {
    first_cell_read = -1;
    highest_key_read = -1;
    cell_success_max = 0;
    cell_denied_max = 0;
    cell_max = 0;
    cell_success.fill(0);
    cell_denied.fill(0);
    cell_read.fill(0);
}

void set_query_period() {
    days_to_show = QUERY_DAYS;
    start_of_period_time = end_of_day_time - days_to_show * SECONDS_A_DAY;
}

std::string day_label(int cell) {
    const std::string noon = date_text(end_of_day_time - SECONDS_A_DAY / 2 - cell * SECONDS_A_DAY);
    if (cell == 0) return filled(LABEL_TODAY, noon.c_str());
    if (cell == 1) return filled(LABEL_YESTERDAY, noon.c_str());
    return filled(LABEL_DAYS_AGO, noon.c_str(), cell);
}

void set_labels(int query) {
    if (counts_per_number(query)) {
        cell_time[0] = date_text(start_of_period_time);
        cell_time[1] = date_text(end_of_day_time);
        return;
    }
    for (int cell = 0; cell < QUERY_DAYS; ++cell) {
        cell_time[static_cast<std::size_t>(cell)] = day_label(cell);
    }
}

std::vector<std::string> log_paths() {
    std::vector<std::string> paths;
    for (int number = 0; number < NUMBER_OF_LOG_FILES; ++number) {
        paths.push_back(log_file_path(number));
    }
    return paths;
}

void set_cells(const RecordTally& tally) {
    for (std::size_t i = 0; i < cell_read.size(); ++i) {
        const auto& row = tally.rows[i];
        cell_success[i] = row[ALLOWED];
        cell_denied[i] = row[DENIED];
        cell_read[i] = row[SEEN] + row[ALLOWED] + row[DENIED] != 0;
    }
}

void set_day_maxima(const RecordTally& tally) {
    for (std::size_t i = 0; i < cell_read.size(); ++i) {
        cell_success_max = std::max(cell_success_max, cell_success[i]);
        cell_denied_max = std::max(cell_denied_max, cell_denied[i]);
        cell_max = std::max(cell_max, cell_success[i] + cell_denied[i]);
    }
    // The largest day cell is that of the earliest record.
    if (tally.earliest > end_of_day_time) return;
    constexpr std::int64_t LARGEST = std::numeric_limits<std::int32_t>::max();
    const bool countable = tally.earliest > end_of_day_time - LARGEST * SECONDS_A_DAY;
    first_cell_read =
        static_cast<std::int32_t>(countable ? day_cell(end_of_day_time, tally.earliest) : LARGEST);
}

void set_number_maxima(int query) {
    cell_max = *std::max_element(cell_success.begin(), cell_success.end());
    if (query != 5) return;
    for (std::size_t i = 0; i < cell_success.size(); ++i) {
        if (cell_success[i] != 0) highest_key_read = static_cast<std::int32_t>(i);
    }
}

void tell_about_the_data(const RecordTally& tally) {
    if (tally.earliest <= start_of_period_time - WARNING_DISTANCE) {
        TMSG = filled(CONSIDER_PRUNING, time_text(tally.earliest).c_str(),
                      time_text(start_of_period_time).c_str());
        advise(TMSG);
    }
    if (!tally.data_seen) advise(NO_DATA);
}

}  // namespace

RecordQuery record_query(int query) {
    RecordQuery asked;
    asked.query = query;
    asked.edition = GATEWARDEN_IS;
    asked.filters = {GLOBAL_TEST_STRING_1, GLOBAL_TEST_STRING_2, GLOBAL_TEST_STRING_3,
                     GLOBAL_TEST_STRING_4};
    for (std::string& filter : asked.filters) {
        filter = c_text(filter);
        STRING_LOWER(filter);
    }
    asked.period_start = start_of_period_time;
    asked.period_end = end_of_day_time;
    return asked;
}

void get_query_data(int query) {
    set_time_values();
    reset_results();
    if (!counts_per_day(query) && !counts_per_number(query)) gripe_uncoded("get_query_data");
    set_query_period();
    set_labels(query);
    const RecordTally tally = tally_logs(record_query(query), log_paths());
    earliest_read_time = tally.earliest;
    set_cells(tally);
    if (counts_per_day(query)) {
        set_day_maxima(tally);
    } else {
        set_number_maxima(query);
    }
    tell_about_the_data(tally);
}
