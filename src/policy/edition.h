#pragma once

#include "policy/gatebits.h"

namespace gatescope {

/// The edition of the policy engine that the region header line of the gatebits file names: 1 the
/// full edition; 0 the lite edition, whose command keys are called CPDs. A file without such a line
/// is of the full edition.
int read_edition(const Gatebits& gatebits);

}  // namespace gatescope
