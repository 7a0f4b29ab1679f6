#pragma once

#include <string>
#include <vector>

#include "records/record_rule.h"

namespace gatescope {

/// Counts what `query` asks for in the logs at `paths`, taken together. A log that is not there is
/// passed over; one that cannot be opened is left out, and named on standard error. Gripes when one
/// cannot be read on, or cannot be opened for want of a descriptor or of memory: the counts would
/// be wrong by nobody knows how much.
RecordTally tally_logs(const RecordQuery& query, const std::vector<std::string>& paths);

}  // namespace gatescope
