#include "base/signals_held.h"

#include <initializer_list>

sigset_t ending_signals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE}) {
        sigaddset(&signals, number);
    }
    return signals;
}

SignalsHeld::SignalsHeld() {
    const sigset_t signals = ending_signals();
    sigprocmask(SIG_BLOCK, &signals, &before_);
}

SignalsHeld::~SignalsHeld() {
    sigprocmask(SIG_SETMASK, &before_, nullptr);
}
