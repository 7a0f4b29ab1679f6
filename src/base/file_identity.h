#pragma once

#include <fcntl.h>
#include <sys/stat.h>

#include <cstdint>
#include <string>

namespace gatescope {

/// Identifies a file independently of its names.
struct FileId {
    dev_t device = 0;
    ino_t inode = 0;
    bool operator==(const FileId&) const = default;
};
FileId id_of(const struct stat& status);

/// Whether `path` is a name of the open file. A symbolic link counts only when `flags` are 0.
bool is_name_of(const std::string& path, int file, int flags = AT_SYMLINK_NOFOLLOW);

/// Sets a fingerprint of the first `size` bytes of an open file, computed from 8 KiB at each end:
/// enough to tell logs apart, not to detect a forgery. 0 or an errno.
int fingerprint_of(int file, off_t size, std::uint64_t* fingerprint);

/// Gives the open file `to` the owner, group, mode and extended attributes (access control lists
/// among them) of the open file `from`, and removes attributes that `from` does not have. 0, or the
/// errno of the first failure.
int carry_over_identity(int from, int to);

/// Syncs the directory of `path` to the disk, so that a rename in it survives a crash. 0 or an
/// errno; 0 also on a file system that cannot sync directories.
int sync_directory_of(const std::string& path);

/// Whether the directory of `path` is append-only: a file created there could be neither renamed
/// nor removed.
bool is_in_append_only_directory(const std::string& path);

}  // namespace gatescope
