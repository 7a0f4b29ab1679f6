#pragma once

#include "actions/run.h"

/// Settles which gatebits file to use: the readable one that the arguments named, the
/// environment's, or a new or another one as the operator answers. Ends the process with status 1
/// when the operator gives up.
void choose_gatebits_file(Run& run);
