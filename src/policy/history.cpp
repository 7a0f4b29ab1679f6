#include "policy/history.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>

#include "base/file_identity.h"
#include "base/files.h"
#include "base/filled.h"
#include "base/json.h"
#include "base/operator_name.h"
#include "base/paths.h"
#include "base/platform.h"
#include "base/signals_blocked.h"
#include "base/temporary_files.h"
#include "base/waiting.h"
#include "base/whole_file.h"
#include "dialog/messages.h"
#include "messages/environment.h"
#include "messages/history_texts.h"
#include "messages/startup_texts.h"

namespace gatescope {
namespace {

/// How long a name may be taken that has the second in it.
constexpr std::chrono::seconds NAME_PATIENCE(2);

/// One moment as the record has it, and as the name of a saved text has it.
struct Moment {
    std::string local;
    std::string utc;
};

Moment this_moment() {
    const std::time_t now = std::time(nullptr);
    std::array<char, 64> text;
    const std::size_t size =
        std::strftime(text.data(), text.size(), "%FT%T%z", std::localtime(&now));
    const std::string local = std::string(text.data(), size).insert(size - 2, ":");
    std::strftime(text.data(), text.size(), "%Y%m%dT%H%M%SZ", std::gmtime(&now));
    return {local, text.data()};
}

[[noreturn]] void fail(const std::string& path, const std::string& reason) {
    gripe(filled(CANNOT_RECORD, path.c_str(), reason.c_str()));
}

/// Gripes with errno's reason, unless it was done.
void need(bool done, const std::string& path) {
    // Of a link, and of a pipe, the system would speak of something else.
    const bool is_other = errno == ELOOP || errno == EINVAL;
    if (!done) fail(path, is_other ? NOT_A_REGULAR_FILE : std::strerror(errno));
}

Descriptor lock_lines(const std::string& path, mode_t mode, std::chrono::seconds patience) {
    Descriptor lines;
    const bool has_lock = succeeds_within(patience, [&] {
        lines = Descriptor(open_regular_file(path, O_RDWR | O_CREAT | O_APPEND | O_NOFOLLOW));
        struct stat status = {};
        need(lines && fstat(lines.get(), &status) == 0, path);
        // A file of somebody else's may have been given the name.
        if (status.st_nlink > 1) fail(path, HAS_A_SECOND_NAME);
        const bool is_new = status.st_size == 0 && status.st_uid == geteuid();
        need(!is_new || fchmod(lines.get(), mode) == 0, path);
        errno = lock_exclusively(lines.get());
        const bool locked = errno == 0;
        need(locked || errno == EWOULDBLOCK, path);
        return locked && is_name_of(path, lines.get());
    });
    if (!has_lock) fail(path, filled(LOCKED_BY_ANOTHER, static_cast<int>(patience.count())));
    return lines;
}

/// Makes the file for an old text, "<beginning>.<UTC time>-<process>.txt", which is a temporary one
/// until the record stands. What this process has saved in the same second has the name already, so
/// the next second is waited for.
Descriptor create_saved(const std::string& beginning, std::string* path, Moment* moment) {
    Descriptor file;
    succeeds_within(NAME_PATIENCE, [&] {
        const SignalsBlocked blocked;
        *moment = this_moment();
        *path = filled("%s.%s-%d.txt", beginning.c_str(), moment->utc.c_str(), getpid());
        file = Descriptor(open(path->c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0400));
        if (file) remember_temporary_file(*path);
        return file || errno != EEXIST;
    });
    need(static_cast<bool>(file), *path);
    return file;
}

std::string json_value(const std::optional<std::string>& bytes) {
    return bytes ? json_string(*bytes) : "null";
}

std::string record_line(const Moment& moment, const std::string& file, const RecordedChange& change,
                        const std::optional<std::string>& saved) {
    std::array<char, HOST_NAME_MAX + 1> host = {};
    if (gethostname(host.data(), host.size() - 1) != 0) host.front() = '\0';
    // Confirmations end the names of some items in dots.
    const std::string item = change.item.substr(
        0, change.item.size() - (change.item.ends_with("...") ? std::strlen("...") : 0));
    return filled(RECORD, json_string(moment.local).c_str(),
                  json_string(operator_name().value_or("")).c_str(), getuid(),
                  json_string(host.data()).c_str(), json_string(file).c_str(),
                  json_string(change.action).c_str(), json_string(item).c_str(),
                  json_value(change.from).c_str(), json_value(change.to).c_str(),
                  json_value(saved).c_str());
}

/// 0 or an errno, and then the lines are as they were, as far as that can be.
int append(const std::string& line, HistoryRecord* record) {
    const SignalsBlocked blocked;
    const int file = record->lines.get();
    const off_t end = lseek(file, 0, SEEK_END);
    off_t& begin = record->begin = end;
    // A line without an end is of a run that was killed before it made its change.
    for (char last = '\0'; begin > 0; --begin) {
        if (pread(file, &last, 1, begin - 1) != 1) return EIO;
        if (last == '\n') break;
    }
    if (end < 0 || (begin < end && ftruncate(file, begin) != 0)) return errno;
    int error = write_all(file, line);
    if (error == 0 && fsync(file) != 0) error = errno;
    if (error != 0 && ftruncate(file, begin) != 0) return error;
    if (error == 0) forget_temporary_file(record->saved);
    return error;
}

}  // namespace

std::string absolute_path(const std::string& path) {
    std::error_code error;
    const auto absolute = std::filesystem::absolute(path, error);
    const auto real = std::filesystem::weakly_canonical(absolute, error);
    return error ? absolute : real;
}

HistoryRecord record_change(const std::string& policy_file,
                            const std::optional<std::string>& old_text,
                            const RecordedChange& change, std::chrono::seconds patience) {
    HistoryRecord record;
    const char* directory = std::getenv(ENV_HISTORY);
    if (directory == nullptr) return record;
    // Files of the history are open to those that the directory is open to.
    struct stat status = {};
    need(stat(directory, &status) == 0, directory);
    const mode_t mode = status.st_mode & 0666;
    const std::string lines = filled("%s/%s", directory, CHANGES_FILE);
    record.lines = lock_lines(lines, mode, patience);
    const std::string file = absolute_path(policy_file);
    const std::string name = file_name_of(file);
    Moment moment = this_moment();
    std::optional<std::string> saved;
    if (old_text) {
        Descriptor text =
            create_saved(filled("%s/%s", directory, name.c_str()), &record.saved, &moment);
        saved = file_name_of(record.saved);
        need(stat(file.c_str(), &status) == 0, file);
        need(fchmod(text.get(), mode & status.st_mode & 0444) == 0, record.saved);
        errno = write_sync_close(text.release(), *old_text);
        need(errno == 0, record.saved);
    }
    errno = sync_directory_of(lines);
    need(errno == 0, directory);
    errno = append(record_line(moment, file, change, saved), &record);
    need(errno == 0, lines);
    return record;
}

void HistoryRecord::take_back() {
    const SignalsBlocked blocked;
    // A record that has to stay keeps its text.
    if (!lines || ftruncate(lines.get(), begin) != 0) return;
    if (!saved.empty()) unlink(saved.c_str());
    lines = {};
}

}  // namespace gatescope
