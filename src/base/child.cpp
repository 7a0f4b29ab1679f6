#include "base/child.h"

#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstdio>

#include "base/filled.h"
#include "base/platform.h"
#include "base/search_path.h"
#include "base/signals_held.h"

namespace gatescope {
namespace {

constexpr char SHELL[] = "/bin/sh";
/// The raw status of a shell that does not find a program.
constexpr int NOT_FOUND_STATUS = 127 * 256;

/// The child that is being waited for; 0 when there is none. The process's, because a signal
/// handler ends it, and is told nothing but the number of the signal.
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

// What follows is for a signal handler: nothing but system calls, and memory of its own.

/// A process and all that it has started, itself first.
struct Family {
    std::array<pid_t, 64> members;
    int size;
};

void add_children(pid_t process, Family* family) {
    std::array<char, 1024> list;
    const ssize_t size = read_children(process, list.data(), list.size());
    pid_t number = 0;
    for (ssize_t i = 0; i < size; ++i) {
        const char c = list[static_cast<std::size_t>(i)];
        if (c >= '0' && c <= '9') {
            number = number * 10 + (c - '0');
        } else if (family->size < static_cast<int>(family->members.size())) {
            family->members[static_cast<std::size_t>(family->size++)] = number;
            number = 0;
        }
    }
}

Family family_of(pid_t process) {
    Family family = {{process}, 1};
    for (int i = 0; i < family.size; ++i) {
        add_children(family.members[static_cast<std::size_t>(i)], &family);
    }
    return family;
}

bool is_alive(const Family& family) {
    // The first is our own child: once it has ended, it goes as soon as it is asked after.
    waitpid(family.members.front(), nullptr, WNOHANG);
    return std::any_of(family.members.begin(), family.members.begin() + family.size,
                       [](pid_t member) { return kill(member, 0) == 0; });
}

}  // namespace

int run_in_shell(const std::string& command, const char* program) {
    std::fflush(stdout);
    if (program != nullptr && !is_on_search_path(program, X_OK)) return NOT_FOUND_STATUS;
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
    // The shell may be about to start the program: it must stand still while we look.
    siginfo_t information;
    kill(child, SIGSTOP);
    waitid(P_PID, static_cast<id_t>(child), &information, WSTOPPED | WEXITED | WNOWAIT);
    const Family family = family_of(child);
    for (int i = 0; i < family.size; ++i) {
        kill(family.members[static_cast<std::size_t>(i)], signal_number);
    }
    kill(child, SIGCONT);
    for (int pauses = 0; pauses < 100 && is_alive(family); ++pauses) poll(nullptr, 0, 10);
}

}  // namespace gatescope
