#include "base/file_identity.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <vector>

#include "base/paths.h"
#include "base/platform.h"

namespace gatescope {
namespace {

/// Adds the bytes from `from` on to an FNV-1a hash of 64 bits. 0 or an errno.
int add_bytes(int file, off_t from, std::vector<char>* bytes, std::uint64_t* hash) {
    const ssize_t got = pread(file, bytes->data(), bytes->size(), from);
    if (got == -1) return errno;
    for (std::size_t i = 0; i < static_cast<std::size_t>(got); ++i) {
        *hash = (*hash ^ static_cast<unsigned char>((*bytes)[i])) * 0x100000001b3;
    }
    return 0;
}

bool same_owner(const struct stat& one, const struct stat& other) {
    return one.st_uid == other.st_uid && one.st_gid == other.st_gid;
}

}  // namespace

FileId id_of(const struct stat& status) {
    return {status.st_dev, status.st_ino};
}

bool is_name_of(const std::string& path, int file, int flags) {
    struct stat named;
    struct stat opened;
    return fstatat(AT_FDCWD, path.c_str(), &named, flags) == 0 && fstat(file, &opened) == 0 &&
           id_of(named) == id_of(opened);
}

int fingerprint_of(int file, off_t size, std::uint64_t* fingerprint) {
    constexpr off_t PART = 8192;
    std::vector<char> bytes(static_cast<std::size_t>(std::min(size, PART)));
    *fingerprint = 0xcbf29ce484222325;
    const int error = add_bytes(file, 0, &bytes, fingerprint);
    if (error != 0) return error;
    return add_bytes(file, std::max(size - PART, off_t{0}), &bytes, fingerprint);
}

int carry_over_identity(int from, int to) {
    struct stat old_status;
    struct stat new_status;
    if (fstat(from, &old_status) != 0 || fstat(to, &new_status) != 0) return errno;
    if (!same_owner(old_status, new_status) &&
        fchown(to, old_status.st_uid, old_status.st_gid) != 0) {
        return errno;
    }
    // An access control list is set before the mode, which would otherwise be masked by it.
    if (const int error = carry_over_attributes(from, to)) return error;
    if (fchmod(to, old_status.st_mode & 07777) != 0 || fstat(to, &new_status) != 0) return errno;
    // The system may drop mode bits and still report success.
    return new_status.st_mode == old_status.st_mode ? 0 : EPERM;
}

int sync_directory_of(const std::string& path) {
    const std::string directory = directory_of(path);
    const int descriptor = open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    // A directory without read permission cannot be opened and so not be synced.
    if (descriptor == -1) return errno == EACCES ? 0 : errno;
    const int result = fsync(descriptor) == 0 || errno == EINVAL ? 0 : errno;
    close(descriptor);
    return result;
}

bool is_in_append_only_directory(const std::string& path) {
    return is_append_only_directory(directory_of(path));
}

}  // namespace gatescope
