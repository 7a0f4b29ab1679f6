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

/// How long a name may be taken that has the second in it.
constexpr std::chrono::seconds NAME_PATIENCE(2);

std::string formatted(const std::tm* time, const char* form) {
    std::ostringstream text;
    text << std::put_time(time, form);
    return text.str();
}

/// Gripes, unless it was done, with this reason or that of errno.
void need(bool done, const std::string& path, const std::string& reason = "") {
    if (done) return;
    // Of a link, and of a pipe, the system would speak of something else.
    const bool is_other = errno == ELOOP || errno == EINVAL;
    const std::string said = is_other ? NOT_A_REGULAR_FILE : std::strerror(errno);
    gripe(filled(CANNOT_RECORD, path.c_str(), (reason.empty() ? said : reason).c_str()));
}

/// The file with the lines, locked; a new one gets this mode.
Descriptor lock_lines(const std::string& path, mode_t mode, std::chrono::seconds patience) {
    Descriptor lines;
    const bool has_lock = succeeds_within(patience, [&] {
        lines = Descriptor(open_regular_file(path, O_RDWR | O_CREAT | O_APPEND | O_NOFOLLOW));
        struct stat status = {};
        need(lines && fstat(lines.get(), &status) == 0, path);
        // A file of another user may have been given the name.
        need(status.st_nlink <= 1, path, HAS_A_SECOND_NAME);
        const bool is_new = status.st_size == 0 && status.st_uid == geteuid();
        need(!is_new || fchmod(lines.get(), mode) == 0, path);
        errno = lock_exclusively(lines.get());
        need(errno == 0 || errno == EWOULDBLOCK, path);
        return errno == 0 && is_name_of(path, lines.get());
    });
    need(has_lock, path, filled(LOCKED_BY_ANOTHER, static_cast<int>(patience.count())));
    return lines;
}

/// Saves a text as "<beginning>.<UTC time>-<process>.txt", a temporary file until the record
/// stands, and sets the time. What this process has saved in the same second has the name already,
/// so the next second is waited for. The path.
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
    need(file && fchmod(file.get(), mode) == 0, path);
    errno = write_sync_close(file.release(), text);
    need(errno == 0, path);
    return path;
}

std::string record_line(std::time_t now, const std::string& file, const RecordedChange& change,
                        const std::optional<std::string>& saved) {
    std::array<char, HOST_NAME_MAX + 1> host = {};
    if (gethostname(host.data(), host.size() - 1) != 0) host.front() = '\0';
    std::string time = formatted(std::localtime(&now), "%FT%T%z");
    time.insert(time.size() - std::strlen("00"), ":");
    // Confirmations end the names of some items in dots.
    std::string item = change.item;
    if (item.ends_with("...")) item.resize(item.size() - std::strlen("..."));
    return filled(
        RECORD, json_value(time).c_str(), json_value(operator_name().value_or("")).c_str(),
        getuid(), json_value(host.data()).c_str(), json_value(file).c_str(),
        json_value(change.action).c_str(), json_value(item).c_str(),
        json_value(change.from).c_str(), json_value(change.to).c_str(), json_value(saved).c_str());
}

/// 0 or an errno, and then the lines are as they were, as far as that can be.
int append(const std::string& line, HistoryRecord* record) {
    const SignalsBlocked blocked;
    const int file = record->lines.get();
    const off_t end = record->begin = lseek(file, 0, SEEK_END);
    char last = '\n';
    if (end < 0 || (end > 0 && pread(file, &last, 1, end - 1) != 1)) return EIO;
    // What a run that was killed has left of a line stays a line of its own.
    const int error = write_and_sync(file, (last == '\n' ? "" : "\n") + line);
    forget_temporary_file(record->saved);
    if (error != 0) record->take_back();
    return error;
}

}  // namespace

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
    std::time_t now = std::time(nullptr);
    std::optional<std::string> saved;
    if (old_text) {
        need(stat(file.c_str(), &status) == 0, file);
        record.saved = save_text(beside(lines, file_name_of(file)), *old_text,
                                 mode & status.st_mode & 0444, &now);
        saved = file_name_of(record.saved);
    }
    errno = sync_directory_of(lines);
    need(errno == 0, directory);
    errno = append(record_line(now, file, change, saved), &record);
    need(errno == 0, lines);
    return record;
}

void HistoryRecord::take_back() {
    const SignalsBlocked blocked;
    // A record that has to stay keeps its text.
    if (lines && ftruncate(lines.get(), begin) == 0) remove_temporary_file(saved);
    lines = {};
}

}  // namespace gatescope
