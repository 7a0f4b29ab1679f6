#include "policy/new_gatebits_file.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <optional>

#include "base/file_identity.h"
#include "base/file_lock.h"
#include "base/filled.h"
#include "base/paths.h"
#include "base/platform.h"
#include "base/run_identity.h"
#include "base/temporary_files.h"
#include "base/whole_file.h"
#include "dialog/messages.h"
#include "messages/policy_texts.h"
#include "messages/startup_texts.h"
#include "policy/gatebits_file.h"

namespace gatescope {
namespace {

/// As many links as the kernel follows.
constexpr int MAX_LINKS = 40;

/// Whether another user may have created the link in a world-writable directory, to have a file
/// created elsewhere.
bool may_be_planted(const std::string& path, const struct stat& link) {
    struct stat directory;
    if (stat(directory_of(path).c_str(), &directory) != 0) return true;
    return (directory.st_mode & S_IWOTH) != 0 && link.st_uid != geteuid() &&
           link.st_uid != directory.st_uid;
}

/// The path of a new file: the end of the links at `path`; nothing if one of them is not followed.
std::optional<std::string> path_of_new_file(std::string path) {
    for (int links = 0; links < MAX_LINKS; ++links) {
        struct stat status;
        if (lstat(path.c_str(), &status) != 0 || !S_ISLNK(status.st_mode)) return path;
        const auto target = link_target(path);
        if (!target || may_be_planted(path, status)) return std::nullopt;
        path = *target;
    }
    return std::nullopt;
}

/// A hidden name of this process in the same directory, so that the file can be renamed.
std::string unfinished_name(const std::string& path) {
    return beside(path, filled(".gatescope_new_%s", GLOBAL_PID_STRING.c_str()));
}

/// Renames the finished file unless the name exists; 0 or an errno. Uses a hard link on file
/// systems that cannot rename without replacing.
int give_name(const std::string& unfinished, const std::string& path) {
    const int error = rename_without_replacing(unfinished, path);
    if (error == 0) forget_temporary_file(unfinished);
    if (error != EINVAL && error != ENOSYS) return error;
    return link(unfinished.c_str(), path.c_str()) == 0 ? 0 : errno;
}

}  // namespace

NewFile create_gatebits_file(const std::string& path, const std::string& text,
                             const RecordedChange& change) {
    const auto target = path_of_new_file(path);
    if (!target) return NewFile::NOT_CREATED;
    const std::string unfinished = unfinished_name(*target);
    // With the operator's default permissions.
    const int file = create_temporary_file(unfinished, 0666);
    if (file == -1) return NewFile::NOT_CREATED;
    int error = write_sync_close(file, text);
    if (error != 0) gripe(filled(NEW_FILE_NOT_WRITTEN, path.c_str(), std::strerror(error)));
    HistoryRecord record = record_change(*target, std::nullopt, change);
    error = give_name(unfinished, *target);
    if (error != 0) record.take_back();
    remove_temporary_file(unfinished);
    if (error != 0) return error == EEXIST ? NewFile::EXISTS : NewFile::NOT_CREATED;
    error = sync_directory_of(*target);
    if (error != 0) gripe(filled(NEW_FILE_NOT_SYNCED, path.c_str(), std::strerror(error)));
    return NewFile::CREATED;
}

std::string bytes_to_copy(const std::string& path, const std::string& destination) {
    // Another process may be rewriting the file in place.
    const FileLock lock = lock_file(path, LOCK_PATIENCE);
    if (lock.state == LockState::HELD_BY_ANOTHER) {
        gripe(filled(COULD_NOT_MOVE_2, path.c_str(), destination.c_str(), EBUSY), EBUSY);
    }
    std::string bytes;
    const int error = read_file(path, 0, &bytes);
    if (error != 0) {
        gripe(filled(COULD_NOT_MOVE_2, path.c_str(), destination.c_str(), error), error);
    }
    return bytes;
}

}  // namespace gatescope
