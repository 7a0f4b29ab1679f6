#include "base/signals_held.h"

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

SignalsHeld::SignalsHeld() {
    const sigset_t signals = ending_signals();
    sigprocmask(SIG_BLOCK, &signals, &before_);
}

SignalsHeld::~SignalsHeld() {
    sigprocmask(SIG_SETMASK, &before_, nullptr);
}

}  // namespace gatescope
