#include "base/writers.h"

#include <sys/stat.h>

#include <cerrno>
#include <thread>

#include "base/platform.h"

namespace gatescope {
namespace {

constexpr std::chrono::milliseconds STEP(1);

}  // namespace

Settled settle(const Descriptor& file, std::chrono::steady_clock::time_point deadline) {
    while (true) {
        // A process that opens the file to write waits until the lease is given back, after one
        // look at the size.
        const Lease lease = take_lease(file.get());
        const bool granted = lease == Lease::TAKEN;
        const bool is_written = lease == Lease::REFUSED;
        struct stat status = {};
        const int error = fstat(file.get(), &status) == 0 ? 0 : errno;
        if (granted) release_lease(file.get());
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

}  // namespace gatescope
