#include "report/page_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "base/descriptor.h"
#include "base/file_lock.h"
#include "base/filled.h"
#include "base/signals_held.h"
#include "base/standard_streams.h"
#include "base/waiting.h"
#include "base/whole_file.h"
#include "dialog/messages.h"
#include "messages/graph_texts.h"
#include "messages/startup_texts.h"

namespace gatescope {
namespace {

/// How often a file is looked for that appears and goes again.
constexpr int MOST_TRIES = 100;

struct PageFile {
    Descriptor file = {};
    /// Whether this process has just created it.
    bool is_new = false;
    /// Where the file system has no locks, there is none.
    bool is_locked = false;
};

/// Whether a page may be added to those in a file that is there.
enum class Share { WITH_OTHERS, WITH_NONE };

/// The file, or none with errno set.
PageFile open_page(const std::string& path, Share share) {
    constexpr int HOW = O_RDWR | O_APPEND | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    for (int tries = 0; tries < MOST_TRIES; ++tries) {
        Descriptor made(open(path.c_str(), HOW | O_CREAT | O_EXCL, 0666));
        if (made || errno != EEXIST || share == Share::WITH_NONE) return {std::move(made), true};
        Descriptor found(open(path.c_str(), HOW));
        if (found || errno != ENOENT) return {std::move(found), false};
    }
    return {};
}

/// What came of a try to append a page.
enum class Tried { DONE, TRY_AGAIN, NAME_IS_TAKEN, NOT_OPENED, NOT_WRITTEN };

struct Try {
    Tried end;
    /// Why it was not opened or written.
    std::string reason = {};
    /// Whether the file then is what it was.
    bool as_before = true;
};

/// 0, or an errno. A file system across a network may say only at a close that its disk is full,
/// so a second descriptor is closed while there is still one to take the page back with.
int write_and_close_once(const Descriptor& file, const std::string& text) {
    if (const int error = write_all(file.get(), text)) return error;
    Descriptor second(fcntl(file.get(), F_DUPFD_CLOEXEC, 0));
    return second ? second.close() : errno;
}

/// Whether the file is what it was; without a lock, what comes after `size` may be another's.
bool take_back(const PageFile& page, off_t size, const std::string& path) {
    if (!page.is_locked) return false;
    if (page.is_new && size == 0) return unlink(path.c_str()) == 0;
    return ftruncate(page.file.get(), size) == 0;
}

/// No signal may leave half a page, or one without anything in it.
Try try_to_append(const std::string& path, const std::string& text, Share share) {
    const SignalsHeld held;
    PageFile page = open_page(path, share);
    if (!page.file && errno == EEXIST) return {Tried::NAME_IS_TAKEN};
    if (!page.file) return {Tried::NOT_OPENED, std::strerror(errno)};
    const LockState lock = try_lock(page.file);
    if (lock == LockState::HELD_BY_ANOTHER) return {Tried::TRY_AGAIN};
    page.is_locked = lock == LockState::HELD;
    struct stat before;
    if (fstat(page.file.get(), &before) != 0) {
        const std::string reason = std::strerror(errno);
        if (page.is_new) take_back(page, 0, path);
        return {Tried::NOT_OPENED, reason};
    }
    if (!S_ISREG(before.st_mode)) return {Tried::NOT_OPENED, NOT_A_REGULAR_FILE};
    // Whoever had the lock before may have taken the file away.
    if (before.st_nlink == 0) return {Tried::TRY_AGAIN};
    // Somebody's file may have been given the page's name, as by a link.
    if (before.st_nlink > 1) return {Tried::NOT_OPENED, HAS_ANOTHER_NAME};
    const int error = write_and_close_once(page.file, text);
    if (error == 0) return {Tried::DONE};
    return {Tried::NOT_WRITTEN, std::strerror(error), take_back(page, before.st_size, path)};
}

[[noreturn]] void tell(const Try& failed, const std::string& path) {
    if (failed.end == Tried::NOT_OPENED) {
        note(filled(PATH_AND_REASON, path.c_str(), failed.reason.c_str()));
        gripe(filled(CANNOT_OPEN_PAGE, path.c_str()));
    }
    gripe(filled(CANNOT_WRITE_PAGE, path.c_str(), failed.reason.c_str(),
                 failed.as_before ? PAGE_IS_AS_BEFORE : PAGE_IS_INCOMPLETE));
}

}  // namespace

void append_page(const std::string& path, const std::string& page,
                 std::chrono::milliseconds patience) {
    Try one = {};
    const bool had_its_turn = succeeds_within(patience, [&] {
        one = try_to_append(path, page, Share::WITH_OTHERS);
        return one.end != Tried::TRY_AGAIN;
    });
    if (!had_its_turn) tell({Tried::NOT_WRITTEN, LOCK_IS_KEPT}, path);
    if (one.end != Tried::DONE) tell(one, path);
}

void create_page(std::string path, const std::string& page,
                 const std::function<std::string()>& next_path,
                 std::chrono::milliseconds patience) {
    Try one = {};
    int tries = 0;
    const bool had_a_name = succeeds_within(patience, [&] {
        if (tries++ > 0) path = next_path();
        one = try_to_append(path, page, Share::WITH_NONE);
        // A file that another page was quicker to lock is that one's.
        return one.end != Tried::NAME_IS_TAKEN && one.end != Tried::TRY_AGAIN;
    });
    if (!had_a_name) tell({Tried::NOT_WRITTEN, NAMES_ARE_TAKEN}, path);
    if (one.end != Tried::DONE) tell(one, path);
}

}  // namespace gatescope
