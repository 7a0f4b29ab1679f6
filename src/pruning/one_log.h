#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "base/directory.h"
#include "logs/progress.h"
#include "pruning/left_overs.h"
#include "pruning/patience.h"

namespace gatescope {

/// A log of the region.
struct Log {
    std::string name;
    std::string companion;
    /// Why it was skipped; empty otherwise.
    std::string reason = {};
    /// The left-overs found by `prepare` and created since; some may no longer exist.
    std::set<LeftOver> left_overs = {};
    /// Whether this run has replaced it since `prepare`.
    bool is_replaced = false;
    /// The number of its words that are kept; empty until this run has counted them.
    std::optional<std::int64_t> kept_words = {};
};

/// One run of the pruner: what the logs of its region share.
struct Run {
    const Directory& logs;
    std::string scratch;
    std::string token;
    /// Seconds since the epoch; older records are removed.
    std::int64_t cut_off;
    Progress progress;
    /// Whether the token diverts the log writers to the companions.
    bool has_token = true;
    /// Companions and left-overs that are not regular files: the name, and why it is not used.
    std::map<std::string, std::string> unused = {};
    /// The number of words in the logs pruned so far, and of those removed.
    std::int64_t total = 0;
    std::int64_t removed = 0;
};

/// Before the token's removal: ends the program with `failure` for the file `name`, after notes
/// about a file that is not regular and about the token, if it exists. After it: throws SkippedLog.
[[noreturn]] void abort_or_skip(const char* failure, const std::string& name, int error, Run* run);

// The steps of a pruning on one log. A step that fails throws SkippedLog; the log then has its
// complete old or new text, and no record is lost. If a scratch file or a log cannot be created
// before the token's removal, the step ends the program, and the token stays.

/// Installs a new text that an earlier pruning or step has committed, and renames the companion, if
/// there is one, to a taken file, which no writer opens. `names` are the names in the directory.
void prepare(Log* log, const std::vector<std::string>& names, Run* run);

/// Replaces the log by the kept records of itself, of the taken files and of what was appended to
/// old files, and counts its words. False if the log already has that text, or there is none.
/// Removes left-overs without records to merge. Waits until `deadline` for processes that have one
/// of the files open for writing.
bool rewrite(Log* log, Run* run, Moment deadline);

}  // namespace gatescope
