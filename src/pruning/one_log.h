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
    /// Why it is left alone; empty otherwise.
    std::string reason = {};
    /// What `prepare` has found beside it, and what was made since; some of it may be gone.
    std::set<LeftOver> left_overs = {};
    /// Whether it was replaced since `prepare`.
    bool is_replaced = false;
    /// How many of its words are kept; nothing before this run has decided on them.
    std::optional<std::int64_t> kept = {};
};

/// What the logs of a region share.
struct Work {
    const Directory& logs;
    std::string scratch;
    std::string token;
    /// Seconds since the epoch; records before it are dropped.
    std::int64_t cut_off;
    Progress progress;
    /// Whether the token diverts the log writers to the companions.
    bool has_token = true;
    /// Why what stands under the name of a companion or left-over is not used, by that name.
    std::map<std::string, std::string> unused = {};
    /// Words of the logs that are done, and how many of them were dropped.
    std::int64_t total = 0;
    std::int64_t removed = 0;
};

/// Ends the program with a described failure about the file `name`: says first what is wrong with
/// that, and what it means where the token stays. Once the token is down, throws LeftAlone instead.
[[noreturn]] void stop(const char* failure, const std::string& name, int error, Work* work);

// The steps of a pruning on one log. A step that cannot be done throws LeftAlone: then the log is
// its old text or its new one, whole, and nothing is lost. Where a scratch file or a log cannot be
// made while the token stands, they end the program, and leave the token.

/// Completes what an earlier pruning, or an earlier step of this one, has committed, and renames
/// the companion, if there is one, to a taken file, which no writer opens. `names` are those in the
/// directory.
void prepare(Log* log, const std::vector<std::string>& names, Work* work);

/// Gives the log its new text, made of what is kept of it, of taken files and of what was added to
/// old ones, and counts its words; false when that is the text that it has. Removes old files that
/// nothing was added to. Processes that have one of the files open for writing are waited for until
/// `deadline`.
bool rewrite(Log* log, Work* work, Moment deadline);

}  // namespace gatescope
