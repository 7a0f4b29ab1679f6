#pragma once

#include <string>

namespace gatescope {

/// Whether a directory of the search path (the variable PATH) holds `program`, and lets this
/// process do with it what `mode` says: F_OK, it is there; X_OK, it can be executed.
bool is_on_search_path(const std::string& program, int mode);

}  // namespace gatescope
