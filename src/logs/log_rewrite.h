#pragma once

#include <string>
#include <vector>

#include "logs/left_overs.h"
#include "logs/log_access.h"

/// A log of the region with what belongs to it.
struct Log {
    MeantFile file;
    MeantFile companion;
    /// Where its new text is written, in the same directory.
    std::string scratch;
    /// Whether a link leads to it.
    bool is_linked = false;
    std::vector<LeftOver> left_overs = {};
    /// Why it was not rewritten; empty when it was, or need not be.
    std::string stays = {};
};

/// Rewrites a log without the words that are not kept. It is read up to the first that is not kept
/// as it stands; if there is one, the new text is written to the scratch file and renamed: whoever
/// opens the log finds the old file or the new one. Other names of the old file keep the old text.
///
/// Nothing happens to a log that does not exist. One that cannot be read or replaced, or that
/// somebody keeps open, is left alone and not counted. Without a scratch file in the logging
/// directory itself no pruning can take place, so that ends the program. An old file that somebody
/// keeps open is put with the left-overs.
void rewrite_log(Log* log, Work* work);
