// Arbitrary log files, counted by any query; compares the fast path with the plain rule.

#include <algorithm>
#include <numeric>

#include "fuzz/fuzz_world.h"
#include "logs/query_data.h"
#include "records/canonical_records.h"
#include "records/query_period.h"
#include "records/words.h"

namespace gatescope {
namespace {

/// `text` with each "T" and digit replaced by a time in or near the query's period.
std::string with_times_of_today(const std::string& text, std::int64_t end_of_day_time) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != 'T' || i + 1 == text.size() || text[i + 1] < '0' || text[i + 1] > '9') {
            result += text[i];
            continue;
        }
        constexpr int DAYS[] = {0, 1, 60, 119, 120, 121, 129, 130, 131, -1};
        const auto days = DAYS[text[++i] - '0'];
        result += std::to_string(end_of_day_time - days * SECONDS_A_DAY - (text[i] == '8' ? 1 : 0));
    }
    return result;
}

template <typename Counters>
std::uint64_t sum(const Counters& counters) {
    return std::accumulate(counters.begin(), counters.end(), std::uint64_t{0});
}

RecordTally counted_by_the_plain_rule(const RecordQuery& query, const std::string& text) {
    RecordTally tally;
    const char* at = text.data();
    const char* const end = at + text.size();
    for (std::string_view word = next_word(&at, end); !word.empty(); word = next_word(&at, end)) {
        count_word(query, word, &tally);
    }
    return tally;
}

RecordTally counted_fast(const CanonicalQuery& query, const std::string& text) {
    const std::string with_margin = text + std::string(READER_MARGIN, '\0');
    RecordTally tally;
    query.count(std::string_view(with_margin).substr(0, text.size()), &tally);
    return tally;
}

bool same_counts(const RecordTally& one, const RecordTally& other) {
    return std::equal(one.rows.begin(), one.rows.begin() + QUERY_DAYS, other.rows.begin(),
                      [](const auto& row, const auto& other_row) {
                          return std::equal(row.begin() + SEEN, row.end(),
                                            other_row.begin() + SEEN);
                      }) &&
           one.earliest == other.earliest && one.data_seen == other.data_seen;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    FuzzedDataProvider data(bytes, size);
    answer_dialogs_from(nullptr);
    // No query reads the gatebits file, so one is enough for all executions.
    static const bool ready = [] {
        use_gatebits("");
        return true;
    }();
    must(ready, "the environment is set up");
    const auto filter = [&] {
        return data.ConsumeBool() ? ANY_LOG_ENTRY : data.ConsumeRandomLengthString(20);
    };
    static const QueryPeriod period = set_time_values();
    const std::string filter_1 = filter();
    const std::string filter_2 = filter();
    const int edition = data.ConsumeIntegralInRange(0, 1);
    const int query = data.ConsumeIntegralInRange(1, 6);
    const RecordQuery asked =
        record_query(query, edition, {filter_1, filter_2, ANY_LOG_ENTRY, ANY_LOG_ENTRY}, period);
    const std::string first =
        with_times_of_today(data.ConsumeRandomLengthString(), period.end_of_day_time);
    const std::string last =
        with_times_of_today(data.ConsumeRemainingBytesAsString(), period.end_of_day_time);
    put_file("tmp/logging_0.txt", first);
    put_file("tmp/logging_20.txt", last);
    QueryResult result;
    const int status = until_the_end([&] { result = get_query_data(asked, world_path("tmp")); });
    must(status == -1, "a query returns");
    must(sum(result.cell_success) + sum(result.cell_denied) <= first.size() + last.size(),
         "there are no more counts than bytes");
    must(get_file("tmp/logging_0.txt") == first, "reading changes nothing");
    const RecordTally tally_first = counted_by_the_plain_rule(asked, first);
    const RecordTally tally_last = counted_by_the_plain_rule(asked, last);
    for (const InstructionSet set :
         {best_instruction_set(), InstructionSet::SSE2, InstructionSet::SCALAR}) {
        const CanonicalQuery fast(asked, set);
        must(same_counts(counted_fast(fast, first), tally_first) &&
                 same_counts(counted_fast(fast, last), tally_last),
             "the fast path counts as the plain rule");
    }
    for (std::size_t i = 0; i < result.cell_success.size(); ++i) {
        must(result.cell_success[i] == tally_first.rows[i][ALLOWED] + tally_last.rows[i][ALLOWED] &&
                 result.cell_denied[i] == tally_first.rows[i][DENIED] + tally_last.rows[i][DENIED],
             "files read in pieces count as in one piece");
    }
    return 0;
}

}  // namespace gatescope
