#pragma once

#include <sys/types.h>

#include <string>

namespace gatescope {

// System calls beyond POSIX. cmake/Platform.cmake detects them; where one is missing, or with
// GATESCOPE_PLAIN_POSIX, the fallback described here is used. Calls that may fail return 0 or an
// errno.

/// Takes an exclusive advisory lock on an open file, without waiting, until it is closed.
/// EWOULDBLOCK when another process holds the lock, or the errno of a file system without locks.
/// The fallback for flock is a lock of fcntl, which needs a file open for writing (else EBADF) and
/// cannot lock a directory.
int lock_exclusively(int file);

/// The outcome of take_lease.
enum class Lease {
    TAKEN,       ///< no process has the file open for writing; one that opens it so has to wait
    REFUSED,     ///< a process has it open for writing
    UNAVAILABLE  ///< the file is another user's, or the file system has no leases
};
/// Takes a read lease on a file that is open here for reading only. A process that waits for the
/// lease is signalled by SIGURG, which is ignored by default.
Lease take_lease(int file);
void release_lease(int file);

/// Renames a file unless the new name exists (EEXIST). EINVAL or ENOSYS where the file system or
/// the operating system cannot.
int rename_without_replacing(const std::string& from, const std::string& to);

/// Creates a file at a path that ends in "XXXXXX", which is replaced, and opens it for writing;
/// children do not inherit it. The descriptor, or -1 with errno set.
int make_unique_file(std::string* path);

/// Whether the directory has the append-only attribute: files can be created, but neither removed
/// nor renamed. Without statx false.
bool is_append_only_directory(const std::string& directory);

/// Gives the open file `to` the extended attributes of the open file `from`, and removes all
/// others. The fallback does nothing.
int carry_over_attributes(int from, int to);

/// The number of processors that the CPU affinity allows; without affinities those of the machine.
/// 0 when there are more than a cpu_set_t holds.
int processors_allowed();

/// Reads the process ids of a process's children: decimal numbers, each followed by a blank. The
/// list's length, or -1; 0 without /proc. Async-signal-safe.
ssize_t read_children(pid_t process, char* list, std::size_t size);

/// Whether cgroup limits can be read.
inline constexpr bool HAS_CGROUPS = GATESCOPE_HAS_PROC == 1;

}  // namespace gatescope
