#pragma once

#include <optional>
#include <string>

namespace gatescope {

/// Lets the operator choose a file, starting in the directory of `file_in_use` if that has one.
/// Returns its path, or nothing if none was chosen. `prompt_text` is the purpose of the choice; the
/// dialog does not show it.
std::optional<std::string> select_cb_file(const std::string& file_in_use,
                                          const std::string& prompt_text);

}  // namespace gatescope
