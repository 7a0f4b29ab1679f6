#include "scenes/child_process.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <stdexcept>

namespace gatescope {
namespace {

constexpr auto TIMEOUT = std::chrono::seconds(60);
using Clock = std::chrono::steady_clock;

struct Pipe {
    int read_end = -1;
    int write_end = -1;

    Pipe() {
        std::array<int, 2> ends;
        if (pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
        read_end = ends[0];
        write_end = ends[1];
    }
    ~Pipe() {
        close(read_end);
        close_write_end();
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;
    void close_write_end() {
        if (write_end >= 0) close(write_end);
        write_end = -1;
    }
};

std::vector<char*> pointers(std::vector<std::string>& texts) {
    std::vector<char*> result;
    for (std::string& text : texts) result.push_back(text.data());
    result.push_back(nullptr);
    return result;
}

[[noreturn]] void exec_program(const std::string& program, std::vector<std::string> arguments,
                               std::vector<std::string> environment, const std::string& directory,
                               const Pipe& out, const Pipe& err) {
    setpgid(0, 0);
    // stand_in tells background calls by the interrupts that the shell ignores for them.
    for (const int number : {SIGINT, SIGQUIT, SIGTERM, SIGHUP, SIGPIPE}) signal(number, SIG_DFL);
    const int nothing = open("/dev/null", O_RDONLY);
    dup2(nothing, STDIN_FILENO);
    dup2(out.write_end, STDOUT_FILENO);
    dup2(err.write_end, STDERR_FILENO);
    if (chdir(directory.c_str()) == 0) {
        execve(program.c_str(), pointers(arguments).data(), pointers(environment).data());
    }
    _exit(127);
}

/// Appends what the pipe holds to `text`; false at its end.
bool read_some(int descriptor, std::string& text) {
    std::array<char, 65536> buffer;
    const ssize_t got = read(descriptor, buffer.data(), buffer.size());
    if (got > 0) text.append(buffer.data(), static_cast<std::size_t>(got));
    return got > 0;
}

/// Reads both pipes until all their writers are closed. False on a timeout.
bool read_both(const Pipe& out, const Pipe& err, Finished& finished, Clock::time_point deadline) {
    std::array<pollfd, 2> ends = {{{out.read_end, POLLIN, 0}, {err.read_end, POLLIN, 0}}};
    const std::array<std::string*, 2> texts = {&finished.out, &finished.err};
    while (ends[0].fd >= 0 || ends[1].fd >= 0) {
        if (Clock::now() > deadline) return false;
        poll(ends.data(), ends.size(), 100);
        for (std::size_t i = 0; i < ends.size(); ++i) {
            if (ends[i].fd >= 0 && ends[i].revents != 0 && !read_some(ends[i].fd, *texts[i])) {
                ends[i].fd = -1;
            }
        }
    }
    return true;
}

/// Reaps the program and all its descendants. False on a timeout.
bool reap_all(Finished& finished, Clock::time_point deadline) {
    while (true) {
        int status = 0;
        const pid_t ended = waitpid(-1, &status, WNOHANG);
        if (ended < 0) return true;
        if (ended == 0) {
            if (Clock::now() > deadline) return false;
            usleep(1000);
        } else if (ended == finished.pid) {
            finished.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
        }
    }
}

}  // namespace

Finished run_to_the_end(const std::string& program, const std::string& name,
                        const std::vector<std::string>& args,
                        const std::map<std::string, std::string>& environment,
                        const std::string& directory) {
    adopt_descendants();
    std::vector<std::string> arguments = {name};
    arguments.insert(arguments.end(), args.begin(), args.end());
    std::vector<std::string> settings;
    for (const auto& [variable, value] : environment) settings.push_back(variable + "=" + value);

    Pipe out;
    Pipe err;
    Finished finished;
    const pid_t child = fork();
    if (child < 0) throw std::runtime_error("no child process");
    if (child == 0) exec_program(program, arguments, settings, directory, out, err);
    setpgid(child, child);
    finished.pid = child;
    out.close_write_end();
    err.close_write_end();
    const auto deadline = Clock::now() + TIMEOUT;
    const bool read_all = read_both(out, err, finished, deadline);
    finished.timed_out = !read_all || !reap_all(finished, deadline);
    if (finished.timed_out) {
        kill(-child, SIGKILL);
        reap_all(finished, Clock::now() + TIMEOUT);
    }
    return finished;
}

void adopt_descendants() {
    prctl(PR_SET_CHILD_SUBREAPER, 1);
}

bool wait_for_all_descendants() {
    Finished ignored;
    return reap_all(ignored, Clock::now() + TIMEOUT);
}

}  // namespace gatescope
