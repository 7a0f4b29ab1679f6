#pragma once

#include <cstdint>
#include <string>

#include "pruning/patience.h"

namespace gatescope {

/// Which logs are pruned, and how the result is shown.
struct LogsToPrune {
    /// The directory of the logs, without a delimiter at its end.
    std::string directory;
    /// The region's name, for messages.
    std::string region;
    /// Whether the result is shown in a dialog; else it is printed.
    bool display = true;
};

/// Removes every record older than `days` days before the end of today from the logs, merges the
/// companion files and shows the operator the number of removed records and each skipped log with
/// the reason. Waits for log writers as `patience` says.
///
/// A failure ends the program through gripe, and the token stays. SIGINT, SIGTERM and SIGHUP remove
/// the scratch file and the token. At any end, a kill included, no retained record is lost or
/// duplicated; the next pruning completes the work (left_overs.h).
void prune_logging_files(const LogsToPrune& logs, std::uint8_t days, const Patience& patience = {});

}  // namespace gatescope
