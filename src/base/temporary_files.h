#pragma once

#include <string>

// Every temporary file of the process is on this list from its creation to its removal, so that
// no way out of the process, a signal included, leaves one behind.

/// Puts `path` on the list. A path may be on it once only.
void remember_temporary_file(const std::string& path);

/// Puts `path` on the list for signals only: an end by clean_exit leaves the file where it is.
void remember_for_signals(const std::string& path);

/// Takes `path` off the list; the file itself is left alone.
void forget_temporary_file(const std::string& path);

/// Removes every file on the list, but those for signals only, and empties it.
void remove_temporary_files();

/// For signal handlers: removes every file on the list, the last one first, and leaves the list as
/// it is.
void unlink_temporary_files();
