#include "base/writers.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <csignal>
#include <thread>

namespace {

constexpr std::chrono::milliseconds STEP(1);

}  // namespace

Settled settle(const Descriptor& file, std::chrono::steady_clock::time_point deadline) {
    // A process that opens the file during the lease makes the system send a signal: this one is
    // ignored by default.
    fcntl(file.get(), F_SETSIG, SIGURG);
    while (true) {
        // A read lease is granted only while no process has the file open for writing. One that
        // opens it to write then waits until the lease is given back, after one look at the size.
        const bool granted = fcntl(file.get(), F_SETLEASE, F_RDLCK) == 0;
        const bool is_written = !granted && errno == EAGAIN;
        struct stat status = {};
        const int error = fstat(file.get(), &status) == 0 ? 0 : errno;
        if (granted) fcntl(file.get(), F_SETLEASE, F_UNLCK);
        if (error != 0 || granted) return {error, status.st_size, Writers::NONE};
        if (std::chrono::steady_clock::now() >= deadline) {
            return {0, status.st_size, is_written ? Writers::SOME : Writers::UNKNOWN};
        }
        if (is_written) {
            std::this_thread::sleep_for(STEP);
        } else {
            std::this_thread::sleep_until(deadline);
        }
    }
}
