#include "base/signals_blocked.h"

#include <array>

namespace gatescope {
namespace {

/// Signals that do not end a process by default, cannot be caught, or become an error of write (the
/// file size limit). All others, real-time signals included, end a process.
constexpr std::array<int, 10> NOT_ENDING = {SIGCHLD, SIGCONT, SIGURG,  SIGWINCH, SIGTSTP,
                                            SIGTTIN, SIGTTOU, SIGKILL, SIGSTOP,  SIGXFSZ};

}  // namespace

sigset_t ending_signals() {
    sigset_t signals;
    sigfillset(&signals);
    for (const int number : NOT_ENDING) sigdelset(&signals, number);
    return signals;
}

SignalsBlocked::SignalsBlocked() {
    const sigset_t signals = ending_signals();
    sigprocmask(SIG_BLOCK, &signals, &previous_mask_);
}

SignalsBlocked::~SignalsBlocked() {
    sigprocmask(SIG_SETMASK, &previous_mask_, nullptr);
}

}  // namespace gatescope
