#include "policy/history.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <thread>
#include <utility>

#include "base/file_identity.h"
#include "base/filled.h"
#include "base/json.h"
#include "base/operator_name.h"
#include "base/replace_file.h"
#include "base/signals_held.h"
#include "base/temporary_files.h"
#include "messages/history_texts.h"
#include "messages/startup_texts.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds HISTORY_PAUSE(10);

/// How long a name may be taken that has the second in it.
constexpr std::chrono::seconds NAME_PATIENCE(2);

/// One moment, as the record has it and as the name of a saved text has it.
struct Moment {
    std::string local;
    std::string utc;
};

Moment this_moment() {
    const std::time_t now = std::time(nullptr);
    std::tm local = {};
    std::tm utc = {};
    localtime_r(&now, &local);
    gmtime_r(&now, &utc);
    std::array<char, 64> text;
    std::string with_offset(text.data(),
                            std::strftime(text.data(), text.size(), "%FT%T%z", &local));
    with_offset.insert(with_offset.size() - 2, ":");
    return {with_offset,
            {text.data(), std::strftime(text.data(), text.size(), "%Y%m%dT%H%M%SZ", &utc)}};
}

std::string real_path(const std::string& path) {
    char* resolved = realpath(path.c_str(), nullptr);
    std::string result = resolved != nullptr ? resolved : "";
    std::free(resolved);
    return result;
}

std::string host_name() {
    std::array<char, HOST_NAME_MAX + 1> name = {};
    return gethostname(name.data(), name.size() - 1) == 0 ? name.data() : "";
}

/// What the system says of a file that could not be opened; of a link it would speak of a ring.
std::string reason_of(int error) {
    return error == ELOOP ? NOT_A_REGULAR_FILE : std::strerror(error);
}

/// Files of the history are open to those that the directory is open to, whatever the umask.
Descriptor open_in_history(const std::string& path, int flags, mode_t mode) {
    const mode_t umask_before = umask(0);
    Descriptor file(open(path.c_str(), flags | O_CREAT | O_CLOEXEC, mode));
    umask(umask_before);
    return file;
}

/// A file, or why there is none.
struct Opened {
    Descriptor file = {};
    std::string why_not = {};
};

Opened open_lines(const std::string& path, mode_t mode) {
    Descriptor file =
        open_in_history(path, O_RDWR | O_APPEND | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY, mode & 0666);
    struct stat status;
    if (!file || fstat(file.get(), &status) != 0) return {{}, reason_of(errno)};
    if (!S_ISREG(status.st_mode)) return {{}, NOT_A_REGULAR_FILE};
    // A file of somebody else's may have been given the name.
    if (status.st_nlink > 1) return {{}, HAS_A_SECOND_NAME};
    return {std::move(file)};
}

Opened lock_lines(const std::string& path, mode_t mode, std::chrono::seconds patience) {
    for (const auto end = Clock::now() + patience;;) {
        Opened lines = open_lines(path, mode);
        if (!lines.file) return lines;
        const bool has_lock = flock(lines.file.get(), LOCK_EX | LOCK_NB) == 0;
        if (has_lock && is_name_of(path, lines.file.get())) return lines;
        if (!has_lock && errno != EWOULDBLOCK && errno != EINTR) return {{}, reason_of(errno)};
        if (Clock::now() >= end) {
            return {{}, filled(LOCKED_BY_ANOTHER, static_cast<int>(patience.count()))};
        }
        std::this_thread::sleep_for(HISTORY_PAUSE);
    }
}

