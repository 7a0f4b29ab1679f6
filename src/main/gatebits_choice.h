#pragma once

#include "policy/region.h"
#include "queries/options.h"

namespace gatescope {

/// Chooses the gatebits file: the one in the arguments, if readable, else the environment's, else a
/// new or existing one by a question. Ends the process with STATUS_MISSING_PREREQUISITE when the
/// operator aborts.
void choose_gatebits_file(const Options& options, RegionInUse& region);

}  // namespace gatescope
