#pragma once

#include <string>

namespace gatescope {

/// Whether a directory of the search path (the variable PATH) has `program` with access `mode` of
/// access(2): F_OK, it exists; X_OK, it is executable.
bool is_on_search_path(const std::string& program, int mode);

}  // namespace gatescope
