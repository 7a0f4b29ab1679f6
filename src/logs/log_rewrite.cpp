#include "logs/log_rewrite.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <limits>
#include <optional>
#include <utility>

#include "base/file_identity.h"
#include "base/files.h"
#include "base/filled.h"
#include "base/process_end.h"
#include "base/replace_file.h"
#include "base/temporary_files.h"
#include "dialog/messages.h"
#include "logs/file_leases.h"
#include "logs/log_files.h"
#include "logs/log_reader.h"
#include "messages/log_texts.h"
#include "policy/region.h"

namespace {

/// Who keeps a log open for longer is taken to keep it open for good.
constexpr Patience FOR_A_LOG = {200, 20};
/// For a file that nobody can open any more.
constexpr Patience FOR_LEFT_OVERS = {2000, 200};
constexpr Patience UNLESS_SOMEBODY_IS_THERE = {1, FOR_LEFT_OVERS.blind_steps};
constexpr Patience NO_PATIENCE = {1, 1};
/// Only a writer that never pauses makes another round necessary time and again; what that leaves
/// blank lines in the log, or a companion for the next run.
constexpr int MOST_ROUNDS = 5;
/// Bytes copied at a time.
constexpr std::size_t COPY_SIZE = 128UL * 1024;
/// The disk is set to work on a new text whenever so many bytes have come together.
constexpr off_t WRITE_BACK_SIZE = 8 << 20;

[[noreturn]] void gripe_stopped(const std::string& log, const char* step, const std::string& path,
                                int error) {
    gripe(filled(PRUNING_STOPPED, step, path.c_str(), std::strerror(error), log.c_str()));
}

[[noreturn]] void gripe_unread(const std::string& path, int error) {
    gripe(filled(LOG_READ_FAILURE, path.c_str(), std::strerror(error)));
}

/// Opens a file for reading as LOGGING_STREAM, where the end of the process finds it.
bool open_log_stream(const std::string& path) {
    std::string reason;
    const Descriptor file = open_log(path, &reason);
    if (!file) return false;
    LOGGING_STREAM = fdopen(fcntl(file.get(), F_DUPFD_CLOEXEC, 0), "r");
    return LOGGING_STREAM != nullptr;
}

void close_log_stream() {
    std::fclose(LOGGING_STREAM);
    LOGGING_STREAM = nullptr;
}

/// The scratch file, in the log's own directory, so that it can be renamed.
std::string scratch_beside(const std::string& log) {
    const std::filesystem::path scratch = pruning_scratch_path(logging_dir);
    return std::filesystem::path(log).replace_filename(scratch.filename());
}

/// Hands the bytes from `at` to `end` of the open file at `path` out piece by piece.
template <typename Take>
void read_range(const std::string& log, const std::string& path, int file, off_t at, off_t end,
                const Take& take) {
    std::vector<char> buffer(COPY_SIZE);
    while (at < end) {
        const auto left = static_cast<std::size_t>(end - at);
        const ssize_t got = pread(file, buffer.data(), std::min(buffer.size(), left), at);
        if (got == -1 && errno == EINTR) continue;
        if (got <= 0) gripe_stopped(log, "read", path, got == 0 ? EIO : errno);
        take(std::string_view(buffer.data(), static_cast<std::size_t>(got)));
        at += got;
    }
}

/// The new text of a log while it is written.
class NewText {
  public:
    explicit NewText(const std::string& log) : log_(log), path_(scratch_beside(log)) {}

    bool exists() const { return exists_; }

    /// Creates it.
    void begin() {
        unlink(path_.c_str());
        const int file = open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (file == -1) gripe(NO_PRUNING_FILE);
        remember_temporary_file(path_);
        LOGGING_FILE_PRUNE_STREAM = fdopen(file, "w");
        if (LOGGING_FILE_PRUNE_STREAM == nullptr) gripe(NO_PRUNING_FILE);
        exists_ = true;
    }

    /// Creates it with the identity and the first `size` bytes of the open log.
    void begin_like(int log, off_t size) {
        begin();
        // An owner that cannot be carried over is noticed when the log is to be replaced.
        carry_over_identity(log, descriptor());
        read_range(log_, log_, log, 0, size, [this](std::string_view bytes) { add(bytes); });
    }

