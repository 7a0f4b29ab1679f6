#pragma once

#include "base/options.h"
#include "policy/region.h"

/// Runs the operator's requests: the one that the command line named first, then what is picked
/// from the menus. Returns when the repeat flag says so, with STATUS_OF_ONE_REQUEST. A cancelled
/// main menu ends the process.
int run_requests(const Options& options, RegionInUse& region);
