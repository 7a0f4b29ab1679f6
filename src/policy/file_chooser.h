#pragma once

#include <optional>
#include <string>

namespace gatescope {

/// Lets the operator choose a file, starting in the directory of `file_in_use`, wherever that is
/// when it is empty or a bare name. Its path, or nothing when none was chosen. `prompt_text` is
/// what the choice is for; the dialog has never shown it.
std::optional<std::string> select_cb_file(const std::string& file_in_use,
                                          const std::string& prompt_text);

}  // namespace gatescope
