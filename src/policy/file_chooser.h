#pragma once

#include <string>

/// The path chosen in the last file dialog. Set by select_cb_file.
extern std::string POSSIBLE_FILE;

/// Lets the operator choose a file, starting in the directory of the gatebits file in use. 1 and
/// POSSIBLE_FILE set when one was chosen, 0 when not. `prompt_text` is what the choice is for;
/// the dialog has never shown it.
int select_cb_file(const std::string& prompt_text);
