#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "logs/left_overs.h"
#include "logs/settling.h"

/// What became of one log.
struct Rewritten {
    /// Why it was left as it is; empty when it was not.
    std::string left_alone;
    /// Its words and those that were dropped; none of a log left alone.
    std::int64_t total = 0;
    std::int64_t removed = 0;
    /// The old file, if something of it could not be added yet.
    std::optional<LeftOver> old_file = std::nullopt;
};

/// Rewrites a log without the records before `cut_off`. It is read once; when there is something
/// to drop the new text is written to `scratch`, in the same directory, and renamed: whoever opens
/// the log finds the old file or the new one. Other names of the old file keep the old text.
///
/// Nothing happens to a log that does not exist. One that cannot be read or replaced, or that
/// somebody keeps open, is left alone. Without a scratch file in the logging directory itself no
/// pruning can take place, so that ends the program; a log that `is_linked` to from there may have
/// a directory that does not allow one.
Rewritten rewrite_log(const std::string& log, const std::string& scratch, bool is_linked,
                      std::int64_t cut_off, Moment deadline);
