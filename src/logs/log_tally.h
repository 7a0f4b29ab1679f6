#pragma once

#include <string>
#include <vector>

#include "records/record_rule.h"

namespace gatescope {

/// Counts the records of all logs at `paths` together. Missing logs are skipped; a log that cannot
/// be opened is left out and named on standard error. Gripes if a log cannot be read to its end, or
/// cannot be opened for lack of descriptors or memory: the counts would be wrong by an unknown
/// number.
RecordTally tally_logs(const RecordQuery& query, const std::vector<std::string>& paths);

}  // namespace gatescope
