#include "base/files.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <chrono>
#include <thread>

#include "base/descriptor.h"

namespace gatescope {
namespace {

using namespace std::chrono_literals;

constexpr auto LEASE_PAUSE = 1ms;

bool is_regular(const std::string& path, int directory) {
    struct stat status;
    return fstatat(directory, path.c_str(), &status, 0) == 0 && S_ISREG(status.st_mode);
}

}  // namespace

bool this_file_exists(const std::string& path) {
    struct stat status;
    return stat(path.c_str(), &status) == 0;
}

int open_regular_file(const std::string& path, int flags, int directory,
                      std::chrono::steady_clock::time_point until) {
    const auto try_to_open = [&] {
        // Non-blocking: the file may have been replaced by a pipe.
        constexpr int NEVER_WAITS = O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
        return Descriptor(openat(directory, path.c_str(), flags | NEVER_WAITS, 0666));
    };
    Descriptor file = try_to_open();
    // Another process holds a lease; the system asks it to give the lease up.
    while (!file && errno == EWOULDBLOCK && std::chrono::steady_clock::now() < until &&
           is_regular(path, directory)) {
        std::this_thread::sleep_for(LEASE_PAUSE);
        file = try_to_open();
    }
    struct stat status;
    if (!file || fstat(file.get(), &status) != 0) return -1;
    if (!S_ISREG(status.st_mode)) {
        errno = S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
        return -1;
    }
    return file.release();
}

}  // namespace gatescope
