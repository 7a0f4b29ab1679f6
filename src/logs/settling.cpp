#include "logs/settling.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <csignal>
#include <thread>

#include "logs/log_access.h"

namespace {

using namespace std::chrono_literals;

constexpr auto STEP = 1ms;

}  // namespace

Settled settle(const Descriptor& file, Moment deadline) {
    // When another process opens the file during the lease, the system sends a signal: this one is
    // ignored unless it is asked for.
    fcntl(file.get(), F_SETSIG, SIGURG);
    while (true) {
        // The system grants no lease while there is a writer. A process that opens the file to
        // write waits as long as the lease is held, which is for one look at the size.
        const bool granted = fcntl(file.get(), F_SETLEASE, F_RDLCK) == 0;
        const bool is_written = !granted && errno == EAGAIN;
        struct stat status;
        const bool is_known = fstat(file.get(), &status) == 0;
        if (granted) fcntl(file.get(), F_SETLEASE, F_UNLCK);
        need(is_known);
        if (granted || std::chrono::steady_clock::now() >= deadline) {
            return {status.st_size, is_written};
        }
        if (is_written) {
            std::this_thread::sleep_for(STEP);
        } else {
            std::this_thread::sleep_until(deadline);
        }
    }
}
