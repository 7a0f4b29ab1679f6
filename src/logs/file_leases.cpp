#include "logs/file_leases.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

namespace {

constexpr useconds_t STEP = 1000;

}  // namespace

Lease take_lease(int file, int kind, const Patience& patience) {
    // Who opens the file during the lease makes the system send this one.
    std::signal(SIGIO, SIG_IGN);
    for (int tried = 1;; ++tried) {
        if (fcntl(file, F_SETLEASE, kind) == 0) return GRANTED;
        const bool somebody_is_there = errno == EAGAIN;
        if (tried >= (somebody_is_there ? patience.steps : patience.blind_steps)) {
            return somebody_is_there ? REFUSED : NOT_KNOWN_HERE;
        }
        usleep(STEP);
    }
}

bool writers_have_gone(int file, const Patience& patience) {
    const Lease lease = take_lease(file, F_RDLCK, patience);
    if (lease == GRANTED) fcntl(file, F_SETLEASE, F_UNLCK);
    return lease != REFUSED;
}
