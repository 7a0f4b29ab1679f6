#include "main/child.h"

#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdio>

#include "main/filled.h"
#include "main/signals.h"

namespace {

constexpr char SHELL[] = "/bin/sh";

/// The child that is being waited for; 0 when there is none.
std::atomic<pid_t> running_child = 0;
static_assert(std::atomic<pid_t>::is_always_lock_free);

/// Starts the shell with the signals held back that `held` names; its process id, or -1.
pid_t start_shell(const std::string& command, const sigset_t& held) {
    std::string shell = "sh";
    std::string option = "-c";
    std::string text(c_text(command));
    const std::array<char*, 4> arguments = {shell.data(), option.data(), text.data(), nullptr};
    posix_spawnattr_t attributes;
    if (posix_spawnattr_init(&attributes) != 0) return -1;
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
    posix_spawnattr_setsigmask(&attributes, &held);
    pid_t child = -1;
    if (posix_spawn(&child, SHELL, nullptr, &attributes, arguments.data(), environ) != 0) {
        child = -1;
    }
    posix_spawnattr_destroy(&attributes);
    return child;
}

/// Waits until the child has ended, but leaves it there, so that its number stays its own.
void wait_for_the_end_of(pid_t child) {
    siginfo_t information;
    while (waitid(P_PID, static_cast<id_t>(child), &information, WEXITED | WNOWAIT) != 0) {
        if (errno != EINTR) return;
    }
}

}  // namespace

int run_in_shell(const std::string& command) {
    std::fflush(stdout);
    // Whoever started us may ignore the ends of children; there would be no status to wait for.
    signal(SIGCHLD, SIG_DFL);
    {
        const SignalsHeld held;
        running_child = start_shell(command, held.before());
    }
    const pid_t child = running_child;
    if (child == -1) return -1;
    wait_for_the_end_of(child);
    const SignalsHeld held;
    running_child = 0;
    int status = -1;
    return waitpid(child, &status, 0) == child ? status : -1;
}

void end_running_child(int signal_number) {
    const pid_t child = running_child;
    if (child <= 0) return;
    kill(child, signal_number);
    for (int pauses = 0; pauses < 100 && waitpid(child, nullptr, WNOHANG) == 0; ++pauses) {
        poll(nullptr, 0, 10);
    }
}
