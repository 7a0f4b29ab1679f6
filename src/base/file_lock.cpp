#include "base/file_lock.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>

#include "base/file_identity.h"
#include "base/platform.h"
#include "base/waiting.h"

namespace gatescope {
namespace {

/// Open for writing: some network file systems lock no other files.
Descriptor open_to_lock(const std::string& path) {
    Descriptor file(open(path.c_str(), O_RDWR | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat status;
    if (!file || fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)) return {};
    return file;
}

}  // namespace

LockState try_lock(const Descriptor& file) {
    const int error = lock_exclusively(file.get());
    if (error == 0) return LockState::HELD;
    return error == EWOULDBLOCK ? LockState::HELD_BY_ANOTHER : LockState::UNAVAILABLE;
}

FileLock lock_file(const std::string& path, std::chrono::milliseconds patience) {
    FileLock lock;
    succeeds_within(patience, [&] {
        lock.file = open_to_lock(path);
        lock.state = lock.file ? try_lock(lock.file) : LockState::UNAVAILABLE;
        if (lock.state == LockState::HELD && !is_name_of(path, lock.file.get(), 0)) {
            lock.state = LockState::HELD_BY_ANOTHER;
        }
        return lock.state != LockState::HELD_BY_ANOTHER;
    });
    if (lock.state == LockState::HELD_BY_ANOTHER) lock.file.close();
    return lock;
}

}  // namespace gatescope
