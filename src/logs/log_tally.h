#pragma once

#include <string>
#include <vector>

#include "logs/record_rule.h"

/// Counts what `query` asks for in the logs at `paths`, taken together. A log that is not there is
/// passed over. Gripes when one cannot be read on.
RecordTally tally_logs(const RecordQuery& query, const std::vector<std::string>& paths);