    void add(std::string_view text) {
        const int error = write_all(descriptor(), text);
        if (error != 0) gripe_stopped(log_, "write", path_, error);
        size_ += static_cast<off_t>(text.size());
        if (size_ - on_its_way_ >= WRITE_BACK_SIZE) {
            // Only to make the sync shorter, so it may fail.
            sync_file_range(descriptor(), on_its_way_, 0, SYNC_FILE_RANGE_WRITE);
            on_its_way_ = size_;
        }
    }

    /// Brings it to the disk and gives it the name that says that it is complete.
    void complete(const std::string& name) {
        if (fsync(descriptor()) != 0) gripe_stopped(log_, "sync", path_, errno);
        if (std::fclose(std::exchange(LOGGING_FILE_PRUNE_STREAM, nullptr)) != 0) {
            gripe_stopped(log_, "close", path_, errno);
        }
        if (rename(path_.c_str(), name.c_str()) != 0) {
            gripe_stopped(log_, "rename", path_, errno);
        }
        forget_temporary_file(path_);
    }

  private:
    static int descriptor() { return fileno(LOGGING_FILE_PRUNE_STREAM); }

    std::string log_;
    std::string path_;
    bool exists_ = false;
    off_t size_ = 0;
    /// The beginning that the system has been told to bring to the disk already.
    off_t on_its_way_ = 0;
};

/// Whether it is a log that cannot be opened and so is passed over, as behind a link that leads
/// nowhere.
bool cannot_be_reached(const std::string& log) {
    struct stat status;
    if (stat(log.c_str(), &status) == 0) return false;
    return errno == EACCES || errno == ENOTDIR || errno == ELOOP || errno == ENAMETOOLONG;
}

std::string_view without_last_word(std::string_view piece) {
    const auto end = std::find_if(piece.rbegin(), piece.rend(), is_white);
    return piece.substr(0, static_cast<std::size_t>(piece.rend() - end));
}

/// A file beside the log, and the number in its name.
struct Beside {
    std::string path;
    off_t bytes = 0;
};

/// One log on its way from state to state.
class Rewriting {
  public:
    Rewriting(const LogFiles& files, KeptRecords* records)
        : log_(files.log), taken_(filled(TAKEN_NAME, files.companion.c_str())), records_(records) {}

    /// Goes on where another run stopped, until there is nothing beside the log. The log's own
    /// records are all kept, and not counted, unless `look_at_log`.
    void run(bool look_at_log);
    /// Puts the companion out of the writers' reach.
    void take(const std::string& companion);

  private:
    // From state to state.
    void resume();
    bool somebody_writes_left_overs() const;
    bool make_new_text(bool look_at_log);
    void publish(const Beside& new_text);
    void become_log(const Beside& new_text);
    bool replace_log(const Beside& new_text, int log);
    void overwrite_log(const Beside& new_text);
    void finish_overwriting(const Beside& text, int log);
    void drop_old_without_tail();

    // The pieces of a new text.
    off_t add_log(NewText* text, int log, bool look_at_it);
    void add_records(NewText* text, const std::string& path, off_t from);

    // The log, where it is overwritten.
    bool log_writers_have_gone(int log);
    int open_alone();
    off_t make_room(int log, off_t size) const;
    void keep_tail(int log, off_t from, off_t to) const;
    off_t copy_over(int log, const std::string& path) const;
    void take_out(int log, off_t from, off_t to) const;
    void write_blank_lines(int log, off_t number) const;

    std::optional<Beside> find(const char* format) const;
    bool is_regular_file(const std::string& path) const;
    bool is_there(const std::string& path) const;
    bool is_the_log(const std::string& path) const;
    bool examine(const std::string& path, struct stat* status) const;
    off_t size_of(int log) const;
    bool something_to_add() const;
    std::string named(const char* format, off_t bytes) const;
    void remove_file(const std::string& path) const;
    void sync_names() const;

