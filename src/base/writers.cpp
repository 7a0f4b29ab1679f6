#include "base/writers.h"

#include <cerrno>
#include <thread>

#include "base/platform.h"

namespace gatescope {
namespace {

constexpr std::chrono::milliseconds STEP(1);

}  // namespace

WriterCheck wait_for_writers(const Descriptor& file,
                             std::chrono::steady_clock::time_point deadline) {
    while (true) {
        // While the lease is held no process can open the file for writing: the size is stable.
        const Lease lease = take_lease(file.get());
        const bool leased = lease == Lease::TAKEN;
        const bool has_open_writer = lease == Lease::REFUSED;
        struct stat status = {};
        const int error = fstat(file.get(), &status) == 0 ? 0 : errno;
        if (leased) release_lease(file.get());
        if (error != 0 || leased) return {error, status, Writers::NONE};
        if (std::chrono::steady_clock::now() >= deadline) {
            return {0, status, has_open_writer ? Writers::PRESENT : Writers::UNKNOWN};
        }
        if (has_open_writer) {
            std::this_thread::sleep_for(STEP);
        } else {
            std::this_thread::sleep_until(deadline);
        }
    }
}

}  // namespace gatescope
