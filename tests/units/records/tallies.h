#pragma once

#include <algorithm>
#include <cstdint>

#include "records/record_rule.h"

namespace gatescope {

/// The last second of the period of these tests.
constexpr std::int64_t PERIOD_END = 1794787199;

/// Whether a query has the same result with both tallies.
inline bool same_counts(const RecordTally& one, const RecordTally& other) {
    for (std::size_t row = 0; row < QUERY_DAYS; ++row) {
        // The count of FILTERED records does not affect a result.
        if (!std::equal(one.rows[row].begin() + SEEN, one.rows[row].end(),
                        other.rows[row].begin() + SEEN)) {
            return false;
        }
    }
    return one.earliest == other.earliest && one.data_seen == other.data_seen;
}

}  // namespace gatescope