    std::string log_;
    std::string taken_;
    KeptRecords* records_;
    /// Once somebody has kept the log open, there is no use in waiting for him again.
    Patience patience_ = FOR_A_LOG;
    /// Whether blank lines are left in the middle of the log that need not be there.
    bool has_blank_lines_ = false;
    /// Whether somebody keeps the last record of the log half written.
    bool has_half_record_ = false;
};

void Rewriting::run(bool look_at_log) {
    for (int round = 0; round < MOST_ROUNDS; ++round) {
        resume();
        const bool look = look_at_log && round == 0;
        const bool is_to_be_tidied = has_blank_lines_ && !has_half_record_;
        if (!look && !something_to_add() && !is_to_be_tidied) return;
        if (somebody_writes_left_overs()) return;
        if (!make_new_text(look)) return;
    }
    resume();
}

void Rewriting::take(const std::string& companion) {
    // One that could not be added yet; the next run takes this one.
    if (is_there(taken_)) return;
    if (rename(companion.c_str(), taken_.c_str()) != 0) {
        gripe_stopped(log_, "rename", companion, errno);
    }
}

/// Does what has to be done before a new text can be made.
void Rewriting::resume() {
    unlink_remove(scratch_beside(log_));
    if (const auto text = find(OVERWRITING_NAME)) finish_overwriting(*text, open_alone());
    if (const auto new_text = find(REPLACEMENT_NAME)) publish(*new_text);
    drop_old_without_tail();
}

/// Whether a file that is to be added is not complete yet. The next run adds it, and until then
/// there may be no new text, which would be taken to hold it.
bool Rewriting::somebody_writes_left_overs() const {
    std::vector<std::string> paths;
    if (is_there(taken_)) paths.push_back(taken_);
    if (const auto old = find(REPLACED_NAME)) paths.push_back(old->path);
    return std::any_of(paths.begin(), paths.end(), [this](const std::string& path) {
        if (!open_log_stream(path)) gripe_stopped(log_, "open", path, errno);
        const bool have_gone = writers_have_gone(fileno(LOGGING_STREAM), FOR_LEFT_OVERS);
        close_log_stream();
        return !have_gone;
    });
}

/// False, with nothing created, when the log is as it is to be.
bool Rewriting::make_new_text(bool look_at_log) {
    NewText text(log_);
    off_t taken_over = 0;
    has_blank_lines_ = false;
    if (open_log_stream(log_)) {
        taken_over = add_log(&text, fileno(LOGGING_STREAM), look_at_log);
        close_log_stream();
    } else if (something_to_add() && is_there(log_)) {
        gripe(NO_LOGGING_FILE);
    }
    if (something_to_add()) {
        if (!text.exists()) text.begin();
        if (const auto old = find(REPLACED_NAME)) add_records(&text, old->path, old->bytes);
        if (is_there(taken_)) add_records(&text, taken_, 0);
    }
    if (!text.exists()) return false;
    text.complete(named(REPLACEMENT_NAME, taken_over));
    sync_names();
    return true;
}

/// Returns how many bytes of the log the text holds, or would hold if it were needed.
off_t Rewriting::add_log(NewText* text, int log, bool look_at_it) {
    KeptRecords all(std::numeric_limits<std::int64_t>::min());
    KeptRecords* const records = look_at_it ? records_ : &all;
    LogReader reader;
    off_t done = 0;
    off_t done_before = -1;
    has_half_record_ = false;
    // What was appended while the rest was read comes along.
    while (done != done_before) {
        done_before = done;
        off_t waited_at = -1;
        reader.start(log, done);
        for (std::string_view piece; reader.next(&piece);) {
            const auto end = done + static_cast<off_t>(piece.size());
            // Somebody may be in the middle of writing the last record.
            const bool is_unfinished = !is_white(piece.back()) && reader.at_end();
            if (is_unfinished && waited_at != end) {
                waited_at = end;
                has_half_record_ = !log_writers_have_gone(log);
                reader.start(log, done);
                continue;
            }
            if (is_unfinished && has_half_record_) piece = without_last_word(piece);
            const std::string_view kept = records->of(piece);
            if (!text->exists() && kept.data() != piece.data()) text->begin_like(log, done);
            if (text->exists()) text->add(kept);
            done += static_cast<off_t>(piece.size());
            if (done != end) break;
        }
        if (reader.error() != 0) gripe_unread(log_, reader.error());
    }
    if (!text->exists() && something_to_add()) text->begin_like(log, done);
    return done;
}

/// Adds the kept records of a file that nobody writes any more.
void Rewriting::add_records(NewText* text, const std::string& path, off_t from) {
    if (!open_log_stream(path)) gripe_stopped(log_, "open", path, errno);
    const int file = fileno(LOGGING_STREAM);
    LogReader reader;
    reader.start(file, from);
    for (std::string_view piece; reader.next(&piece);) text->add(records_->of(piece));
    if (reader.error() != 0) gripe_unread(path, reader.error());
    close_log_stream();
}

void Rewriting::publish(const Beside& new_text) {
    if (!is_the_log(new_text.path)) {
        remove_file(taken_);
        while (const auto old = find(REPLACED_NAME)) remove_file(old->path);
        // Gone for good before the new text is the log, and could be added to it once more.
        sync_names();
        become_log(new_text);
    }
    if (is_there(new_text.path)) remove_file(new_text.path);
}

void Rewriting::become_log(const Beside& new_text) {
    if (!is_there(log_)) {
        // Somebody may be making the log at this moment, so nothing may be replaced.
        if (link(new_text.path.c_str(), log_.c_str()) == 0) return sync_names();
        if (errno != EEXIST) gripe_stopped(log_, "make", log_, errno);
    }
    if (!open_log_stream(log_)) gripe(NO_LOGGING_FILE);
    const bool replaced = replace_log(new_text, fileno(LOGGING_STREAM));
    close_log_stream();
    if (!replaced) overwrite_log(new_text);
}

/// False, with nothing done, where the log has to stay the file that it is.
bool Rewriting::replace_log(const Beside& new_text, int log) {
    struct stat old_status;
    struct stat new_status;
    struct stat named_status;
    if (fstat(log, &old_status) != 0 || stat(new_text.path.c_str(), &new_status) != 0 ||
        lstat(log_.c_str(), &named_status) != 0 || old_status.st_ino != named_status.st_ino ||
        old_status.st_nlink != 1 || old_status.st_uid != new_status.st_uid ||
        old_status.st_gid != new_status.st_gid || !log_writers_have_gone(log)) {
        return false;
    }
    const std::string old = named(REPLACED_NAME, new_text.bytes);
    if (link(log_.c_str(), old.c_str()) != 0) return false;
    if (rename(new_text.path.c_str(), log_.c_str()) != 0) {
        gripe_stopped(log_, "replace", log_, errno);
    }
    sync_names();
    return true;
}

void Rewriting::overwrite_log(const Beside& new_text) {
    struct stat status;
    if (!examine(new_text.path, &status)) gripe_stopped(log_, "examine", new_text.path, ENOENT);
    const int log = open_alone();
    // What is behind the old text may stay there, unless the new one needs the place.
    off_t covered = new_text.bytes;
    if (status.st_size > covered) {
        covered = make_room(log, status.st_size);
        keep_tail(log, new_text.bytes, covered);
    }
    const Beside text = {named(OVERWRITING_NAME, covered), covered};
    if (rename(new_text.path.c_str(), text.path.c_str()) != 0) {
        gripe_stopped(log_, "rename", new_text.path, errno);
    }
    sync_names();
    finish_overwriting(text, log);
}

/// Opens the log so that, where the system can do that, all others who open it wait until it is
/// closed again.
int Rewriting::open_alone() {
    const int log = open(log_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    if (log == -1) gripe_stopped(log_, "open", log_, errno);
    // Somebody may have it open for good; then it has to do without.
    if (take_lease(log, F_WRLCK, patience_) == REFUSED) patience_ = NO_PATIENCE;
    return log;
}

bool Rewriting::log_writers_have_gone(int log) {
    const bool have_gone = writers_have_gone(log, patience_);
    if (!have_gone) patience_ = NO_PATIENCE;
    return have_gone;
}

/// Makes the log at least so long and returns how long it was made. Blank lines at its end mean
/// nothing, so a disk that is full is noticed before any harm is done.
off_t Rewriting::make_room(int log, off_t size) const {
    // Behind whatever is appended at this moment: at least one, so that no record goes across.
    if (fcntl(log, F_SETFL, O_APPEND) != 0) gripe_stopped(log_, "extend", log_, errno);
    write_blank_lines(log, std::max<off_t>(size - size_of(log), 1));
    const off_t end = lseek(log, 0, SEEK_CUR);
    if (end == -1 || fcntl(log, F_SETFL, 0) != 0) gripe_stopped(log_, "extend", log_, errno);
    if (fsync(log) != 0) gripe_stopped(log_, "sync", log_, errno);
    return end;
}

/// Writes what was appended to the log behind `from` into a companion taken.
void Rewriting::keep_tail(int log, off_t from, off_t to) const {
    bool is_blank = true;
    read_range(log_, log_, log, from, to, [&](std::string_view bytes) {
        is_blank = is_blank && std::all_of(bytes.begin(), bytes.end(), is_white);
    });
    if (is_blank) return;
    const int file = open(taken_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (file == -1) gripe_stopped(log_, "make", taken_, errno);
    int error = 0;
    read_range(log_, log_, log, from, to, [&](std::string_view bytes) {
        if (error == 0) error = write_all(file, bytes);
    });
    if (error == 0 && fsync(file) != 0) error = errno;
    if (close(file) != 0 && error == 0) error = errno;
    if (error != 0) gripe_stopped(log_, "write", taken_, error);
    sync_names();
}

void Rewriting::finish_overwriting(const Beside& text, int log) {
    const off_t size = copy_over(log, text.path);
    write_blank_lines(log, text.bytes - size);
    if (fsync(log) != 0) gripe_stopped(log_, "sync", log_, errno);
    // The log holds everything now; a run that went on from here would overwrite what comes next.
    remove_file(text.path);
    sync_names();
    // The system takes the lease back from who has it for long.
    const bool has_lease = fcntl(log, F_GETLEASE) == F_WRLCK;
    const bool is_shared = !has_lease && take_lease(log, F_WRLCK, NO_PATIENCE) == REFUSED;
    // What somebody appended meanwhile, or appends at this moment, is not cut off.
    const off_t end = std::max(text.bytes, size);
    has_blank_lines_ = !is_shared && size_of(log) > end;
    if (is_shared) {
        take_out(log, size, end);
    } else if (!has_blank_lines_ && ftruncate(log, size) != 0) {
        gripe_stopped(log_, "cut", log_, errno);
    }
    if (fsync(log) != 0) gripe_stopped(log_, "sync", log_, errno);
    if (close(log) != 0) gripe_stopped(log_, "close", log_, errno);
}

/// Takes bytes out of the middle of a log while others write at its end, as far as the file system
/// can do that. What is left of them are blank lines, which mean nothing.
void Rewriting::take_out(int log, off_t from, off_t to) const {
    struct stat status;
    if (fstat(log, &status) != 0) gripe_stopped(log_, "examine", log_, errno);
    // Whole blocks, and not the last one of the file.
    const off_t block = status.st_blksize;
    from = (from + block - 1) / block * block;
    to = std::min(to, status.st_size - 1) / block * block;
    if (to > from) fallocate(log, FALLOC_FL_COLLAPSE_RANGE, from, to - from);
}

/// Copies a file over the beginning of the log and returns how long it is.
off_t Rewriting::copy_over(int log, const std::string& path) const {
    if (!open_log_stream(path)) gripe_stopped(log_, "open", path, errno);
    if (lseek(log, 0, SEEK_SET) == -1) gripe_stopped(log_, "write", log_, errno);
    const int source = fileno(LOGGING_STREAM);
    const off_t size = size_of(source);
    read_range(log_, path, source, 0, size, [&](std::string_view bytes) {
        const int error = write_all(log, bytes);
        if (error != 0) gripe_stopped(log_, "write", log_, error);
    });
    close_log_stream();
    return size;
}

/// At the log's position; nothing when the number is not positive.
void Rewriting::write_blank_lines(int log, off_t number) const {
    const std::string lines(COPY_SIZE, '\n');
    while (number > 0) {
        const auto now = std::min(static_cast<std::size_t>(number), lines.size());
        const int error = write_all(log, std::string_view(lines).substr(0, now));
        if (error != 0) gripe_stopped(log_, "write", log_, error);
        number -= static_cast<off_t>(now);
    }
}

/// Removes the old file where it is the log still, or nobody has appended to it.
void Rewriting::drop_old_without_tail() {
    const auto old = find(REPLACED_NAME);
    if (!old) return;
    bool has_tail = false;
    if (!is_the_log(old->path)) {
        if (!open_log_stream(old->path)) gripe_stopped(log_, "open", old->path, errno);
        const int file = fileno(LOGGING_STREAM);
        const bool is_complete = writers_have_gone(file, UNLESS_SOMEBODY_IS_THERE);
        has_tail = !is_complete || size_of(file) > old->bytes;
        close_log_stream();
    }
    if (!has_tail) remove_file(old->path);
}

bool Rewriting::something_to_add() const {
    return is_there(taken_) || find(REPLACED_NAME).has_value();
}

std::string Rewriting::named(const char* format, off_t bytes) const {
    const std::string number = std::to_string(bytes);
    return log_ + format + number;
}

/// The file that `named` would name with some number, if there is one.
std::optional<Beside> Rewriting::find(const char* format) const {
    const std::filesystem::path log(log_);
    const std::string start = log.filename().native() + format;
    const auto directory = log.parent_path();
    std::error_code error;
    for (auto entry = std::filesystem::directory_iterator(directory, error);
         !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        const std::string name = entry->path().filename();
        if (!name.starts_with(start)) continue;
        const off_t bytes = std::atoll(name.c_str() + start.size());
        const Beside found = {named(format, bytes), bytes};
        if (name == start + std::to_string(bytes) && is_regular_file(found.path)) return found;
    }
    if (error == std::errc::no_such_file_or_directory) return std::nullopt;
    // Not to see what stands beside the log is not the same as nothing standing there.
    if (error) gripe_stopped(log_, "list", directory.native(), error.value());
    return std::nullopt;
}

bool Rewriting::is_regular_file(const std::string& path) const {
    struct stat status;
    if (lstat(path.c_str(), &status) == 0) return S_ISREG(status.st_mode);
    if (errno != ENOENT) gripe_stopped(log_, "examine", path, errno);
    return false;
}

bool Rewriting::is_there(const std::string& path) const {
    struct stat status;
    return examine(path, &status);
}

bool Rewriting::is_the_log(const std::string& path) const {
    struct stat status;
    struct stat log;
    return examine(path, &status) && examine(log_, &log) && status.st_dev == log.st_dev &&
           status.st_ino == log.st_ino;
}

/// False when there is no such file.
bool Rewriting::examine(const std::string& path, struct stat* status) const {
    if (stat(path.c_str(), status) == 0) return true;
    if (errno != ENOENT) gripe_stopped(log_, "examine", path, errno);
    return false;
}

off_t Rewriting::size_of(int log) const {
    struct stat status;
    if (fstat(log, &status) != 0) gripe_stopped(log_, "examine", log_, errno);
    return status.st_size;
}

void Rewriting::remove_file(const std::string& path) const {
    if (unlink(path.c_str()) != 0 && errno != ENOENT) gripe_stopped(log_, "remove", path, errno);
}

void Rewriting::sync_names() const {
    for (const std::string& path : {log_, taken_}) {
        const int error = sync_directory_of(path);
        if (error != 0) gripe_stopped(log_, "bring to the disk the directory of", path, error);
    }
}

}  // namespace

void rewrite_log(const LogFiles& files, KeptRecords* records) {
    if (cannot_be_reached(files.log)) return;
    Rewriting(files, records).run(true);
    if (!open_log_stream(files.log)) return;
    // Not a fault: somebody else's log keeps its mode.
    make_public(files.log);
    close_log_stream();
}

void merge_companion(const LogFiles& files, KeptRecords* records) {
    if (!open_log_stream(files.companion)) return;
    close_log_stream();
    if (this_file_exists(files.log)) {
        if (!open_log_stream(files.log)) gripe(NO_LOGGING_FILE);
        close_log_stream();
    } else if (!this_file_exists(std::filesystem::path(files.log).parent_path())) {
        gripe(NO_LOGGING_FILE);
    }
    Rewriting rewriting(files, records);
    rewriting.run(false);
    rewriting.take(files.companion);
    rewriting.run(false);
}
