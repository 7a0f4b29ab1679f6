#pragma once

#include <string>

/// Flushes standard output, so that what the child prints comes after what was printed so far,
/// runs `command` in the shell, waits for it and returns the status as the shell call gives it
/// (exit status times 256, or the number of the signal that ended it; -1 when no child could be
/// started). The command ends at its first NUL.
int run_in_shell(const std::string& command);
