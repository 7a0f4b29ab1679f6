#pragma once

#include <string>

#include "base/replace_file.h"

namespace gatescope {

// End the program after a failed write, with the file, the reason and the state of the file.

/// For a failure that left `path` unchanged.
[[noreturn]] void gripe_unchanged(const std::string& path, const std::string& reason);

/// For a failure of replace_file(path, ..., safe_copy).
[[noreturn]] void gripe_not_replaced(const Failure& failure, const std::string& path,
                                     const std::string& safe_copy);

}  // namespace gatescope
