#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

#include "logs/progress.h"
#include "records/record_rule.h"
#include "records/words.h"

namespace gatescope {

// Several threads count the records of several logs. Each takes the next free range of bytes, with
// a reader and a tally of its own.

/// A log, and its size when its status was read.
struct LogToCount {
    std::string path;
    off_t size = 0;
};

/// The result of tally_ranges.
struct RangeTally {
    /// Valid if `error` is 0.
    RecordTally tally;
    /// For each log 0, or the errno with which it could not be opened and was left out.
    std::vector<int> not_opened;
    /// Index of the first log that could not be read to its end, or could not be opened for lack of
    /// a resource.
    std::size_t unread = 0;
    /// The errno of that log; 0 if there is none.
    int error = 0;
};

/// Counts the records of all logs. `threads` threads, the calling one included, take ranges of
/// `range_size` bytes; fewer if not all of them can be started. The last range of a log extends to
/// its end at the time when it is reached. The tally does not depend on the number of threads or on
/// the size of the ranges. The calling thread receives the signals that end the process.
RangeTally tally_ranges(const RecordQuery& query, const std::vector<LogToCount>& logs, int threads,
                        off_t range_size, Progress* progress);

}  // namespace gatescope
