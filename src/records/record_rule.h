#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

#include "records/query_period.h"

namespace gatescope {

// The plain rule: how a query counts a record. It is defined for every word that a log can contain.

/// A filter that every record passes.
inline constexpr char ANY_LOG_ENTRY[] = ":";

/// Which records a query counts, and how.
struct RecordQuery {
    /// 1 to 6; see counts_per_day.
    int query = 1;
    /// GATEWARDEN_IS.
    int edition = 1;
    /// A record must contain all of these texts, in any case. They are in lower case here.
    std::array<std::string, 4> filters = {ANY_LOG_ENTRY, ANY_LOG_ENTRY, ANY_LOG_ENTRY,
                                          ANY_LOG_ENTRY};
    QueryPeriod period;
};

/// The query, with its filters cut at the first NUL and in lower case.
RecordQuery record_query(int query, int edition, std::array<std::string, 4> filters,
                         const QueryPeriod& period);

/// Queries 1, 2, 3 and 6 count per day, 4 and 5 per bit or key number.
constexpr bool counts_per_day(int query) {
    return query == 1 || query == 2 || query == 3 || query == 6;
}
constexpr bool counts_per_number(int query) {
    return query == 4 || query == 5;
}

// The outcomes of a record, as indexes in a row of RecordTally.

/// It does not pass the filters.
inline constexpr std::uint8_t FILTERED = 0;
/// It passes, but the query does not count records of its kind: its day or number was seen.
inline constexpr std::uint8_t SEEN = 1;
/// Counted as allowed. Uses of a bit, and all records counted per number, have this outcome too.
inline constexpr std::uint8_t ALLOWED = 2;
inline constexpr std::uint8_t DENIED = 3;

/// Records of one query by day cell (0 is today) or bit or key number, and outcome.
struct RecordTally {
    /// The rows from QUERY_DAYS on are never read: the fast path counts there the records outside
    /// the period.
    static constexpr std::size_t ROWS = 128;
    std::array<std::array<std::uint32_t, 4>, ROWS> rows = {};
    /// The smallest record time up to the end of the period; the maximum without records.
    std::int64_t earliest = std::numeric_limits<std::int64_t>::max();
    /// Whether there was any word.
    bool data_seen = false;
};

/// The day cell of a time up to `period_end`; exceeds the period's cells for earlier times.
constexpr std::int64_t day_cell(std::int64_t period_end, std::int64_t time) {
    return (period_end - time) / SECONDS_A_DAY;
}

/// Counts a word of at most WORD_LIMIT bytes, of any content.
void count_word(const RecordQuery& query, std::string_view word, RecordTally* tally);

}  // namespace gatescope
