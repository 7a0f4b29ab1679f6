#include "report/page_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <optional>
#include <thread>

#include "base/descriptor.h"
#include "base/filled.h"
#include "base/replace_file.h"
#include "base/signals_held.h"
#include "base/standard_streams.h"
#include "dialog/messages.h"
#include "messages/graph_texts.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds PAUSE(10);

/// How often a file is looked for that appears and goes again.
constexpr int MOST_TRIES = 100;

struct PageFile {
    Descriptor file = {};
    /// Whether this process has just created it.
    bool is_new = false;
    /// Where the file system has no locks, there is none.
    bool is_locked = false;
};

/// The file, or none with errno set.
PageFile open_page(const std::string& path) {
    constexpr int HOW = O_RDWR | O_APPEND | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    for (int tries = 0; tries < MOST_TRIES; ++tries) {
        Descriptor made(open(path.c_str(), HOW | O_CREAT | O_EXCL, 0666));
        if (made || errno != EEXIST) return {std::move(made), true};
        Descriptor found(open(path.c_str(), HOW));
        if (found || errno != ENOENT) return {std::move(found), false};
    }
    return {};
}

[[noreturn]] void cannot_open(const std::string& path, const char* reason) {
    note(filled(PATH_AND_REASON, path.c_str(), reason));
    gripe(filled(CANNOT_OPEN_PAGE, path.c_str()));
}

[[noreturn]] void cannot_write(const std::string& path, const char* reason, const char* state) {
    gripe(filled(CANNOT_WRITE_PAGE, path.c_str(), reason, state));
}

/// The file with its lock; nothing when it has to be tried again.
std::optional<PageFile> open_and_lock(const std::string& path) {
    PageFile page = open_page(path);
    if (!page.file) cannot_open(path, std::strerror(errno));
    struct stat status;
    if (fstat(page.file.get(), &status) != 0) cannot_open(path, std::strerror(errno));
    if (!S_ISREG(status.st_mode)) cannot_open(path, NOT_A_REGULAR_FILE);
    page.is_locked = flock(page.file.get(), LOCK_EX | LOCK_NB) == 0;
    if (!page.is_locked && (errno == EWOULDBLOCK || errno == EINTR)) return std::nullopt;
    // Whoever had the lock before may have taken the file away.
    if (fstat(page.file.get(), &status) != 0 || status.st_nlink == 0) return std::nullopt;
    return page;
}

PageFile locked_page(const std::string& path, Clock::time_point end) {
    while (true) {
        if (auto page = open_and_lock(path)) return std::move(*page);
        if (Clock::now() >= end) cannot_write(path, LOCK_IS_KEPT, PAGE_IS_AS_BEFORE);
        std::this_thread::sleep_for(PAUSE);
    }
}

/// 0, or an errno. A file system across a network may say only at a close that its disk is full,
/// so a second descriptor is closed while there is still one to take the page back with.
int write_to_the_disk(const Descriptor& file, const std::string& text) {
    if (const int error = write_all(file.get(), text)) return error;
    Descriptor second(fcntl(file.get(), F_DUPFD_CLOEXEC, 0));
    return second ? second.close() : errno;
}

/// Whether the file is what it was; without a lock, what is behind `size` may be another's.
bool take_back(const PageFile& page, off_t size, const std::string& path) {
    if (!page.is_locked) return false;
    if (page.is_new && size == 0) return unlink(path.c_str()) == 0;
    return ftruncate(page.file.get(), size) == 0;
}

}  // namespace

void append_page(const std::string& path, const std::string& page,
                 std::chrono::milliseconds patience) {
    const PageFile opened = locked_page(path, Clock::now() + patience);
    int error = 0;
    bool as_before = true;
    {
        // No signal may leave half a page.
        const SignalsHeld held;
        struct stat before;
        error = fstat(opened.file.get(), &before) == 0 ? 0 : errno;
        if (error == 0) {
            error = write_to_the_disk(opened.file, page);
            as_before = error == 0 || take_back(opened, before.st_size, path);
        }
    }
    if (error == 0) return;
    cannot_write(path, std::strerror(error), as_before ? PAGE_IS_AS_BEFORE : PAGE_IS_INCOMPLETE);
}
