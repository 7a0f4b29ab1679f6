#include "logs/pruning.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <thread>
#include <vector>

#include "base/filled.h"
#include "base/replace_file.h"
#include "base/signals_held.h"
#include "base/standard_streams.h"
#include "base/temporary_files.h"
#include "dialog/messages.h"
#include "logs/left_overs.h"
#include "logs/log_files.h"
#include "logs/log_rewrite.h"
#include "messages/log_texts.h"

namespace {

/// Log that a link leads to.
constexpr char LINKED_SCRATCH[] = "%s.pruning_";

/// One log with what belongs to it.
struct Log {
    Place file;
    Place companion;
    std::string scratch;
    std::vector<LeftOver> left_overs;
};

/// Opens a file for appending and makes it where it is missing; gripes when that cannot be done.
Descriptor open_to_append(const std::string& path, const char* failure) {
    constexpr int FLAGS = O_WRONLY | O_APPEND | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
    // In two steps: in sticky directories the system may make nothing where somebody's file is.
    Descriptor file(open(path.c_str(), FLAGS));
    if (!file && errno == ENOENT) file = Descriptor(open(path.c_str(), FLAGS | O_CREAT, 0666));
    if (!file) gripe(failure, path, errno);
    struct stat status;
    if (fstat(file.get(), &status) != 0) gripe(failure, path, errno);
    if (!S_ISREG(status.st_mode)) gripe(failure, path, EEXIST);
    return file;
}

/// Makes sure that there is a log, to which everybody can append.
void make_log(const std::string& path) {
    make_log_public(open_to_append(path, NO_LOGGING_FILE).get());
}

class Pruning {
  public:
    Pruning(const LogsToPrune& logs, int days, const Patience& patience)
        : logs_(logs),
          days_(days),
          patience_(patience),
          cut_off_(set_time_values(days).start_of_period_time),
          token_path_(pruning_token_path(logs.directory)),
          records_(cut_off_),
          recovered_(cut_off_) {}

    void run();

  private:
    void short_pause() const { std::this_thread::sleep_for(patience_.pause); }
    void put_up_token();
    void take_down_token();
    void lock(int file) const;
    Log find_log(int number);
    void add_left_overs(Log* log, KeptRecords* records, Moment deadline);
    void rewrite_logs(Moment deadline);
    void merge_companions();
    bool take_companion_of(Log* log);
    void leave_alone(Place* place, const std::string& reason);
    void tell(const std::string& line);
    void tell_result();

