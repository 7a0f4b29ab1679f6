#pragma once

#include <string>

namespace gatescope {

/// Runs the command line of a dialog that shows `text`; returns the shell's status. When
/// clearprompt cannot be started, `text` is written to standard error with the reason and
/// `consequence`: NOT_SHOWN, NOT_ASKED_SO_ABORT or NOT_ASKED_SO_CANCELLED.
int run_dialog(const std::string& command, const std::string& text, const char* consequence);

// Quoting of arguments in command lines.

/// `text`, up to its first NUL, in double quotes with its backslashes escaped. Quotes, dollar signs
/// and back-quotes are not escaped and act in the shell; scripts rely on that. Only when the
/// environment variable ZUL_GATESCOPE_STRICT_QUOTING is "yes" (in any case) are they escaped too,
/// and clearprompt receives the text unchanged.
std::string quoted(const std::string& text);

/// A path as an argument of another program's command line: not quoted, which scripts rely on,
/// unless ZUL_GATESCOPE_STRICT_QUOTING is "yes".
std::string path_argument(const std::string& path);

/// "-newline", by which clearprompt turns the two characters backslash and n into a line break,
/// when `text` contains them; else a single blank.
std::string newline_option(const std::string& text);

}  // namespace gatescope
