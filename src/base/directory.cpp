#include "base/directory.h"

#include <dirent.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <memory>
#include <string_view>

#include "base/files.h"
#include "base/platform.h"
#include "base/signals_blocked.h"

namespace gatescope {

Directory::Directory(const std::string& path)
    : path_(path), descriptor_(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {}

int Directory::lock() const {
    return lock_exclusively(descriptor());
}

Directory::Entry Directory::entry_of(const std::string& name) const {
    Entry entry = {};
    if (fstatat(descriptor(), name.c_str(), &entry.status, AT_SYMLINK_NOFOLLOW) != 0) {
        entry.error = errno;
    }
    return entry;
}

bool Directory::is_name_of(const std::string& name, const Descriptor& file) const {
    struct stat opened;
    const Entry entry = entry_of(name);
    return entry.exists() && fstat(file.get(), &opened) == 0 &&
           id_of(entry.status) == id_of(opened);
}

int Directory::check_replaceable(const std::string& name, const std::string& trial) const {
    struct stat directory;
    if (fstat(descriptor(), &directory) != 0) return errno;
    const Entry entry = entry_of(name);
    const uid_t self = geteuid();
    // In a sticky directory names belong to the owners of their files.
    const bool may = self == 0 || (directory.st_mode & S_ISVTX) == 0 || self == directory.st_uid ||
                     self == entry.status.st_uid;
    if (!may) return EPERM;
    const SignalsBlocked blocked;
    const int error = link(name, trial);
    if (error != 0) return error == EEXIST ? 0 : error;
    return unlink(trial);
}

int Directory::list(const std::string& prefix, std::vector<std::string>* names) const {
    // A second descriptor: reading moves its position, and closedir closes it.
    Descriptor again(openat(descriptor(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!again) return errno;
    const std::unique_ptr<DIR, int (*)(DIR*)> stream(fdopendir(again.get()), closedir);
    if (!stream) return errno;
    static_cast<void>(again.release());
    const dirent* entry;
    while ((errno = 0, entry = readdir(stream.get())) != nullptr) {
        const std::string_view name = entry->d_name;
        if (name.starts_with(prefix)) names->emplace_back(name);
    }
    return errno;
}

Descriptor Directory::open(const std::string& name, int flags,
                           std::chrono::steady_clock::time_point until) const {
    return Descriptor(open_regular_file(name, flags | O_NOFOLLOW, descriptor(), until));
}

int Directory::rename(const std::string& from, const std::string& to) const {
    return renameat(descriptor(), from.c_str(), descriptor(), to.c_str()) == 0 ? 0 : errno;
}

int Directory::link(const std::string& from, const std::string& to) const {
    if (linkat(descriptor(), from.c_str(), descriptor(), to.c_str(), 0) == 0) return 0;
    const int error = errno;
    const Entry one = entry_of(from);
    const Entry other = entry_of(to);
    const bool same = one.exists() && other.exists() && id_of(one.status) == id_of(other.status);
    return same ? 0 : error;
}

int Directory::unlink(const std::string& name) const {
    return unlinkat(descriptor(), name.c_str(), 0) == 0 || errno == ENOENT ? 0 : errno;
}

int Directory::sync() const {
    return fsync(descriptor()) == 0 || errno == EINVAL ? 0 : errno;
}

}  // namespace gatescope
