#include "base/file_lock.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <thread>

#include "base/file_identity.h"
#include "base/platform.h"

namespace {

constexpr std::chrono::milliseconds PAUSE(10);

/// Open for writing: some file systems across a network lock nothing else.
Descriptor open_to_lock(const std::string& path) {
    Descriptor file(open(path.c_str(), O_RDWR | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat status;
    if (!file || fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)) return {};
    return file;
}

}  // namespace

FileLock lock_file(const std::string& path, std::chrono::milliseconds patience) {
    const auto end = std::chrono::steady_clock::now() + patience;
    while (true) {
        Descriptor file = open_to_lock(path);
        if (!file) return {};
        const int error = lock_exclusively(file.get());
        if (error != 0 && error != EWOULDBLOCK && error != EINTR) {
            return {LockState::NOT_TO_BE_HAD, std::move(file)};
        }
        if (error == 0 && is_name_of(path, file.get(), 0))
            return {LockState::HELD, std::move(file)};
        if (std::chrono::steady_clock::now() >= end) return {LockState::KEPT_BY_ANOTHER, {}};
        std::this_thread::sleep_for(PAUSE);
    }
}
