#pragma once

#include "base/signals_held.h"

/// From now on the ending_signals end the child that is being waited for, remove the temporary
/// files, and only then end the process, as they would have without this, with a core where one
/// leaves one. A signal that was ignored or handled before stays so. A file size limit becomes an
/// error of the write that meets it.
void end_in_order_on_signals();
