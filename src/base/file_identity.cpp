#include "base/file_identity.h"

#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <vector>

#include "base/paths.h"

namespace {

/// The names of the file's extended attributes; a file system without any has none. 0 or an errno.
int attribute_names(int file, std::vector<std::string>* names) {
    const ssize_t size = flistxattr(file, nullptr, 0);
    if (size < 0) return errno == ENOTSUP ? 0 : errno;
    std::string list(static_cast<std::size_t>(size), '\0');
    const ssize_t got = flistxattr(file, list.data(), list.size());
    if (got < 0) return errno;
    for (std::size_t at = 0; at < static_cast<std::size_t>(got); at += names->back().size() + 1) {
        names->emplace_back(&list[at]);
    }
    return 0;
}

/// 0 or an errno.
int attribute_value(int file, const char* name, std::vector<char>* value) {
    const ssize_t size = fgetxattr(file, name, nullptr, 0);
    if (size < 0) return errno;
    value->resize(static_cast<std::size_t>(size));
    const ssize_t got = fgetxattr(file, name, value->data(), value->size());
    if (got < 0) return errno;
    value->resize(static_cast<std::size_t>(got));
    return 0;
}

/// Sets it only where it differs: labels that the system gives every file may not be set by
/// everybody.
int carry_over_attribute(int from, int to, const char* name) {
    std::vector<char> value;
    if (const int error = attribute_value(from, name, &value)) return error;
    std::vector<char> current;
    if (attribute_value(to, name, &current) == 0 && current == value) return 0;
    return fsetxattr(to, name, value.data(), value.size(), 0) == 0 ? 0 : errno;
}

int carry_over_attributes(int from, int to) {
    std::vector<std::string> wanted;
    std::vector<std::string> present;
    if (const int error = attribute_names(from, &wanted)) return error;
    if (const int error = attribute_names(to, &present)) return error;
    // A new file takes on its directory's default access control list; the old one may have none.
    for (const std::string& name : present) {
        if (std::find(wanted.begin(), wanted.end(), name) != wanted.end()) continue;
        if (fremovexattr(to, name.c_str()) != 0) return errno;
    }
    for (const std::string& name : wanted) {
        if (const int error = carry_over_attribute(from, to, name.c_str())) return error;
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
    // The system may drop a bit of the mode without a word.
    return new_status.st_mode == old_status.st_mode ? 0 : EPERM;
}

int sync_directory_of(const std::string& path) {
    const std::string directory = directory_of(path);
    const int descriptor = open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    // A directory that may be written but not read cannot be opened; when its entries reach the
    // disk is up to the file system.
    if (descriptor == -1) return errno == EACCES ? 0 : errno;
    const int result = fsync(descriptor) == 0 || errno == EINVAL ? 0 : errno;
    close(descriptor);
    return result;
}

bool would_stay_at(const std::string& path) {
    struct statx status;
    const std::string directory = directory_of(path);
    return statx(AT_FDCWD, directory.c_str(), 0, STATX_TYPE, &status) == 0 &&
           (status.stx_attributes & STATX_ATTR_APPEND) != 0;
}
