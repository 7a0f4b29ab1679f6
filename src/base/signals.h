#pragma once

#include "base/signals_held.h"

namespace gatescope {

/// From now on each of the ending_signals ends the child that is being waited for, removes the
/// temporary files, and then ends the process in its own way (with a core, where it leaves one). A
/// signal that was ignored or handled before stays so. A file size limit becomes an error of the
/// write that meets it.
void end_in_order_on_signals();

}  // namespace gatescope
