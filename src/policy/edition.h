#pragma once

#include "policy/gatebits.h"

namespace gatescope {

/// The edition of the policy engine in the region header line of the gatebits file: 1 for the full
/// edition, or without such a line; 0 for the lite edition, whose command keys are called CPDs.
int read_edition(const Gatebits& gatebits);

}  // namespace gatescope
