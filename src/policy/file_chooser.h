#pragma once

#include <optional>
#include <string>

/// Lets the operator choose a file, starting in the directory of the gatebits file in use. Its
/// path, or nothing when none was chosen. `prompt_text` is what the choice is for; the dialog has
/// never shown it.
std::optional<std::string> select_cb_file(const std::string& prompt_text);
