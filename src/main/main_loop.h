#pragma once

#include "policy/region.h"
#include "queries/options.h"

namespace gatescope {

/// Runs the operator's requests: the one that the command line named first, then what is picked
/// from the menus. Returns when the repeat flag says so, with STATUS_OF_ONE_REQUEST. A cancelled
/// main menu ends the process.
int run_requests(const Options& options, RegionInUse& region);

}  // namespace gatescope
