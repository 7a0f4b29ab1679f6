#include "main/file_identity.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <vector>

namespace {

/// The names of the file's extended attributes, each ended by a NUL. False when they cannot be
/// told; a file system without any has none.
bool attribute_names(int file, std::vector<char>* names) {
    const ssize_t size = flistxattr(file, nullptr, 0);
    if (size < 0) return errno == ENOTSUP;
    names->resize(static_cast<std::size_t>(size));
    const ssize_t got = flistxattr(file, names->data(), names->size());
    if (got < 0) return false;
    names->resize(static_cast<std::size_t>(got));
    return true;
}

bool carry_over_attribute(int from, int to, const char* name) {
    const ssize_t size = fgetxattr(from, name, nullptr, 0);
    if (size < 0) return false;
    std::vector<char> value(static_cast<std::size_t>(size));
    const ssize_t got = fgetxattr(from, name, value.data(), value.size());
    return got >= 0 && fsetxattr(to, name, value.data(), static_cast<std::size_t>(got), 0) == 0;
}

bool carry_over_attributes(int from, int to) {
    std::vector<char> names;
    if (!attribute_names(from, &names)) return false;
    for (std::size_t at = 0; at < names.size();) {
        const std::string name = &names[at];
        if (!carry_over_attribute(from, to, name.c_str())) return false;
        at += name.size() + 1;
    }
    return true;
}

}  // namespace

int carry_over_identity(int from, int to) {
    struct stat old_status;
    struct stat new_status;
    if (fstat(from, &old_status) != 0 || fstat(to, &new_status) != 0) return errno;
    const bool same_owner =
        old_status.st_uid == new_status.st_uid && old_status.st_gid == new_status.st_gid;
    if (!same_owner && fchown(to, old_status.st_uid, old_status.st_gid) != 0) return errno;
    // An access control list is set before the mode, which would otherwise be masked by it.
    if (!carry_over_attributes(from, to)) return errno != 0 ? errno : EPERM;
    return fchmod(to, old_status.st_mode & 07777) == 0 ? 0 : errno;
}

int sync_directory_of(const std::string& path) {
    const auto slash = path.rfind('/');
    const std::string directory = slash == std::string::npos ? "."
                                  : slash == 0               ? "/"
                                                             : path.substr(0, slash);
    const int descriptor = open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    // A directory that may be written but not read cannot be opened; its entries are left to the
    // file system's own time.
    if (descriptor == -1) return errno == EACCES ? 0 : errno;
    const int result = fsync(descriptor) == 0 || errno == EINVAL ? 0 : errno;
    close(descriptor);
    return result;
}
