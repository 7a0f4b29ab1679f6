#pragma once

#include "base/signals_blocked.h"

namespace gatescope {

/// Installs handlers: each of the ending_signals ends the running child, removes the temporary
/// files and then ends the process by its default action (a core dump included). A signal that was
/// ignored or handled before stays so. A write beyond the file size limit fails instead of ending
/// the process.
void install_signal_cleanup();

}  // namespace gatescope
