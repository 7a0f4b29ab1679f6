#include "records/record_rule.h"

#include <algorithm>
#include <utility>

#include "base/filled.h"
#include "base/text.h"
#include "records/words.h"

namespace gatescope {
namespace {

/// A word in lower case, in which markers and filters are searched.
class Record {
  public:
    explicit Record(std::string_view text) : text_(text) { STRING_LOWER(text_); }

    bool contains(std::string_view lower_case_text) const {
        return text_.find(lower_case_text) != std::string::npos;
    }
    std::int64_t time() const { return leading_number(text_.c_str()); }

    /// The number after the first '<', where a "-" is 0; -1 when there is no '<'.
    std::int64_t value() const {
        const std::size_t place = text_.find('<');
        return place == std::string::npos ? -1 : leading_number(text_.c_str() + place + 1);
    }

  private:
    std::string text_;
};

bool passes(const RecordQuery& query, const Record& record) {
    return std::all_of(query.filters.begin(), query.filters.end(),
                       [&](const std::string& filter) { return record.contains(filter); });
}

/// The first marker found, in this order, decides.
std::uint8_t outcome_per_day(int query, const Record& record) {
    const bool commands = query == 1 || query == 3;
    if (record.contains(":p:")) {
        if (query != 6) return SEEN;
        if (record.contains("]a<")) return ALLOWED;
        return record.contains("]d<") ? DENIED : SEEN;
    }
    if (record.contains(":s:")) return commands ? ALLOWED : SEEN;
    if (record.contains(":b:")) return query == 2 ? ALLOWED : SEEN;
    if (record.contains(":d:")) return commands ? DENIED : SEEN;
    return SEEN;
}

std::uint8_t outcome_per_number(const RecordQuery& query, const Record& record) {
    if (query.query == 4) return record.contains(":b:") ? ALLOWED : SEEN;
    const bool counted = (query.edition == 1 && record.contains("]k<")) ||
                         (query.edition == 0 && record.contains("]c<"));
    return counted ? ALLOWED : SEEN;
}

}  // namespace

RecordQuery record_query(int query, int edition, std::array<std::string, 4> filters,
                         const QueryPeriod& period) {
    for (std::string& filter : filters) {
        filter = c_text(filter);
        STRING_LOWER(filter);
    }
    return {query, edition, std::move(filters), period};
}

void count_word(const RecordQuery& query, std::string_view word, RecordTally* tally) {
    tally->data_seen = true;
    const std::string_view text = c_text(word);
    if (text.find(':') == std::string_view::npos || text.find('>') == std::string_view::npos)
        return;
    const Record record(text);
    const std::int64_t time = record.time();
    if (time > query.period.end_of_day_time) return;
    tally->earliest = std::min(tally->earliest, time);
    if (time <= query.period.start_of_period_time || !passes(query, record)) return;
    if (counts_per_day(query.query)) {
        const auto cell = static_cast<std::size_t>(day_cell(query.period.end_of_day_time, time));
        ++tally->rows[cell][outcome_per_day(query.query, record)];
    } else {
        const std::int64_t number = record.value();
        if (number < 0 || number >= QUERY_DAYS) return;
        ++tally->rows[static_cast<std::size_t>(number)][outcome_per_number(query, record)];
    }
}

}  // namespace gatescope
