#include "base/signals.h"

#include <array>

#include "base/child.h"
#include "base/temporary_files.h"

namespace {

constexpr std::array<int, 5> ENDING_SIGNALS = {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE};

sigset_t ending_signals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int number : ENDING_SIGNALS) sigaddset(&signals, number);
    return signals;
}

extern "C" void end_by_signal(int number) {
    // The dialog first: it would otherwise write its answer after the files have been removed.
    end_running_child(number);
    unlink_temporary_files();
    signal(number, SIG_DFL);
    raise(number);
}

extern "C" void go_on(int /*number*/) {}

}  // namespace

void end_in_order_on_signals() {
    for (const int number : ENDING_SIGNALS) {
        struct sigaction action = {};
        if (sigaction(number, nullptr, &action) != 0 || action.sa_handler == SIG_IGN) continue;
        action.sa_handler = end_by_signal;
        action.sa_mask = ending_signals();
        action.sa_flags = 0;
        sigaction(number, &action, nullptr);
    }
    // A handler, not SIG_IGN: that would be handed on to the programs we start.
    signal(SIGXFSZ, go_on);
}

SignalsHeld::SignalsHeld() {
    const sigset_t signals = ending_signals();
    sigprocmask(SIG_BLOCK, &signals, &before_);
}

SignalsHeld::~SignalsHeld() {
    sigprocmask(SIG_SETMASK, &before_, nullptr);
}
