#pragma once

#include <fcntl.h>

#include <chrono>
#include <string>

namespace gatescope {

/// Whether stat succeeds on the path; any kind of file exists.
bool this_file_exists(const std::string& path);

/// How long to wait for another process's lease. The system breaks a lease that is not given up,
/// by default after 45 seconds.
inline constexpr std::chrono::seconds LEASE_PATIENCE(60);

/// Opens a regular file with these flags of open(2), and mode 0666 less the umask when they create
/// it. A relative path begins at the open `directory`. Never waits for the other end of a pipe or
/// for a device: these fail with EINVAL or the errno of open. Waits until `until` for another
/// process's lease on the file, then fails with EWOULDBLOCK. The descriptor, or -1 with errno set.
int open_regular_file(const std::string& path, int flags, int directory = AT_FDCWD,
                      std::chrono::steady_clock::time_point until =
                          std::chrono::steady_clock::now() + LEASE_PATIENCE);

}  // namespace gatescope
