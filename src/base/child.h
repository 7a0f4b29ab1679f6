#pragma once

#include <string>

namespace gatescope {

/// Flushes standard output, so that what the child prints comes after what was printed so far,
/// runs `command` in the shell, waits for it and returns the status as the shell call gives it
/// (exit status times 256, or the number of the signal that ended it; -1 when no child could be
/// started). The command ends at its first NUL.
///
/// Unlike std::system it leaves the signals alone: whoever interrupts a dialog ends the program
/// too, and not only the dialog.
///
/// `program`, where it is not null, is what the command starts. When the search path does not hold
/// it no shell is started, which would only say so in its own words; the status is that of a shell
/// that does not find it, 127 times 256.
int run_in_shell(const std::string& command, const char* program = nullptr);

/// For signal handlers: sends the signal to the child that run_in_shell is waiting for, if there
/// is one, and to all that it has started, and waits for their end, though no longer than a
/// second.
void end_running_child(int signal_number);

}  // namespace gatescope
