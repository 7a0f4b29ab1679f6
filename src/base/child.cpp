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
#include "base/signals_blocked.h"

namespace gatescope {
namespace {

constexpr char SHELL[] = "/bin/sh";
/// The raw status of a shell that does not find a program.
constexpr int NOT_FOUND_STATUS = 127 * 256;

/// The child that run_in_shell waits for; 0 when there is none. Global, because a signal handler
/// ends it and receives nothing but the signal's number.
std::atomic<pid_t> running_child = 0;
static_assert(std::atomic<pid_t>::is_always_lock_free);

/// Starts the shell with the signals of `blocked` blocked. Its process id, or -1.
pid_t start_shell(const std::string& command, const sigset_t& blocked) {
    std::string shell = "sh";
    std::string option = "-c";
    std::string text(c_text(command));
    const std::array<char*, 4> arguments = {shell.data(), option.data(), text.data(), nullptr};
    posix_spawnattr_t attributes;
    if (posix_spawnattr_init(&attributes) != 0) return -1;
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
    posix_spawnattr_setsigmask(&attributes, &blocked);
    pid_t child = -1;
    if (posix_spawn(&child, SHELL, nullptr, &attributes, arguments.data(), environ) != 0) {
        child = -1;
    }
    posix_spawnattr_destroy(&attributes);
    return child;
}

/// Waits until the child has ended but does not reap it, so that its process id stays valid.
void wait_until_ended(pid_t child) {
    siginfo_t information;
    while (waitid(P_PID, static_cast<id_t>(child), &information, WEXITED | WNOWAIT) != 0) {
        if (errno != EINTR) return;
    }
}

// Called by a signal handler: only async-signal-safe calls, and memory on the stack.

/// A process and its descendants, the process first.
struct ProcessTree {
    std::array<pid_t, 64> members;
    int size;
};

void add_children(pid_t process, ProcessTree* tree) {
    std::array<char, 1024> list;
    const ssize_t size = read_children(process, list.data(), list.size());
    pid_t number = 0;
    for (ssize_t i = 0; i < size; ++i) {
        const char c = list[static_cast<std::size_t>(i)];
        if (c >= '0' && c <= '9') {
            number = number * 10 + (c - '0');
        } else if (tree->size < static_cast<int>(tree->members.size())) {
            tree->members[static_cast<std::size_t>(tree->size++)] = number;
            number = 0;
        }
    }
}

ProcessTree tree_of(pid_t process) {
    ProcessTree tree = {{process}, 1};
    for (int i = 0; i < tree.size; ++i) {
        add_children(tree.members[static_cast<std::size_t>(i)], &tree);
    }
    return tree;
}

bool is_alive(const ProcessTree& tree) {
    // The first is our own child, which kill still finds after its end unless it is reaped.
    waitpid(tree.members.front(), nullptr, WNOHANG);
    return std::any_of(tree.members.begin(), tree.members.begin() + tree.size,
                       [](pid_t member) { return kill(member, 0) == 0; });
}

}  // namespace

int run_in_shell(const std::string& command, const char* program) {
    std::fflush(stdout);
    if (program != nullptr && !is_on_search_path(program, X_OK)) return NOT_FOUND_STATUS;
    // An ignored SIGCHLD is inherited, and waitpid would then return no status.
    signal(SIGCHLD, SIG_DFL);
    {
        const SignalsBlocked blocked;
        running_child = start_shell(command, blocked.previous_mask());
    }
    const pid_t child = running_child;
    if (child == -1) return -1;
    wait_until_ended(child);
    const SignalsBlocked blocked;
    running_child = 0;
    int status = -1;
    return waitpid(child, &status, 0) == child ? status : -1;
}

void end_running_child(int signal_number) {
    const pid_t child = running_child;
    if (child <= 0) return;
    // Stopped, so that it starts no further child while the tree is read.
    siginfo_t information;
    kill(child, SIGSTOP);
    waitid(P_PID, static_cast<id_t>(child), &information, WSTOPPED | WEXITED | WNOWAIT);
    const ProcessTree tree = tree_of(child);
    for (int i = 0; i < tree.size; ++i) {
        kill(tree.members[static_cast<std::size_t>(i)], signal_number);
    }
    kill(child, SIGCONT);
    for (int pauses = 0; pauses < 100 && is_alive(tree); ++pauses) poll(nullptr, 0, 10);
}

}  // namespace gatescope
