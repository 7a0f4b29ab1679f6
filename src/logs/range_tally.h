#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

#include "logs/progress.h"
#include "records/record_rule.h"
#include "records/words.h"

namespace gatescope {

// Several threads count the records of several logs together: each takes the next range of bytes
// that nobody has taken, and has its own reader and its own tally.

/// A log, and how long it was when somebody looked.
struct LogToCount {
    std::string path;
    off_t size = 0;
};

/// What was counted. For each log 0, or the errno for which it could not be opened and was left
/// out. Where one could not be read on, or not be opened for want of something, its place among the
/// logs and the errno; then nothing was counted that is of any use.
struct RangeTally {
    RecordTally tally;
    std::vector<int> not_opened;
    std::size_t unread = 0;
    int error = 0;
};

/// Counts what `query` asks for in all of the logs. `threads`, this one included, take ranges of
/// `range_size` bytes; where so many cannot be had, fewer do the same work. The last range of a log
/// goes to wherever its end is when it is reached. The tally is the same for any number of threads
/// and any size. Signals that end the process come to the calling thread.
RangeTally tally_ranges(const RecordQuery& query, const std::vector<LogToCount>& logs, int threads,
                        off_t range_size, Progress* progress);

}  // namespace gatescope
