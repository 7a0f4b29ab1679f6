#include "base/signals.h"

#include <algorithm>
#include <array>
#include <csignal>

#include "base/child.h"
#include "base/temporary_files.h"

namespace gatescope {
namespace {

/// Signals that end every dialog cleanly.
constexpr std::array<int, 5> PASSED_ON = {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE};

int signal_for_child(int number) {
    const bool passed_on = std::find(PASSED_ON.begin(), PASSED_ON.end(), number) != PASSED_ON.end();
    return passed_on ? number : SIGTERM;
}

extern "C" void end_by_signal(int number) {
    // Before the files are removed: the dialog could create its answer again.
    end_running_child(signal_for_child(number));
    unlink_temporary_files();
    signal(number, SIG_DFL);
    raise(number);
}

extern "C" void ignore_signal(int /*number*/) {}

}  // namespace

void install_signal_cleanup() {
    const sigset_t ending = ending_signals();
    for (int number = 1; number <= SIGRTMAX; ++number) {
        struct sigaction action = {};
        if (sigismember(&ending, number) != 1) continue;
        if (sigaction(number, nullptr, &action) != 0 || action.sa_handler != SIG_DFL) continue;
        action.sa_handler = end_by_signal;
        action.sa_mask = ending;
        action.sa_flags = 0;
        sigaction(number, &action, nullptr);
    }
    // A handler, not SIG_IGN, which child processes would inherit.
    signal(SIGXFSZ, ignore_signal);
}

}  // namespace gatescope
