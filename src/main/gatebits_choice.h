#pragma once

#include "policy/region.h"
#include "queries/options.h"

namespace gatescope {

/// Settles which gatebits file is in use: the readable one that the arguments named, the
/// environment's, or a new or another one as the operator answers. Ends the process with
/// STATUS_WITHOUT_MEANS when the operator gives up.
void choose_gatebits_file(const Options& options, RegionInUse& region);

}  // namespace gatescope
