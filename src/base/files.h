#pragma once

#include <string>

/// Whether the path can be examined, whatever kind of file it is.
bool this_file_exists(const std::string& path);

/// Opens a regular file with these flags of open(2); where they create it, for all to read and
/// write as far as the umask lets them. Never waits for the other end of a pipe or for a device:
/// those are refused with EINVAL, or what the system says. A lease on the file is waited for until
/// the system takes it away. The descriptor, or -1 with errno set.
int open_regular_file(const std::string& path, int flags);
