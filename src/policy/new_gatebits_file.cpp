#include "policy/new_gatebits_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <optional>

#include "base/file_identity.h"
#include "base/file_lock.h"
#include "base/files.h"
#include "base/filled.h"
#include "base/replace_file.h"
#include "base/run_identity.h"
#include "base/temporary_files.h"
#include "dialog/messages.h"
#include "messages/policy_texts.h"
#include "messages/startup_texts.h"
#include "policy/gatebits_file.h"

namespace {

/// No more links than the system itself would follow.
constexpr int MOST_LINKS = 40;

/// With its '/' at the end; empty for a name without one.
std::string directory_of(const std::string& path) {
    return path.substr(0, path.rfind('/') + 1);
}

/// Somebody may have put a link into a directory that everybody may write, to have a file created
/// in a place of their choice.
bool may_be_planted(const std::string& path, const struct stat& link) {
    struct stat directory;
    if (stat((directory_of(path) + ".").c_str(), &directory) != 0) return true;
    return (directory.st_mode & S_IWOTH) != 0 && link.st_uid != geteuid() &&
           link.st_uid != directory.st_uid;
}

/// What the link says; nothing when it cannot be read.
std::optional<std::string> target_of(const std::string& link) {
    std::array<char, 4096> target;
    const ssize_t size = readlink(link.c_str(), target.data(), target.size());
    if (size <= 0 || static_cast<std::size_t>(size) == target.size()) return std::nullopt;
    return std::string(target.data(), static_cast<std::size_t>(size));
}

/// The path that links at `path` lead to in the end; nothing when one of them is not followed.
std::optional<std::string> end_of_links(std::string path) {
    for (int links = 0; links < MOST_LINKS; ++links) {
        struct stat status;
        if (lstat(path.c_str(), &status) != 0 || !S_ISLNK(status.st_mode)) return path;
        const auto target = target_of(path);
        if (!target || may_be_planted(path, status)) return std::nullopt;
        path = target->front() == '/' ? *target : directory_of(path) + *target;
    }
    return std::nullopt;
}

/// In the same directory, so that it can be renamed; hidden, and nobody else's.
std::string unfinished_name(const std::string& path) {
    return directory_of(path) + filled(".gatescope_new_%s", GLOBAL_PID_STRING.c_str());
}

/// Gives the finished file its name unless that is taken; 0 or an errno. File systems that cannot
/// rename without replacing can link.
int give_name(const std::string& unfinished, const std::string& path) {
    if (renameat2(AT_FDCWD, unfinished.c_str(), AT_FDCWD, path.c_str(), RENAME_NOREPLACE) == 0) {
        forget_temporary_file(unfinished);
        return 0;
    }
    if (errno != EINVAL && errno != ENOSYS) return errno;
    return link(unfinished.c_str(), path.c_str()) == 0 ? 0 : errno;
}

}  // namespace

NewFile create_gatebits_file(const std::string& path, const std::string& text,
                             const RecordedChange& change) {
    const auto place = end_of_links(path);
    if (!place) return NewFile::NOT_CREATED;
    const std::string unfinished = unfinished_name(*place);
    // With the permissions of any new file of the operator's.
    const int file = create_temporary_file(unfinished, 0666);
    if (file == -1) return NewFile::NOT_CREATED;
    int error = write_sync_close(file, text);
    if (error != 0) gripe(filled(NEW_FILE_NOT_WRITTEN, path.c_str(), std::strerror(error)));
    HistoryRecord record = record_change(*place, std::nullopt, change);
    error = give_name(unfinished, *place);
    if (error != 0) record.take_back();
    remove_temporary_file(unfinished);
    if (error != 0) return error == EEXIST ? NewFile::EXISTS : NewFile::NOT_CREATED;
    error = sync_directory_of(*place);
    if (error != 0) gripe(filled(NEW_FILE_NOT_SYNCED, path.c_str(), std::strerror(error)));
    return NewFile::CREATED;
}

std::string bytes_to_copy(const std::string& path, const std::string& destination) {
    // It must not be read while somebody rewrites it in place.
    const FileLock lock = lock_file(path, LOCK_PATIENCE);
    if (lock.state == LockState::KEPT_BY_ANOTHER) {
        gripe(filled(COULD_NOT_MOVE_2, path.c_str(), destination.c_str(), EBUSY), EBUSY);
    }
    const int file = open_regular_file(path, O_RDONLY);
    FILE* stream = file == -1 ? nullptr : fdopen(file, "r");
    if (stream == nullptr) {
        gripe(filled(COULD_NOT_MOVE_2, path.c_str(), destination.c_str(), errno), errno);
    }
    std::string bytes;
    std::array<char, 4096> chunk;
    std::size_t got = 0;
    while ((got = std::fread(chunk.data(), 1, chunk.size(), stream)) > 0) {
        bytes.append(chunk.data(), got);
    }
    const int error = std::ferror(stream) != 0 ? errno : 0;
    std::fclose(stream);
    if (error != 0)
        gripe(filled(COULD_NOT_MOVE_2, path.c_str(), destination.c_str(), error), error);
    return bytes;
}
