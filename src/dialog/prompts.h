#pragma once

#include <optional>
#include <string>
#include <vector>

namespace gatescope {

// Text prompts and selection lists. Each returns the operator's answer, which may be empty, or
// nothing when the dialog was cancelled: every status of it but 0 is a cancel.

/// Options of make_selection.
inline constexpr char SINGLE_CHOICE[] = " ";
inline constexpr char MULTIPLE_CHOICE[] = "-choices";

/// Asks for a line of text, with `def` as the answer that is already there. The answer comes back
/// as its words joined by single blanks.
std::optional<std::string> prompt(const std::string& prompt_text, const std::string& def);

/// The entries as one list, separated by commas.
std::string as_list(const std::vector<std::string>& entries);

/// Lets the operator pick from comma-separated `items`. A single choice comes back like a text
/// answer, several separated by commas in the order in which the dialog wrote them. Gripes when a
/// multiple answer is missing, unreadable or longer than 10001 bytes.
std::optional<std::string> make_selection(const std::string& title, const std::string& items,
                                          const std::string& option);

/// Runs a command with its output thrown away; returns the shell's raw status.
int get_system_rc(const std::string& command);

}  // namespace gatescope
