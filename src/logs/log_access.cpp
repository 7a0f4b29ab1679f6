#include "logs/log_access.h"

#include <sys/file.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <cstring>
#include <thread>

#include "base/filled.h"
#include "dialog/messages.h"
#include "messages/log_texts.h"

namespace {

constexpr mode_t PUBLIC = 0666;

constexpr std::chrono::milliseconds PAUSE(5);

/// Where the link at `path` leads; empty, with errno set, when it cannot be read.
std::string target_of(const std::string& path) {
    std::array<char, PATH_MAX> target;
    const ssize_t size = readlink(path.c_str(), target.data(), target.size());
    if (size <= 0) return "";
    const std::string text(target.data(), static_cast<std::size_t>(size));
    return text.front() == '/' ? text : path.substr(0, path.rfind('/') + 1) + text;
}

}  // namespace

void stop_on(int error, const char* step, const std::string& path) {
    if (error != 0) gripe(filled(PRUNING_STOPPED, step, path.c_str(), std::strerror(error)));
}

void must(bool done, const char* step, const std::string& path) {
    stop_on(done ? 0 : errno, step, path);
}

struct stat status_of(const Descriptor& file) {
    struct stat status;
    must(fstat(file.get(), &status) == 0, "examine", "an open log file");
    return status;
}

FileId id_of(const Descriptor& file) {
    return id_of(status_of(file));
}

Place follow_links(const std::string& path, int most_links) {
    struct stat status;
    if (lstat(path.c_str(), &status) != 0) {
        const bool is_missing = errno == ENOENT || errno == ENOTDIR;
        return {path, is_missing ? "" : std::strerror(errno)};
    }
    if (!S_ISLNK(status.st_mode)) {
        return {path, "", status.st_size, status.st_uid, id_of(status)};
    }
    if (most_links == 0) return {path, std::strerror(ELOOP)};
    const std::string target = target_of(path);
    if (target.empty()) return {path, std::strerror(errno)};
    Place place = follow_links(target, most_links - 1);
    const uid_t owner = status.st_uid;
    if (place.reason.empty() && owner != 0 && owner != geteuid() && owner != place.owner) {
        place.reason = LINK_OF_SOMEBODY_ELSE;
    }
    return place;
}

Descriptor open_here(const std::string& path, std::string* reason) {
    Descriptor file = open_log(path, reason);
    if (!file || is_name_of(path, file.get())) return file;
    *reason = REPLACED_MEANWHILE;
    return {};
}

Descriptor open_locked(const std::string& path, Moment deadline, std::string* reason) {
    while (true) {
        Descriptor log = open_log(path, reason);
        if (!log) return log;
        // Where a file system has no locks, only one administrator is expected to prune.
        const bool locked = flock(log.get(), LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
        // The process that had it locked may have put another file in its place.
        if (locked && is_name_of(path, log.get())) return log;
        if (std::chrono::steady_clock::now() >= deadline) break;
        std::this_thread::sleep_for(PAUSE);
    }
    *reason = LOG_IS_LOCKED;
    return {};
}

bool make_log_public(const Descriptor& log) {
    const struct stat status = status_of(log);
    return status.st_nlink != 1 || (status.st_mode & 07777) == PUBLIC ||
           fchmod(log.get(), PUBLIC) == 0;
}
