#pragma once

#include <optional>
#include <string>
#include <vector>

namespace gatescope {

// Text prompts and selection lists. Each returns the operator's answer, which may be empty, or
// nothing when the dialog was cancelled, that is, ended with a status other than 0.

/// Options of make_selection.
inline constexpr char SINGLE_CHOICE[] = " ";
inline constexpr char MULTIPLE_CHOICE[] = "-choices";

/// Asks for a line of text, with `def` as the initial answer. The words of the answer are joined by
/// single blanks.
std::optional<std::string> prompt(const std::string& prompt_text, const std::string& def);

/// The entries joined by commas.
std::string as_list(const std::vector<std::string>& entries);

/// Lets the operator pick from comma-separated `items`. A single pick is returned like a text
/// answer, several in the order in which the dialog wrote them, separated by commas. Gripes when
/// the answer of a multiple choice is missing, unreadable or longer than 10001 bytes.
std::optional<std::string> make_selection(const std::string& title, const std::string& items,
                                          const std::string& option);

/// Runs a command with its output discarded; returns the shell's wait status. Redirects this
/// process's streams, so that the shell gets the command unchanged, and runs it also when there is
/// no room for a temporary file.
int get_system_rc(const std::string& command);

}  // namespace gatescope
