#pragma once

#include <sys/types.h>

#include <string>

namespace gatescope {

// What not every UNIX system has. cmake/Platform.cmake looks for it; without it, or with
// GATESCOPE_PLAIN_POSIX, what is said here is done instead. Calls that may fail return 0 or an
// errno.

/// Locks an open file, without waiting, for as long as it is open here, against all who lock it
/// like this. EWOULDBLOCK when another has locked it, or the errno of a file system without
/// locks. Without flock it is a lock of fcntl, which only takes what is open for writing (EBADF),
/// and so no directory.
int lock_exclusively(int file);

/// What became of the wish for a read lease.
enum class Lease {
    TAKEN,         ///< no process has the file open for writing; one that opens it so has to wait
    REFUSED,       ///< a process has it open for writing
    NOT_TO_BE_HAD  ///< the file is not ours to lease, or there are no leases
};
/// Takes a lease on a file that is open here for reading only; the system's signal about one that
/// waits is one that is ignored by default.
Lease take_lease(int file);
void release_lease(int file);

/// Renames a file unless there is one of the new name: EEXIST. EINVAL or ENOSYS where the file
/// system, or the system, cannot.
int rename_unless_there(const std::string& from, const std::string& to);

/// Makes a file, under a path that ends in "XXXXXX", which is filled in, and opens it for writing;
/// children do not inherit it. The descriptor, or -1 with errno set.
int make_unique_file(std::string* path);

/// Whether files can only be added to the directory, and none be removed or renamed. Without
/// statx no directory is known to be one of these.
bool takes_files_for_good(const std::string& directory);

/// Gives the open file `to` the extended attributes of the open file `from`, and takes away what
/// that one does not have. Without these, no file has any.
int carry_over_attributes(int from, int to);

/// How many processors this process may run on; without affinities those of the machine; 0 when
/// there are more than can be told.
int processors_allowed();

/// Reads the system's list of the children of a process: decimal numbers, a blank after each. Its
/// length, or -1; 0 where there is no such list. May be called by a signal handler.
ssize_t read_children(pid_t process, char* list, std::size_t size);

/// Whether control groups are looked at.
inline constexpr bool HAS_CONTROL_GROUPS = GATESCOPE_HAS_PROC == 1;

}  // namespace gatescope
