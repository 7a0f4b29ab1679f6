#include "logs/query_data.h"

#include <limits>
#include <numeric>

#include "dialog/process_end.h"
#include "log_region.h"
#include "support/expect_gripe.h"

namespace gatescope {
namespace {

class QueryData : public LogRegion {
  protected:
    template <class Cells>
    static unsigned total(const Cells& cells) {
        return std::accumulate(cells.begin(), cells.end(), 0u);
    }

    /// How the query counts one record: "allowed", "denied", "counted nothing" or "not seen".
    std::string outcome_of(int query, const std::string& rest) {
        write_log(0, line(3, rest));
        EXPECT_EQ(advice_of_query(query), "");
        if (total(result.cell_read) == 0) return "not seen";
        EXPECT_EQ(result.cell_read[3], 1);
        EXPECT_EQ(total(result.cell_success) + total(result.cell_denied),
                  result.cell_success[3] + result.cell_denied[3]);
        if (result.cell_success[3] == 1 && result.cell_denied[3] == 0) return "allowed";
        if (result.cell_success[3] == 0 && result.cell_denied[3] == 1) return "denied";
        return "counted nothing";
    }
};

struct Classified {
    const char* record;
    std::array<const char*, 4> by_query_1_2_3_6;
};

TEST_F(QueryData, ClassifiesRecordsByTheFirstMarkerFound) {
    constexpr const char* A = "allowed";
    constexpr const char* D = "denied";
    constexpr const char* N = "counted nothing";
    const std::vector<Classified> table = {
        {"P:ann[2]a<->", {N, N, N, A}},
        {"P:ann[2]d<->", {N, N, N, D}},
        {"P:ann[2]-<->", {N, N, N, N}},
        {"S:ann[2]-<->", {A, N, A, N}},
        {"B:ann[2]-<5>", {N, A, N, N}},
        {"D:ann[2]K<5>", {D, N, D, N}},
        {"D:ann[2]B<5>", {D, N, D, N}},
        {"D:ann[2]R<5>", {D, N, D, N}},
        {"D:ann[2]C<5>", {D, N, D, N}},
        {"X:ann[2]-<->", {N, N, N, N}},
        // More than one marker in a record: their order of precedence decides, not the position.
        {"P:ann[2]d<]a<->", {N, N, N, A}},
        {"D:ann:P:[2]a<->", {N, N, N, A}},
        {"S:S:P:[2]d<->", {N, N, N, D}},
        {"B:ann:S:[2]-<->", {A, N, A, N}},
        {"D:ann:B:[2]-<->", {N, A, N, N}},
        // In any case.
        {"p:ann[2]A<->", {N, N, N, A}},
        {"p:ann[2]D<->", {N, N, N, D}},
        {"s:ann[2]-<->", {A, N, A, N}},
        {"b:ann[2]-<->", {N, A, N, N}},
        {"d:ann[2]k<->", {D, N, D, N}},
    };
    constexpr std::array<int, 4> queries = {1, 2, 3, 6};
    for (const Classified& row : table) {
        for (std::size_t i = 0; i < queries.size(); ++i) {
            EXPECT_EQ(outcome_of(queries[i], row.record), row.by_query_1_2_3_6[i])
                << row.record << " in query " << queries[i];
        }
    }
}

TEST_F(QueryData, CountsAllowedAndDeniedPerDayWithTheirMaxima) {
    std::string log;
    for (int i = 0; i < 5; ++i) log += line(0, "S:ann[2]-<->");
    for (int i = 0; i < 3; ++i) log += line(0, "D:ann[2]K<1>");
    for (int i = 0; i < 4; ++i) log += line(119, "D:bob[9]B<7>");
    for (int i = 0; i < 2; ++i) log += line(119, "S:bob[9]-<->");
    write_log(0, log);
    EXPECT_EQ(advice_of_query(1), "");
    EXPECT_EQ(result.cell_success[0], 5u);
    EXPECT_EQ(result.cell_denied[0], 3u);
    EXPECT_EQ(result.cell_success[119], 2u);
    EXPECT_EQ(result.cell_denied[119], 4u);
    EXPECT_EQ(total(result.cell_success), 7u);
    EXPECT_EQ(total(result.cell_denied), 7u);
    EXPECT_EQ(total(result.cell_read), 2u);
    EXPECT_EQ(result.cell_success_max, 5u);
    EXPECT_EQ(result.cell_denied_max, 4u);
    // The largest daily total, larger than both.
    EXPECT_EQ(result.cell_max, 8u);
    EXPECT_EQ(result.first_cell_read, 119);
    EXPECT_EQ(result.earliest_read_time, noon(119));
    EXPECT_EQ(result.highest_key_read, -1);
}

TEST_F(QueryData, StartsEachQueryFromZero) {
    write_log(0, line(1, "S:ann[2]-<->") + line(200, "S:ann[2]-<->") + line(5, "D:ann[2]K<9>"));
    advice_of_query(1);
    advice_of_query(5);
    EXPECT_EQ(result.highest_key_read, 9);
    write_log(0, line(2, "S:ann[2]-<->"));
    EXPECT_EQ(advice_of_query(1), "");
    EXPECT_EQ(total(result.cell_success), 1u);
    EXPECT_EQ(total(result.cell_denied), 0u);
    EXPECT_EQ(total(result.cell_read), 1u);
    EXPECT_EQ(result.cell_success_max, 1u);
    EXPECT_EQ(result.cell_denied_max, 0u);
    EXPECT_EQ(result.cell_max, 1u);
    EXPECT_EQ(result.first_cell_read, 2);
    EXPECT_EQ(result.highest_key_read, -1);
    EXPECT_EQ(result.earliest_read_time, noon(2));
}

TEST_F(QueryData, ExcludesTheStartAndIncludesTheEndOfThePeriod) {
    const std::int64_t start = end_of_day_time - 120 * SECONDS_A_DAY;
    write_log(0, record_at(start, "S:a[1]-<->\n") + record_at(start + 1, "S:a[1]-<->\n") +
                     record_at(end_of_day_time, "D:a[1]K<1>\n"));
    EXPECT_EQ(advice_of_query(1), "");
    EXPECT_EQ(result.asked.period.start_of_period_time, start);
    EXPECT_EQ(result.asked.period.days_to_show, 120);
    EXPECT_EQ(result.cell_success[119], 1u);
    EXPECT_EQ(total(result.cell_success), 1u);
    EXPECT_EQ(result.cell_denied[0], 1u);
    EXPECT_EQ(result.first_cell_read, 120);
    filter_by("]k<");
    EXPECT_EQ(advice_of_query(5), "");
    EXPECT_EQ(result.cell_success[1], 1u);
}

TEST_F(QueryData, CountsDaysBackFromTheEndOfToday) {
    write_log(0, record_at(end_of_day_time - SECONDS_A_DAY + 1, "S:a[1]-<->\n") +
                     record_at(end_of_day_time - SECONDS_A_DAY, "D:a[1]K<1>\n"));
    advice_of_query(1);
    EXPECT_EQ(result.cell_success[0], 1u);
    EXPECT_EQ(result.cell_denied[1], 1u);
}

TEST_F(QueryData, IgnoresRecordsOfTomorrow) {
    write_log(0, record_at(end_of_day_time + 1, "S:a[1]-<5>\n") +
                     record_at(end_of_day_time + 1, "D:a[1]K<5>\n") +
                     record_at(end_of_day_time + 1, "B:a[1]-<5>\n") +
                     record_at(end_of_day_time + 1, "P:a[1]a<5>\n"));
    for (int query = 1; query <= 6; ++query) {
        EXPECT_EQ(advice_of_query(query), "");
        EXPECT_EQ(total(result.cell_read) + total(result.cell_success) + total(result.cell_denied),
                  0u);
        EXPECT_EQ(result.first_cell_read, -1);
        EXPECT_EQ(result.earliest_read_time, std::numeric_limits<std::int64_t>::max());
    }
}

TEST_F(QueryData, IgnoresWordsWithoutColonOrAngle) {
    write_log(0, std::to_string(noon(1)) + "Sann[2]->\n" + line(1, "S:ann[2]-<-") +
                     "split off words > here: and [there]\n");
    EXPECT_EQ(advice_of_query(1), "");
    EXPECT_EQ(total(result.cell_read), 0u);
    EXPECT_EQ(result.earliest_read_time, std::numeric_limits<std::int64_t>::max());
}

TEST_F(QueryData, IgnoresTheWordsOfARecordSplitByABlank) {
    write_log(0, line(1, "S:ann lee[2]-<->"));
    // "<time>:S:ann" has no '>' and "lee[2]-<->" no ':'.
    EXPECT_EQ(advice_of_query(1), "");
    EXPECT_EQ(total(result.cell_read), 0u);
}

TEST_F(QueryData, CountsWordsNotLines) {
    write_log(0, record_at(noon(1), "S:a[1]-<->") + " " + record_at(noon(2), "S:a[1]-<->\t") +
                     record_at(noon(3), "S:a[1]-<->\r\n") + record_at(noon(4), "S:a[1]-<->"));
    advice_of_query(1);
    for (const std::size_t cell : {1u, 2u, 3u, 4u})
        EXPECT_EQ(result.cell_success[cell], 1u) << cell;
}

TEST_F(QueryData, ReadsFiles0To20Only) {
    for (int number = 0; number <= 21; ++number) write_log(number, line(number, "S:a[1]-<->"));
    write_file(pruning_companion_path(1), line(30, "S:a[1]-<->"));
    advice_of_query(1);
    EXPECT_EQ(total(result.cell_success), 21u);
    EXPECT_EQ(result.cell_success[20], 1u);
    EXPECT_EQ(result.cell_success[21], 0u);
}

TEST_F(QueryData, SkipsMissingFilesAndDirectories) {
    std::filesystem::create_directory(log_file_path(3));
    write_log(7, line(1, "S:a[1]-<->"));
    EXPECT_EQ(advice_of_query(1), "");
    EXPECT_EQ(total(result.cell_success), 1u);
}

TEST_F(QueryData, AdvisesTheOperatorIfThereIsNoWord) {
    for (int query = 1; query <= 6; ++query) {
        EXPECT_EQ(advice_of_query(query), "There was no data to perform the query on.\n");
    }
    write_log(0, " \n\n");
    EXPECT_EQ(advice_of_query(1), "There was no data to perform the query on.\n");
    EXPECT_EQ(result.first_cell_read, -1);
}

TEST_F(QueryData, TakesAnyWordAsData) {
    write_log(20, "rubbish");
    EXPECT_EQ(advice_of_query(4), "");
}

TEST_F(QueryData, WarnsOnceOfRecordsFromDay130On) {
    write_log(0, line(129, "S:a[1]-<->"));
    EXPECT_EQ(advice_of_query(1), "");
    EXPECT_EQ(result.first_cell_read, 129);
    EXPECT_EQ(total(result.cell_read), 0u);
    write_log(0, line(130, "S:a[1]-<->") + line(131, "S:a[1]-<->") + line(130, "S:a[1]-<->"));
    for (int query = 1; query <= 6; ++query) {
        EXPECT_EQ(advice_of_query(query), "Warning:\n\nYou have log records from " +
                                              time_text(noon(131)) +
                                              "\n\nconsider pruning the logs as no data before " +
                                              time_text(result.asked.period.start_of_period_time) +
                                              "\ncan be queried on or displayed...\n");
        EXPECT_EQ(result.earliest_read_time, noon(131));
        EXPECT_EQ(total(result.cell_read) + total(result.cell_success) + total(result.cell_denied),
                  0u);
    }
    advice_of_query(6);
    EXPECT_EQ(result.first_cell_read, 131);
}

TEST_F(QueryData, WarnsFromExactlyTenDaysBeforeThePeriod) {
    const std::int64_t edge = end_of_day_time - 130 * SECONDS_A_DAY;
    for (const int query : {1, 4}) {
        write_log(0, record_at(edge + 1, "S:a[1]-<->\n"));
        EXPECT_EQ(advice_of_query(query), "");
        write_log(0, record_at(edge, "S:a[1]-<->\n"));
        EXPECT_NE(advice_of_query(query), "");
    }
}

TEST_F(QueryData, LabelsDaysByTheirNoon) {
    advice_of_query(1);
    EXPECT_EQ(result.cell_time[0], date_text(noon(0)) + " - today");
    EXPECT_EQ(result.cell_time[1], date_text(noon(1)) + " - yesterday");
    EXPECT_EQ(result.cell_time[2], date_text(noon(2)) + " - 2 days ago");
    EXPECT_EQ(result.cell_time[119], date_text(noon(119)) + " - 119 days ago");
}

TEST_F(QueryData, LabelsBarsWithTheEndsOfThePeriod) {
    for (const int query : {4, 5}) {
        advice_of_query(query);
        EXPECT_EQ(result.cell_time[0], date_text(result.asked.period.start_of_period_time));
        EXPECT_EQ(result.cell_time[1], date_text(end_of_day_time));
    }
}

TEST_F(QueryData, CountsRecordsThatPassAllFourFilters) {
    write_log(0, line(1, "D:Ann[2]K<7>") + line(2, "D:bob[2]K<7>") + line(3, "D:ann[3]K<7>") +
                     line(4, "D:ann[2]C<7>") + line(5, "D:ann[2]K<8>"));
    filter_by("]K<", "<7>", ":ann[", "[2]");
    advice_of_query(3);
    EXPECT_EQ(result.cell_denied[1], 1u);
    EXPECT_EQ(total(result.cell_denied), 1u);
    EXPECT_EQ(total(result.cell_read), 1u);
    // first_cell_read includes the days of filtered records.
    EXPECT_EQ(result.first_cell_read, 5);
}

TEST_F(QueryData, FindsAFilterAnywhereInTheRecord) {
    write_log(0, line(1, "S:<->[2]-<->") + line(2, "S:ann[2]-<5>"));
    filter_by(":<->[2]-<->");
    advice_of_query(1);
    EXPECT_EQ(total(result.cell_success), 1u);
    filter_by(std::to_string(noon(2)));
    advice_of_query(1);
    EXPECT_EQ(result.cell_success[2], 1u);
    EXPECT_EQ(total(result.cell_success), 1u);
}

TEST_F(QueryData, DoesNotFindUsersInsideLongerNames) {
    write_log(0, line(1, "S:joann[2]-<->") + line(2, "S:ann[2]-<->") + line(3, "S:anna[2]-<->"));
    filter_by(":ann[");
    advice_of_query(1);
    EXPECT_EQ(total(result.cell_read), 1u);
    EXPECT_EQ(result.cell_success[2], 1u);
}

TEST_F(QueryData, CountsBitsByNumber) {
    write_log(0, line(1, "B:ann[2]-<5>") + line(2, "b:ann[2]-<5>") + line(3, "B:ann[2]-<0>") +
                     line(4, "B:ann[2]-<->") + line(5, "S:ann[2]-<9>") + line(6, "P:a[2]a<11>"));
    EXPECT_EQ(advice_of_query(4), "");
    EXPECT_EQ(result.cell_success[5], 2u);
    EXPECT_EQ(result.cell_success[0], 2u);
    EXPECT_EQ(result.cell_success[9], 0u);
    EXPECT_EQ(result.cell_read[9], 1);
    EXPECT_EQ(result.cell_read[11], 1);
    EXPECT_EQ(result.cell_read[10], 0);
    EXPECT_EQ(result.cell_max, 2u);
    EXPECT_EQ(total(result.cell_denied), 0u);
    EXPECT_EQ(result.cell_success_max, 0u);
    EXPECT_EQ(result.cell_denied_max, 0u);
    EXPECT_EQ(result.highest_key_read, -1);
    EXPECT_EQ(result.first_cell_read, -1);
}

TEST_F(QueryData, CountsKeysByNumberAndEdition) {
    write_log(0, line(1, "D:ann[2]K<5>") + line(2, "D:ann[2]k<17>") + line(3, "D:ann[2]C<6>") +
                     line(4, "D:ann[2]C<6>") + line(5, "D:ann[2]B<30>"));
    advice_of_query(5);
    EXPECT_EQ(result.cell_success[5], 1u);
    EXPECT_EQ(result.cell_success[17], 1u);
    EXPECT_EQ(result.cell_success[6], 0u);
    EXPECT_EQ(result.cell_max, 1u);
    EXPECT_EQ(result.highest_key_read, 17);
    EXPECT_EQ(result.cell_read[30], 1);
    GATEWARDEN_IS = 0;
    advice_of_query(5);
    EXPECT_EQ(result.cell_success[6], 2u);
    EXPECT_EQ(total(result.cell_success), 2u);
    EXPECT_EQ(result.cell_max, 2u);
    EXPECT_EQ(result.highest_key_read, 6);
    GATEWARDEN_IS = 2;
    advice_of_query(5);
    EXPECT_EQ(total(result.cell_success), 0u);
    EXPECT_EQ(result.cell_max, 0u);
    EXPECT_EQ(result.highest_key_read, -1);
}

TEST_F(QueryData, SkipsNumbersOutsideTheArrays) {
    write_log(0, line(1, "B:a[2]-<120>") + line(1, "B:a[2]-<-1>") + line(1, "B:a[2]-<119>") +
                     line(1, "B:a[2]-<4294967296>") + line(1, "B:a[2]-<99999999999999999999>") +
                     line(1, "B:a[2]-<-99999999999999999999>"));
    advice_of_query(4);
    EXPECT_EQ(total(result.cell_success), 1u);
    EXPECT_EQ(total(result.cell_read), 1u);
    EXPECT_EQ(result.cell_success[119], 1u);
}

TEST_F(QueryData, SkipsWordsWithoutAnOpeningAngle) {
    write_log(0, line(1, "B:a[2]-5>"));
    EXPECT_EQ(advice_of_query(4), "");
    EXPECT_EQ(total(result.cell_read), 0u);
    EXPECT_EQ(result.earliest_read_time, noon(1));
}

TEST_F(QueryData, TakesTheNumberAfterTheFirstAngle) {
    write_log(0, line(1, "B:a<7>[2]-<5>"));
    advice_of_query(4);
    EXPECT_EQ(result.cell_success[7], 1u);
    EXPECT_EQ(total(result.cell_success), 1u);
}

TEST_F(QueryData, SkipsTimesTooLargeForArithmetic) {
    write_log(0, "9223372036854775807:S:a[1]-<->\n99999999999999999999999:S:a[1]-<->\n");
    for (int query = 1; query <= 6; ++query) EXPECT_EQ(advice_of_query(query), "");
    EXPECT_EQ(total(result.cell_read), 0u);
    write_log(0, "-99999999999999999999999:S:a[1]-<->\n");
    EXPECT_NE(advice_of_query(1).find("records from -9223372036854775808\n"), std::string::npos);
    EXPECT_EQ(result.first_cell_read, std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(total(result.cell_read), 0u);
}

TEST_F(QueryData, TakesAWordWithoutATimeAsOfTheEpoch) {
    write_log(0, "x:S:a[1]-<->\n");
    EXPECT_NE(advice_of_query(1).find("records from " + time_text(0)), std::string::npos);
    EXPECT_EQ(result.earliest_read_time, 0);
}

TEST_F(QueryData, AcceptsTimesWithSignsAndZeros) {
    write_log(0, record_at(noon(1), "S:a[1]-<->").insert(0, "+") + "\n" +
                     record_at(noon(2), "S:a[1]-<->").insert(0, "000") + "\n");
    advice_of_query(1);
    EXPECT_EQ(result.cell_success[1], 1u);
    EXPECT_EQ(result.cell_success[2], 1u);
}

TEST_F(QueryData, EndsARecordAtItsNulAndReadsOn) {
    const std::string cut = record_at(noon(1), std::string("S:a[1]-<->\0:P:]a<", 17));
    const std::string blind = record_at(noon(2), std::string("S:a\0[1]-<->", 11));
    write_log(0, cut + "\n" + blind + "\n" + line(3, "S:a[1]-<->"));
    advice_of_query(1);
    EXPECT_EQ(result.cell_success[1], 1u);
    EXPECT_EQ(result.cell_success[2], 0u);
    EXPECT_EQ(result.cell_success[3], 1u);
}

TEST_F(QueryData, SkipsAPartlyWrittenLastLine) {
    write_log(0, line(1, "S:a[1]-<->") + record_at(noon(1), "S:a[1]-<"));
    EXPECT_EQ(advice_of_query(1), "");
    EXPECT_EQ(total(result.cell_success), 1u);
}

TEST_F(QueryData, GripesForAnUnknownQuery) {
    for (const int query : {0, 7, -1, 300}) {
        EXPECT_GRIPE(get_query_data(record_query(query, 1, {}, set_time_values()), logging_dir),
                     "Internal Error: Inform ZUL: Unexpected case in gatescope:get_query_data\n");
    }
}

TEST_F(QueryData, LeavesTheLogsUnchanged) {
    write_log(0, line(1, "S:a[1]-<->") + "rubbish");
    const std::string before = file_text(log_file_path(0));
    advice_of_query(1);
    EXPECT_EQ(file_text(log_file_path(0)), before);
}

}  // namespace
}  // namespace gatescope
