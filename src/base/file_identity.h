#pragma once

#include <fcntl.h>
#include <sys/stat.h>

#include <cstdint>
#include <string>

namespace gatescope {

/// Which file it is, under whatever name.
struct FileId {
    dev_t device = 0;
    ino_t inode = 0;
    bool operator==(const FileId&) const = default;
};
FileId id_of(const struct stat& status);

/// Whether `path` is a name of the open file; no link to it counts, unless `flags` are 0.
bool is_name_of(const std::string& path, int file, int flags = AT_SYMLINK_NOFOLLOW);

/// Sets a fingerprint of the first `size` bytes of an open file, made of some KiB at both ends: it
/// tells a file from another one, not from a forgery. 0 or an errno.
int fingerprint_of(int file, off_t size, std::uint64_t* fingerprint);

/// Gives the open file `to` the owner, group, mode and extended attributes (access control lists
/// among them) of the open file `from`, and takes away what that one does not have. 0, or the errno
/// of the first that could not be carried over.
int carry_over_identity(int from, int to);

/// Brings the directory that holds `path` to the disk, so that a rename in it survives a crash.
/// 0 or an errno; a file system that cannot sync directories counts as done.
int sync_directory_of(const std::string& path);

/// Whether a file made at `path` could not be removed or renamed again, since its directory only
/// lets files be added.
bool would_stay_at(const std::string& path);

}  // namespace gatescope
