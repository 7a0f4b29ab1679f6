#pragma once

#include "policy/region.h"
#include "queries/options.h"

namespace gatescope {

/// Runs the request of the command line first, if any, then the picks from the menus. Without
/// repetition it returns STATUS_SINGLE_REQUEST after one request. A cancelled main menu ends the
/// process.
int run_requests(const Options& options, RegionInUse& region);

}  // namespace gatescope
