#pragma once

#include <cstdint>
#include <string>

#include "base/directory.h"
#include "logs/progress.h"
#include "pruning/patience.h"

namespace gatescope {

/// A log of the region.
struct Log {
    std::string name;
    std::string companion;
    /// Why it is left alone, or its companion; empty otherwise.
    std::string reason = {};
    std::string companion_reason = {};
    /// Whether this run has made its whole new text, or found that it needs none.
    bool is_pruned = false;
    /// How many of its words are counted.
    std::int64_t counted = 0;
};

/// What the logs of a region share.
struct Work {
    const Directory& logs;
    std::string scratch;
    std::string token;
    /// Seconds since the epoch; records before it are dropped.
    std::int64_t cut_off;
    Progress progress;
    /// Words of the logs that are done, and how many of them were dropped.
    std::int64_t total = 0;
    std::int64_t removed = 0;
};

/// Ends the program with a described failure; says first why the file is not used, and what it
/// means where the token stays.
[[noreturn]] void stop(const char* failure, const std::string& name, int error, const Work& work);

// The steps of a pruning on one log. A step that cannot be done throws LeftAlone: then the log is
// its old text or its new one, whole, and nothing is lost. Where a scratch file or a log cannot be
// made while the token stands, they end the program, and leave the token.

/// Completes what an earlier pruning, or an earlier step of this one, has committed, and renames
/// the companion, if there is one, to a taken file, which no writer opens.
void prepare(Log* log, const Work& work);

/// Gives the log its new text, made of what is kept of it, of taken files and of what was added to
/// old ones, unless that is the text that it has; counts its words then. Processes that have one of
/// the files open for writing are waited for until `deadline`.
void rewrite(Log* log, Work* work, Moment deadline);

/// Removes the old files that nothing was added to; false when others stay. Waits as above; throws
/// LeftAlone when a process keeps one open, or has added to one where the system does not tell
/// whether it will again.
bool remove_unchanged_old_files(const Log& log, const Work& work, Moment deadline);

}  // namespace gatescope
