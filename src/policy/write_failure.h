#pragma once

#include <string>

#include "base/replace_file.h"

namespace gatescope {

// What the operator is told when a file could not be written: which, why, and in what state it was
// left. Both end the program.

/// `path` is as it was.
[[noreturn]] void gripe_unchanged(const std::string& path, const std::string& reason);

/// For replace_file, which was given `path` and `safe_copy`.
[[noreturn]] void gripe_not_replaced(const Failure& failure, const std::string& path,
                                     const std::string& safe_copy);

}  // namespace gatescope
