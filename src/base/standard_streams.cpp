#include "base/standard_streams.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "base/filled.h"
#include "messages/identity.h"

namespace gatescope {
namespace {

/// The errno of the first failed write to standard output, else 0. Global, as the stream is.
int output_failure = 0;

/// For a stream that another process has made non-blocking.
void wait_until_writable(int descriptor) {
    pollfd wanted = {descriptor, POLLOUT, 0};
    poll(&wanted, 1, -1);
}

/// 0 or an errno.
int write_whole(int descriptor, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = write(descriptor, text.data(), text.size());
        if (written > 0) {
            text.remove_prefix(static_cast<std::size_t>(written));
        } else if (written < 0 && errno == EAGAIN) {
            wait_until_writable(descriptor);
        } else if (written == 0 || errno != EINTR) {
            return written == 0 ? EIO : errno;
        }
    }
    return 0;
}

}  // namespace

int open_missing_standard_streams() {
    for (int number = STDIN_FILENO; number <= STDERR_FILENO; ++number) {
        if (fcntl(number, F_GETFD) != -1) continue;
        // open returns the lowest free number. Without O_CLOEXEC, for children.
        if (open("/dev/null", O_RDWR) == number) continue;
        return errno;
    }
    return 0;
}

void write_output(std::string_view text) {
    const int error = write_whole(STDOUT_FILENO, text);
    if (output_failure == 0) output_failure = error;
}

int output_error() {
    // Tests print through the buffered stream as well.
    if (std::fflush(stdout) != 0 && output_failure == 0) output_failure = errno;
    return output_failure;
}

void note(const std::string& text, const char* program) {
    write_whole(STDERR_FILENO, filled("%s: %s\n", program, text.c_str()));
}

}  // namespace gatescope
