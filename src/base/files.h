#pragma once

#include <fcntl.h>

#include <chrono>
#include <string>

namespace gatescope {

/// Whether the path can be examined, whatever kind of file it is.
bool this_file_exists(const std::string& path);

/// How long a lease on a file is waited for: the system takes it away from a process that does not
/// give it up, by default after 45 seconds.
inline constexpr std::chrono::seconds LEASE_PATIENCE(60);

/// Opens a regular file with these flags of open(2); where they create it, for all to read and
/// write as far as the umask lets them. A relative path begins at the open `directory`. Never waits
/// for the other end of a pipe or for a device: those are refused with EINVAL, or what the system
/// says. Another process's lease on the file is waited for until `until`, then EWOULDBLOCK is set.
/// The descriptor, or -1 with errno set.
int open_regular_file(const std::string& path, int flags, int directory = AT_FDCWD,
                      std::chrono::steady_clock::time_point until =
                          std::chrono::steady_clock::now() + LEASE_PATIENCE);

}  // namespace gatescope
