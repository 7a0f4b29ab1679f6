#pragma once

#include <string>

namespace gatescope {

/// Flushes standard output, so that the child prints after what was printed so far, runs `command`
/// in the shell and waits for it. Returns the wait status: the exit status times 256, or the number
/// of the signal that ended the shell; -1 when no child could be started. The command ends at its
/// first NUL.
///
/// Unlike std::system it does not ignore SIGINT and SIGQUIT: an interrupt of a dialog ends the
/// program too.
///
/// `program`, where it is not null, is what the command starts. When it is not on the search path,
/// no shell is started, and so none prints its own error message; the status is 127 times 256, as
/// of a shell that does not find it.
int run_in_shell(const std::string& command, const char* program = nullptr);

/// For signal handlers: sends the signal to the child that run_in_shell waits for, if there is one,
/// and to its descendants, and waits at most one second for their end.
void end_running_child(int signal_number);

}  // namespace gatescope