bool is_regular_file(const std::string& path) {
    struct stat status;
    return lstat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

/// Makes the file for an old text, "<beginning>.<UTC time>-<process>.txt", which is a temporary one
/// until its record stands. What this process has saved in the same second has the name already, so
/// the next second is waited for.
Opened create_saved(const std::string& beginning, mode_t mode, std::string* path, Moment* moment) {
    for (const auto end = Clock::now() + NAME_PATIENCE;;) {
        *moment = this_moment();
        *path = filled("%s.%s-%d.txt", beginning.c_str(), moment->utc.c_str(), getpid());
        {
            const SignalsHeld held;
            Descriptor file = open_in_history(*path, O_WRONLY | O_EXCL, mode & 0444);
            if (file) remember_temporary_file(*path);
            if (file || errno != EEXIST) return {std::move(file), reason_of(errno)};
        }
        if (!is_regular_file(*path)) return {{}, NOT_A_REGULAR_FILE};
        if (Clock::now() >= end) return {{}, std::strerror(EEXIST)};
        std::this_thread::sleep_for(HISTORY_PAUSE);
    }
}

/// Where the last whole line ends; -1 with errno set when the file cannot be read. A line without
/// an end is of a run that was killed before it made the change.
off_t end_of_last_line(int file) {
    off_t end = lseek(file, 0, SEEK_END);
    for (char last = '\n'; end > 0; --end) {
        const ssize_t got = pread(file, &last, 1, end - 1);
        if (got != 1) return -1;
        if (last == '\n') break;
    }
    return end;
}

/// 0 or an errno, and then the file is as it was, as far as that can be.
int append_line(int file, off_t end, const std::string& line) {
    int error = write_all(file, line);
    if (error == 0 && fsync(file) != 0) error = errno;
    if (error != 0 && ftruncate(file, end) != 0) return error;
    return error;
}

mode_t mode_of(const std::string& path) {
    struct stat status;
    return stat(path.c_str(), &status) == 0 ? status.st_mode : 0;
}

std::string record_line(const Moment& moment, const std::string& file, const RecordedChange& change,
                        const std::optional<std::string>& saved) {
    const std::array<std::pair<const char*, std::string>, 10> members = {
        {{"time", json_string(moment.local)},
         {"operator", json_string(operator_name().value_or(""))},
         {"uid", std::to_string(getuid())},
         {"host", json_string(host_name())},
         {"file", json_string(file)},
         {"action", json_string(change.action)},
         {"item", json_string(change.item)},
         {"from", json_value(change.from)},
         {"to", json_value(change.to)},
         {"saved", json_value(saved)}}};
    std::string line;
    for (const auto& [name, value] : members) {
        line.append(line.empty() ? "{" : ",").append(json_string(name)).append(":").append(value);
    }
    return line + "}\n";
}

}  // namespace

std::string absolute_path(const std::string& path) {
    const std::string real = real_path(path);
    if (!real.empty()) return real;
    const auto name = path.rfind('/') + 1;
    return real_path(path.substr(0, name) + ".") + "/" + path.substr(name);
}

std::string HistoryEntry::write(const std::string& directory, const std::string& policy_file,
                                const std::optional<std::string>& old_text,
                                const RecordedChange& change, std::chrono::seconds patience) {
    const auto failed = [&](const std::string& path, const std::string& reason) {
        if (!saved_.empty()) remove_temporary_file(saved_);
        saved_.clear();
        lines_ = {};
        return filled(FILE_AND_REASON, path.c_str(), reason.c_str());
    };
    const std::string lines = directory + "/" + CHANGES_FILE;
    const mode_t open_to = mode_of(directory);
    Opened opened = lock_lines(lines, open_to, patience);
    if (!opened.file) return failed(lines, opened.why_not);
    lines_ = std::move(opened.file);
    const std::string file = absolute_path(policy_file);
    const std::string name = file.substr(file.rfind('/') + 1);
    Moment moment = this_moment();
    std::optional<std::string> saved;
    if (old_text) {
        std::string path;
        opened = create_saved(directory + "/" + name, open_to & mode_of(file), &path, &moment);
        if (!opened.file) return failed(path, opened.why_not);
        saved_ = path;
        saved = path.substr(directory.size() + 1);
        const int error = write_sync_close(opened.file.release(), *old_text);
        if (error != 0) return failed(path, reason_of(error));
    }
    if (const int error = sync_directory_of(lines)) return failed(directory, reason_of(error));
    const SignalsHeld held;
    begin_ = end_of_last_line(lines_.get());
    const off_t size = lseek(lines_.get(), 0, SEEK_END);
    if (begin_ < 0 || (size > begin_ && ftruncate(lines_.get(), begin_) != 0)) {
        return failed(lines, reason_of(errno));
    }
    if (const int error =
            append_line(lines_.get(), begin_, record_line(moment, file, change, saved))) {
        return failed(lines, reason_of(error));
    }
    forget_temporary_file(saved_);
    return "";
}

void HistoryEntry::take_back() {
    const SignalsHeld held;
    // A record that has to stay keeps its text.
    if (!lines_ || ftruncate(lines_.get(), begin_) != 0) return;
    if (!saved_.empty()) unlink(saved_.c_str());
    lines_ = {};
}
