#pragma once

#include <string>

namespace gatescope {

/// Runs a dialog's command line; the shell's status. When clearprompt cannot be started, `text`,
/// which it should have shown, goes to standard error with the reason and with `lost`: one of
/// NOT_SHOWN, NOT_ASKED_SO_ABORT and NOT_ASKED_SO_CANCELLED.
int run_dialog(const std::string& command, const std::string& text, const char* lost);

// How a text gets into a command line: the one place that knows about quoting.

/// `text`, up to its first NUL, in double quotes. Its backslashes are escaped, so that each arrives
/// as it is given. Quotes, dollar signs and back-quotes go to the shell as they are and act there;
/// scripts rely on that. Only when the environment variable ZUL_GATESCOPE_STRICT_QUOTING is "yes"
/// (in any case) are they escaped too, so that clearprompt receives the text letter for letter.
std::string quoted(const std::string& text);

/// A path as an argument of another program's command line: as it stands, which scripts rely on,
/// but quoted when ZUL_GATESCOPE_STRICT_QUOTING is "yes".
std::string one_argument(const std::string& path);

/// "-newline" when `text` holds the two characters backslash and n, so that clearprompt turns
/// them into a line break; else a single blank.
std::string newline_option(const std::string& text);

}  // namespace gatescope
