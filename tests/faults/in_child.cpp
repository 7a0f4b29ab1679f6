#include "faults/in_child.h"

#include <grp.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>

#include "dialog/messages.h"

namespace gatescope {
namespace {

constexpr unsigned NOBODY = 65534;

void become_nobody() {
    if (setgroups(0, nullptr) != 0 || setresgid(NOBODY, NOBODY, NOBODY) != 0 ||
        setresuid(NOBODY, NOBODY, NOBODY) != 0) {
        std::abort();
    }
}

std::string read_to_end(int pipe_end) {
    std::string text;
    std::array<char, 4096> chunk;
    for (ssize_t got = 0; (got = read(pipe_end, chunk.data(), chunk.size())) > 0;) {
        text.append(chunk.data(), static_cast<std::size_t>(got));
    }
    return text;
}

}  // namespace

Ended in_child(const std::function<void()>& body) {
    std::fflush(nullptr);
    std::array<int, 2> ends;
    if (pipe(ends.data()) != 0) std::abort();
    const pid_t child = fork();
    if (child == 0) {
        dup2(ends[1], STDOUT_FILENO);
        close(ends[0]);
        close(ends[1]);
        ZUL_PREFER_GUI = 0;
        body();
        std::fflush(stdout);
        _exit(0);
    }
    close(ends[1]);
    Ended ended;
    ended.said = read_to_end(ends[0]);
    close(ends[0]);
    int status = 0;
    if (waitpid(child, &status, 0) != child) std::abort();
    ended.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return ended;
}

Ended in_child_of_nobody(const std::function<void()>& body) {
    return in_child([&] {
        become_nobody();
        body();
    });
}

bool can_become_nobody() {
    return geteuid() == 0 && in_child(become_nobody).status == 0;
}

}  // namespace gatescope
