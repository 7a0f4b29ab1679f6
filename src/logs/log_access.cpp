#include "logs/log_access.h"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>
#include <thread>

#include "base/files.h"
#include "base/filled.h"
#include "dialog/messages.h"
#include "messages/log_texts.h"

namespace {

constexpr mode_t PUBLIC = 0666;

constexpr std::chrono::milliseconds PAUSE(5);

}  // namespace

void need(bool done) {
    if (!done) throw LeftAlone{std::strerror(errno)};
}

void need_usable(const MeantFile& file) {
    if (!file.reason.empty()) throw LeftAlone{file.reason};
}

void stop_on(int error, const char* step, const std::string& path, const Work& work) {
    if (error == 0) return;
    make_log_public(Descriptor(open_regular_file(work.token, O_WRONLY | O_CREAT | O_NOFOLLOW)));
    gripe(filled(PRUNING_STOPPED, step, path.c_str(), std::strerror(error)));
}

struct stat status_of(const Descriptor& file) {
    struct stat status;
    need(fstat(file.get(), &status) == 0);
    return status;
}

FileId id_of(const Descriptor& file) {
    return id_of(status_of(file));
}

Descriptor open_here(const std::string& path) {
    std::string reason;
    Descriptor file = open_log(path, &reason);
    if (file && !is_name_of(path, file.get())) reason = REPLACED_MEANWHILE;
    if (!reason.empty()) throw LeftAlone{reason};
    return file;
}

Descriptor open_locked(const std::string& path, Moment deadline) {
    while (true) {
        std::string reason;
        Descriptor log = open_log(path, &reason);
        if (!reason.empty()) throw LeftAlone{reason};
        if (!log) return log;
        // Where a file system has no locks, only one administrator is expected to prune.
        const bool locked = flock(log.get(), LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
        // The process that had it locked may have put another file in its place.
        if (locked && is_name_of(path, log.get())) return log;
        if (std::chrono::steady_clock::now() >= deadline) throw LeftAlone{LOG_IS_LOCKED};
        std::this_thread::sleep_for(PAUSE);
    }
}

bool make_log_public(const Descriptor& log) {
    struct stat status;
    return fstat(log.get(), &status) == 0 &&
           (status.st_nlink != 1 || (status.st_mode & 07777) == PUBLIC ||
            fchmod(log.get(), PUBLIC) == 0);
}