    const LogsToPrune& logs_;
    const int days_;
    const Patience patience_;
    const std::int64_t cut_off_;
    const std::string token_path_;
    Descriptor directory_;
    Descriptor token_;
    LeftOverNames names_;
    std::vector<Log> found_;
    KeptRecords records_;
    /// What an earlier run left; what is kept of it is counted in its log.
    KeptRecords recovered_;
    std::string lines_;
};

void Pruning::run() {
    put_up_token();
    short_pause();
    const Moment deadline = patience_.deadline();
    for (int number = 0; number < NUMBER_OF_LOG_FILES; ++number) found_.push_back(find_log(number));
    for (Log& log : found_) add_left_overs(&log, &recovered_, deadline);
    rewrite_logs(deadline);
    merge_companions();
    take_down_token();
    // Who saw it a moment ago may still have gone to a companion.
    short_pause();
    merge_companions();
    tell_result();
}

/// Puts up the token, which diverts the log writers to the companions.
void Pruning::put_up_token() {
    // The directory stays locked when the token has gone.
    directory_ = Descriptor(open(logs_.directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!directory_) gripe(NO_PRUNING_TOKEN, token_path_, errno);
    lock(directory_.get());
    // From its first moment on: whoever has the directory locked is the only one with a token.
    remember_for_signals(token_path_);
    token_ = open_to_append(token_path_, NO_PRUNING_TOKEN);
    lock(token_.get());
    const int error = write_all(token_.get(), filled(TOKEN_TEXT, time_text(cut_off_).c_str()));
    if (error != 0) gripe(NO_PRUNING_TOKEN, token_path_, error);
}

void Pruning::take_down_token() {
    int error = 0;
    {
        // A signal must not take away the token of whoever prunes next.
        const SignalsHeld held;
        forget_temporary_file(token_path_);
        if (unlink(token_path_.c_str()) != 0 && errno != ENOENT) error = errno;
    }
    if (error != 0) gripe(filled(TOKEN_STAYS, token_path_.c_str(), std::strerror(error)));
}

/// Two that prune the same region at once would take each other's files for left-overs.
void Pruning::lock(int file) const {
    // File systems without locks are trusted to have but one administrator.
    if (flock(file, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
        gripe(filled(PRUNED_BY_ANOTHER, logs_.region.c_str()));
    }
}

Log Pruning::find_log(int number) {
    const std::string path = log_file_path(logs_.directory, number);
    Log log = {behind_links(path),
               behind_links(pruning_companion_path(logs_.directory, number)),
               pruning_scratch_path(logs_.directory),
               {}};
    if (log.file.path != path) log.scratch = filled(LINKED_SCRATCH, log.file.path.c_str());
    for (Place* place : {&log.file, &log.companion}) {
        if (place->reason.empty()) names_.find(place, &log.left_overs);
        if (!place->reason.empty()) leave_alone(place, place->reason);
    }
    return log;
}

void Pruning::add_left_overs(Log* log, KeptRecords* records, Moment deadline) {
    std::vector<LeftOver>& left_overs = log->left_overs;
    if (left_overs.empty()) return;
    std::string reason = log->file.reason;
    Descriptor file;
    if (reason.empty()) file = open_locked(log->file.path, deadline, &reason);
    if (!file && reason.empty()) {
        make_log(log->file.path);
        file = open_locked(log->file.path, deadline, &reason);
    }
    for (LeftOver& left_over : left_overs) left_over.stays = reason;
    if (!file) return;
    // What has been begun comes before anything else is appended.
    const FileId id = id_of(file.get());
    std::stable_partition(left_overs.begin(), left_overs.end(),
                          [&](const LeftOver& left_over) { return left_over.log == id; });
    for (LeftOver& left_over : left_overs) {
        add_left_over(&left_over, {log->file.path, file.get()}, records, deadline);
    }
    std::erase_if(left_overs, [](const LeftOver& left_over) { return left_over.stays.empty(); });
}

void Pruning::rewrite_logs(Moment deadline) {
    off_t bytes = 0;
    for (const Log& log : found_) bytes += log.file.size;
    Progress progress(bytes);
    for (Log& log : found_) {
        const std::string& path = log.file.path;
        if (!log.file.reason.empty()) continue;
        const bool is_linked = log.scratch.starts_with(path);
        const std::string reason = rewrite_log(path, log.scratch, is_linked, &records_, deadline,
                                               &log.left_overs, &progress);
        if (!reason.empty()) tell(filled(LOG_LEFT_ALONE, path.c_str(), reason.c_str()));
    }
}

/// Adds to the logs what has come into companions.
void Pruning::merge_companions() {
    bool taken = false;
    for (Log& log : found_) taken |= take_companion_of(&log);
    if (taken) short_pause();
    // Whoever has opened one did so before it was taken.
    const Moment deadline = patience_.deadline();
    for (Log& log : found_) add_left_overs(&log, &records_, deadline);
}

/// Puts it where no writer looks for it. False when there is none, or none that can be taken.
bool Pruning::take_companion_of(Log* log) {
    if (!log->file.reason.empty() || !log->companion.reason.empty()) return false;
    std::string reason;
    const Descriptor companion = open_log(log->companion.path, &reason);
    if (!companion && reason.empty()) return false;
    if (companion) {
        make_log(log->file.path);
        const LeftOver taken = new_left_over(log->companion.path, 0, companion.get());
        if (rename(log->companion.path.c_str(), taken.path().c_str()) == 0) {
            log->left_overs.push_back(taken);
            return true;
        }
        reason = std::strerror(errno);
    }
    leave_alone(&log->companion, reason);
    return false;
}

/// From now on nothing is done with it.
void Pruning::leave_alone(Place* place, const std::string& reason) {
    place->reason = reason;
    tell(filled(LOG_LEFT_ALONE, place->path.c_str(), reason.c_str()));
}

/// A line of its own, at once for a job's mail, and once more with the result.
void Pruning::tell(const std::string& line) {
    note(line);
    lines_ += line + "\n";
}

void Pruning::tell_result() {
    for (const Log& log : found_) {
        for (const LeftOver& one : log.left_overs) {
            tell(filled(LEFT_OVER_STAYS, one.path().c_str(), one.stays.c_str()));
        }
    }
    const long long removed = records_.removed() + recovered_.removed();
    const long long total = records_.total() + recovered_.removed();
    const std::string text =
        lines_ + filled(PRUNING_RESULT, removed, total, removed == 1 ? "was" : "were",
                        logs_.region.c_str(), days_);
    if (logs_.display) {
        advise(text);
    } else {
        write_output(text);
    }
}

}  // namespace

void prune_logging_files(const LogsToPrune& logs, std::uint8_t days, const Patience& patience) {
    Pruning(logs, days, patience).run();
}
