#pragma once

#include <cstdint>
#include <string>

#include "pruning/patience.h"

namespace gatescope {

/// A region's logs, as its pruning needs to know them.
struct LogsToPrune {
    /// Where they are, without a delimiter at its end.
    std::string directory;
    /// The region's name, for messages.
    std::string region;
    /// Whether the result is shown in a box, or else printed.
    bool display = true;
};

/// Removes from the logs every record older than `days` days before the end of today, merges the
/// companion files back and tells the operator how many records went, and which logs were left
/// alone, and why. Log writers are waited for with `patience`.
///
/// A failure ends the program through gripe, and leaves the token behind. SIGINT, SIGTERM and
/// SIGHUP take the scratch file and the token away. Wherever it is ended, no retained record is
/// lost or doubled, and the next pruning puts all in order; left_overs.h says how.
void prune_logging_files(const LogsToPrune& logs, std::uint8_t days, const Patience& patience = {});

}  // namespace gatescope
