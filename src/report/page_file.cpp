#include "report/page_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "base/descriptor.h"
#include "base/file_lock.h"
#include "base/filled.h"
#include "base/signals_blocked.h"
#include "base/standard_streams.h"
#include "base/waiting.h"
#include "base/whole_file.h"
#include "dialog/messages.h"
#include "messages/graph_texts.h"
#include "messages/startup_texts.h"

namespace gatescope {
namespace {

/// Limit for opening a file that other processes create and remove in turn.
constexpr int MAX_TRIES = 100;

struct PageFile {
    Descriptor file = {};
    /// Whether this process has just created it.
    bool is_new = false;
    /// False on a file system without locks.
    bool is_locked = false;
};

/// Whether an existing file may be appended to.
enum class OpenMode { APPEND_OR_CREATE, CREATE };

/// The file; closed, with errno set, if it cannot be opened.
PageFile open_page(const std::string& path, OpenMode mode) {
    constexpr int FLAGS = O_RDWR | O_APPEND | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    for (int tries = 0; tries < MAX_TRIES; ++tries) {
        Descriptor created(open(path.c_str(), FLAGS | O_CREAT | O_EXCL, 0666));
        if (created || errno != EEXIST || mode == OpenMode::CREATE) {
            return {std::move(created), true};
        }
        Descriptor existing(open(path.c_str(), FLAGS));
        if (existing || errno != ENOENT) return {std::move(existing), false};
    }
    return {};
}

enum class AppendStatus { DONE, TRY_AGAIN, NAME_IS_TAKEN, NOT_OPENED, NOT_WRITTEN };

struct AppendResult {
    AppendStatus status;
    /// Why the file was not opened or written.
    std::string reason = {};
    /// Whether the file is unchanged, if it was not written.
    bool is_unchanged = true;
};

/// 0, or an errno. Network file systems may report a full disk only at a close, so a second
/// descriptor is closed while the first one can still remove the page.
int write_and_close_once(const Descriptor& file, const std::string& text) {
    if (const int error = write_all(file.get(), text)) return error;
    Descriptor second(fcntl(file.get(), F_DUPFD_CLOEXEC, 0));
    return second ? second.close() : errno;
}

/// Removes the bytes after `size`, or a file that is new and empty; whether that was done. Without
/// a lock the bytes may be another process's.
bool remove_page(const PageFile& page, off_t size, const std::string& path) {
    if (!page.is_locked) return false;
    if (page.is_new && size == 0) return unlink(path.c_str()) == 0;
    return ftruncate(page.file.get(), size) == 0;
}

/// Signals are blocked, so that none leaves a part of a page or an empty file.
AppendResult try_to_append(const std::string& path, const std::string& text, OpenMode mode) {
    const SignalsBlocked blocked;
    PageFile page = open_page(path, mode);
    if (!page.file && errno == EEXIST) return {AppendStatus::NAME_IS_TAKEN};
    if (!page.file) return {AppendStatus::NOT_OPENED, std::strerror(errno)};
    const LockState lock = try_lock(page.file);
    if (lock == LockState::HELD_BY_ANOTHER) return {AppendStatus::TRY_AGAIN};
    page.is_locked = lock == LockState::HELD;
    struct stat before;
    if (fstat(page.file.get(), &before) != 0) {
        const std::string reason = std::strerror(errno);
        if (page.is_new) remove_page(page, 0, path);
        return {AppendStatus::NOT_OPENED, reason};
    }
    if (!S_ISREG(before.st_mode)) return {AppendStatus::NOT_OPENED, NOT_A_REGULAR_FILE};
    // The previous owner of the lock may have removed the file.
    if (before.st_nlink == 0) return {AppendStatus::TRY_AGAIN};
    // The page's name may be a hard link to a file of another user.
    if (before.st_nlink > 1) return {AppendStatus::NOT_OPENED, HAS_ANOTHER_NAME};
    const int error = write_and_close_once(page.file, text);
    if (error == 0) return {AppendStatus::DONE};
    return {AppendStatus::NOT_WRITTEN, std::strerror(error),
            remove_page(page, before.st_size, path)};
}

[[noreturn]] void gripe_of_page(const AppendResult& failed, const std::string& path) {
    if (failed.status == AppendStatus::NOT_OPENED) {
        note(filled(PATH_AND_REASON, path.c_str(), failed.reason.c_str()));
        gripe(filled(CANNOT_OPEN_PAGE, path.c_str()));
    }
    gripe(filled(CANNOT_WRITE_PAGE, path.c_str(), failed.reason.c_str(),
                 failed.is_unchanged ? PAGE_IS_AS_BEFORE : PAGE_IS_INCOMPLETE));
}

}  // namespace

void append_page(const std::string& path, const std::string& page,
                 std::chrono::milliseconds timeout) {
    AppendResult result = {};
    const bool had_the_lock = succeeds_within(timeout, [&] {
        result = try_to_append(path, page, OpenMode::APPEND_OR_CREATE);
        return result.status != AppendStatus::TRY_AGAIN;
    });
    if (!had_the_lock) gripe_of_page({AppendStatus::NOT_WRITTEN, LOCK_IS_KEPT}, path);
    if (result.status != AppendStatus::DONE) gripe_of_page(result, path);
}

void create_page(std::string path, const std::string& page,
                 const std::function<std::string()>& next_path, std::chrono::milliseconds timeout) {
    AppendResult result = {};
    int tries = 0;
    const bool had_a_name = succeeds_within(timeout, [&] {
        if (tries++ > 0) path = next_path();
        result = try_to_append(path, page, OpenMode::CREATE);
        // TRY_AGAIN: another process has locked the new file, and may have written to it.
        return result.status != AppendStatus::NAME_IS_TAKEN &&
               result.status != AppendStatus::TRY_AGAIN;
    });
    if (!had_a_name) gripe_of_page({AppendStatus::NOT_WRITTEN, NAMES_ARE_TAKEN}, path);
    if (result.status != AppendStatus::DONE) gripe_of_page(result, path);
}

}  // namespace gatescope
