#pragma once

#include <sys/types.h>

#include <string>

// Every temporary file of the process is on this list from its creation to its removal, so that
// no way out of the process, a signal included, leaves one behind.

/// Puts `path` on the list. A path may be on it once only. Without the memory for that the file is
/// removed, and std::bad_alloc thrown.
void remember_temporary_file(const std::string& path);

/// Puts `path` on the list for signals only: an end by clean_exit leaves the file where it is.
void remember_for_signals(const std::string& path);

/// Takes `path` off the list; the file itself is left alone.
void forget_temporary_file(const std::string& path);

/// Removes every file on the list, but those for signals only, and empties it.
void remove_temporary_files();

/// For signal handlers: removes every file on the list, and leaves the list as it is. Those for
/// signals only go last.
void unlink_temporary_files();

/// Creates `path` for writing, exclusively, after removing what stood under that name; a link is
/// never followed. The file is on the list of temporary files from then on. The descriptor, or -1
/// with errno set: EPERM in a directory out of which no file can be removed again.
int create_temporary_file(const std::string& path, mode_t mode = 0600);

/// Removes a temporary file and takes it off the list.
void remove_temporary_file(const std::string& path);

/// Removes a file; tries once more in another way when permission is lacking. Failures are
/// ignored.
void unlink_remove(const std::string& path);
