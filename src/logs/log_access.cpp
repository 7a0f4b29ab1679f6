#include "logs/log_access.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <cstring>
#include <thread>
#include <vector>

#include "base/filled.h"
#include "dialog/messages.h"
#include "messages/log_texts.h"

namespace {

/// The system follows no more symbolic links than this, so they are a ring.
constexpr std::size_t MOST_LINKS = 40;

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

struct stat status_of(int file) {
    struct stat status;
    must(fstat(file, &status) == 0, "examine", "an open log file");
    return status;
}

FileId id_of(int file) {
    const struct stat status = status_of(file);
    return {status.st_dev, status.st_ino};
}

bool is_name_of(const std::string& path, int file) {
    struct stat status;
    return lstat(path.c_str(), &status) == 0 && FileId{status.st_dev, status.st_ino} == id_of(file);
}

Place behind_links(const std::string& path) {
    Place place = {path, "", 0};
    std::vector<uid_t> owners;
    struct stat status;
    int error = 0;
    while ((error = lstat(place.path.c_str(), &status) == 0 ? 0 : errno) == 0 &&
           S_ISLNK(status.st_mode) && owners.size() < MOST_LINKS) {
        owners.push_back(status.st_uid);
        const std::string target = target_of(place.path);
        if (target.empty()) return {path, std::strerror(errno), 0};
        place.path = target;
    }
    if (owners.size() == MOST_LINKS) error = ELOOP;
    if (error != 0 && error != ENOENT && error != ENOTDIR) place.reason = std::strerror(error);
    if (error == 0) place.size = status.st_size;
    for (const uid_t owner : owners) {
        const bool leads_to_his = error == 0 && owner == status.st_uid;
        if (owner != 0 && owner != geteuid() && !leads_to_his) place.reason = LINK_OF_SOMEBODY_ELSE;
    }
    return place;
}

Descriptor open_locked(const std::string& path, Moment deadline, std::string* reason) {
    while (true) {
        Descriptor log = open_log(path, reason);
        if (!log) return log;
        // File systems without locks are trusted to have but one administrator.
        const bool locked = flock(log.get(), LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
        // Who had it locked may have put another file in its place.
        if (locked && is_name_of(path, log.get())) return log;
        if (std::chrono::steady_clock::now() >= deadline) break;
        std::this_thread::sleep_for(PAUSE);
    }
    *reason = LOG_IS_LOCKED;
    return Descriptor();
}

bool make_log_public(int log) {
    const struct stat status = status_of(log);
    return status.st_nlink != 1 || (status.st_mode & 07777) == PUBLIC || fchmod(log, PUBLIC) == 0;
}
