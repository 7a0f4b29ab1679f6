#include "base/files.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>

#include "base/descriptor.h"

bool this_file_exists(const std::string& path) {
    struct stat status;
    return stat(path.c_str(), &status) == 0;
}

int open_regular_file(const std::string& path, int flags) {
    Descriptor file(open(path.c_str(), flags | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0666));
    struct stat status;
    // Somebody has a lease on it, who is told that another waits.
    if (!file && errno == EWOULDBLOCK && stat(path.c_str(), &status) == 0 &&
        S_ISREG(status.st_mode)) {
        file = Descriptor(open(path.c_str(), flags | O_NOCTTY | O_CLOEXEC, 0666));
    }
    if (!file || fstat(file.get(), &status) != 0) return -1;
    if (!S_ISREG(status.st_mode)) {
        errno = S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
        return -1;
    }
    return file.release();
}
