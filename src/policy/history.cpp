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
#include <iomanip>
#include <sstream>

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

/// Time limit for a free name: names contain the second.
constexpr std::chrono::seconds NAME_PATIENCE(2);

std::string formatted(const std::tm* time, const char* format) {
    std::ostringstream text;
    text << std::put_time(time, format);
    return text.str();
}

/// Gripes that the change cannot be recorded in the file or directory, unless the errno is 0.
void gripe_on_error(int error, const std::string& path) {
    if (error == 0) return;
    // ELOOP is open's for a symbolic link, EINVAL open_regular_file's for a pipe.
    const bool is_other = error == ELOOP || error == EINVAL;
    const char* reason = is_other ? NOT_A_REGULAR_FILE : std::strerror(error);
    gripe(filled(CANNOT_RECORD, path.c_str(), reason));
}

/// Opens the file of records and takes its lock. An empty file gets this mode.
Descriptor open_records(const std::string& path, mode_t mode, std::chrono::seconds patience) {
    Descriptor records;
    const bool has_lock = succeeds_within(patience, [&] {
        records = Descriptor(open_regular_file(path, O_RDWR | O_CREAT | O_APPEND | O_NOFOLLOW));
        struct stat status = {};
        gripe_on_error(records && fstat(records.get(), &status) == 0 ? 0 : errno, path);
        // It could be a hard link to another user's file.
        if (status.st_nlink > 1) gripe(filled(CANNOT_RECORD, path.c_str(), HAS_A_SECOND_NAME));
        const bool is_new = status.st_size == 0 && status.st_uid == geteuid();
        gripe_on_error(!is_new || fchmod(records.get(), mode) == 0 ? 0 : errno, path);
        const int error = lock_exclusively(records.get());
        gripe_on_error(error == EWOULDBLOCK ? 0 : error, path);
        return error == 0 && is_name_of(path, records.get());
    });
    if (has_lock) return records;
    const std::string reason = filled(LOCKED_BY_ANOTHER, static_cast<int>(patience.count()));
    gripe(filled(CANNOT_RECORD, path.c_str(), reason.c_str()));
}

/// Saves a text as "<beginning>.<UTC time>-<process>.txt" and sets the time. The path; the file is
/// temporary until the record is appended. The name is taken if this process has saved a text in
/// the same second.
std::string save_text(const std::string& beginning, const std::string& text, mode_t mode,
                      std::time_t* now) {
    std::string path;
    Descriptor file;
    succeeds_within(NAME_PATIENCE, [&] {
        const SignalsBlocked blocked;
        *now = std::time(nullptr);
        path = filled("%s.%s-%d.txt", beginning.c_str(),
                      formatted(std::gmtime(now), "%Y%m%dT%H%M%SZ").c_str(), getpid());
        file = Descriptor(open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0400));
        if (file) remember_temporary_file(path);
        return file || errno != EEXIST;
    });
    gripe_on_error(file && fchmod(file.get(), mode) == 0 ? 0 : errno, path);
    gripe_on_error(write_sync_close(file.release(), text), path);
    return path;
}

std::string record_line(std::time_t now, const std::string& file, const RecordedChange& change,
                        const std::optional<std::string>& saved) {
    std::array<char, HOST_NAME_MAX + 1> host = {};
    if (gethostname(host.data(), host.size() - 1) != 0) host.front() = '\0';
    std::string time = formatted(std::localtime(&now), "%FT%T%z");
    time.insert(time.size() - std::strlen("00"), ":");
    // Some items end in dots in their confirmation.
    std::string item = change.item;
    if (item.ends_with("...")) item.resize(item.size() - std::strlen("..."));
    return filled(
        RECORD, json_value(time).c_str(), json_value(operator_name().value_or("")).c_str(),
        getuid(), json_value(host.data()).c_str(), json_value(file).c_str(),
        json_value(change.action).c_str(), json_value(item).c_str(),
        json_value(change.from).c_str(), json_value(change.to).c_str(), json_value(saved).c_str());
}

/// Appends the line to the record's file. 0 or an errno, after taking back what was written.
int append(const std::string& line, PendingRecord* record) {
    const SignalsBlocked blocked;
    const int file = record->file.get();
    const off_t end = record->begin = lseek(file, 0, SEEK_END);
    char last = '\n';
    if (end < 0 || (end > 0 && pread(file, &last, 1, end - 1) != 1)) return EIO;
    // The part of a line that a killed process has left stays a line of its own.
    const int error = write_and_sync(file, (last == '\n' ? "" : "\n") + line);
    forget_temporary_file(record->saved);
    if (error != 0) record->take_back();
    return error;
}

}  // namespace

PendingRecord record_change(const std::string& policy_file,
                            const std::optional<std::string>& old_text,
                            const RecordedChange& change, std::chrono::seconds patience) {
    PendingRecord record;
    const char* directory = std::getenv(ENV_HISTORY);
    if (directory == nullptr) return record;
    // The files of the history have the permissions of the directory.
    struct stat status = {};
    gripe_on_error(stat(directory, &status) == 0 ? 0 : errno, directory);
    const mode_t mode = status.st_mode & 0666;
    const std::string records = filled("%s/%s", directory, CHANGES_FILE);
    record.file = open_records(records, mode, patience);
    const std::string file = absolute_path(policy_file);
    std::time_t now = std::time(nullptr);
    std::optional<std::string> saved;
    if (old_text) {
        gripe_on_error(stat(file.c_str(), &status) == 0 ? 0 : errno, file);
        record.saved = save_text(beside(records, file_name_of(file)), *old_text,
                                 mode & status.st_mode & 0444, &now);
        saved = file_name_of(record.saved);
    }
    gripe_on_error(sync_directory_of(records), directory);
    gripe_on_error(append(record_line(now, file, change, saved), &record), records);
    return record;
}

void PendingRecord::take_back() {
    const SignalsBlocked blocked;
    // The saved text is kept when its record cannot be removed.
    if (file && ftruncate(file.get(), begin) == 0) remove_temporary_file(saved);
    file = {};
}

}  // namespace gatescope
