#include "base/signals.h"

#include <algorithm>
#include <array>
#include <csignal>

#include "base/child.h"
#include "base/temporary_files.h"

namespace gatescope {
namespace {

/// What every dialog understands as the wish that it may end.
constexpr std::array<int, 5> WISHES = {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE};

int as_a_wish(int number) {
    return std::find(WISHES.begin(), WISHES.end(), number) != WISHES.end() ? number : SIGTERM;
}

extern "C" void end_by_signal(int number) {
    // The dialog first: it would otherwise write its answer after the files have been removed.
    end_running_child(as_a_wish(number));
    unlink_temporary_files();
    signal(number, SIG_DFL);
    raise(number);
}

extern "C" void go_on(int /*number*/) {}

}  // namespace

void end_in_order_on_signals() {
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
    // A handler, not SIG_IGN: that would be handed on to the programs we start.
    signal(SIGXFSZ, go_on);
}

}  // namespace gatescope
