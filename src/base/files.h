#pragma once

#include <string>

// Whole-file operations. Those that can fail for a reason the operator must hear end the process
// through gripe; the others report through their result only.

/// Whether the path can be examined, whatever kind of file it is.
bool this_file_exists(const std::string& path);

/// Opens a regular file with these flags of open(2); where they create it, for all to read and
/// write as far as the umask lets them. Never waits for the other end of a pipe or for a device:
/// those are refused with EINVAL, or what the system says. The descriptor, or -1 with errno set.
int open_regular_file(const std::string& path, int flags);

/// Creates or truncates a file and writes `text` (may be null) into it; gripes when it cannot be
/// opened. Returns the status of the close (0: all written).
int touch_file(const std::string& path, const char* text);

/// Opens a file for appending, creating it where needed, and appends `text` (may be null);
/// gripes when it cannot be opened. Returns the status of the close.
int append_file(const std::string& path, const char* text);

/// Copies a text file over `destination`, which is created or truncated first; gripes when either
/// cannot be opened. A NUL byte ends what is copied of the 30000-byte chunk that it stands in.
/// Returns the status of the close.
int copy_file(const std::string& source, const std::string& destination);

/// copy_file, then the source is removed.
void move_file(const std::string& source, const std::string& destination);

/// Set the mode to 0666 or 0444; the result is the system call's.
int make_public(const std::string& path);
int make_fully_readable(const std::string& path);

/// Whether two files hold the same bytes. Files that cannot be read, and empty files, never do.
bool cmp_files(const std::string& path1, const std::string& path2);
