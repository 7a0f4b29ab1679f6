#include "pruning/pruning.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <thread>
#include <vector>

#include "base/filled.h"
#include "base/signals_held.h"
#include "base/standard_streams.h"
#include "base/temporary_files.h"
#include "base/whole_file.h"
#include "dialog/messages.h"
#include "logs/log_files.h"
#include "messages/log_texts.h"
#include "pruning/left_overs.h"
#include "pruning/one_log.h"
#include "records/query_period.h"

namespace gatescope {
namespace {

constexpr int MOST_ROUNDS = 3;

std::string name_of(const std::string& path) {
    return path.substr(path.rfind('/') + 1);
}

/// Opens the token for appending; `*is_new` when it was not there before. A signal takes it away.
Descriptor open_token(const Work& work, Moment deadline, bool* is_new) {
    constexpr int FLAGS = O_WRONLY | O_APPEND;
    Descriptor token = work.logs.open(work.token, FLAGS, deadline);
    *is_new = !token && errno == ENOENT;
    const SignalsHeld held;
    // In a step of its own: in a sticky directory the system may make nothing where another user's
    // file is.
    if (*is_new) token = work.logs.open(work.token, FLAGS | O_CREAT | O_EXCL, deadline);
    if (token) remember_file_removed_on_signal(work.token, work.logs.descriptor());
    return token;
}

/// 0 or an errno.
int take_down_token(const Work& work) {
    // A signal must not take away the token of the next pruning.
    const SignalsHeld held;
    forget_temporary_file(work.token);
    return work.logs.unlink(work.token);
}

/// Puts up the token, which diverts the log writers to the companions. Gripes when that fails.
void put_up_token(const Work& work, Moment deadline) {
    bool is_new = false;
    int error = is_in_append_only_directory(work.logs.path_of(work.token)) ? EPERM : 0;
    Descriptor token;
    if (error == 0) token = open_token(work, deadline, &is_new);
    struct stat status;
    if (error == 0 && (!token || fstat(token.get(), &status) != 0)) error = errno;
    // With another name it may be a file that is none of ours.
    if (error == 0 && status.st_nlink > 1) error = EMLINK;
    // The next operator has to append to it if this run is killed.
    if (error == 0 && is_new && fchmod(token.get(), 0666) != 0) error = errno;
    const std::string text = filled(TOKEN_TEXT, time_text(work.cut_off).c_str());
    if (error == 0) error = write_all(token.get(), text);
    if (error == 0) return;
    if (token && is_new) take_down_token(work);
    forget_temporary_file(work.token);
    stop(NO_PRUNING_TOKEN, work.token, error, work);
}

/// The logs, and the bytes that are to be read of them.
std::vector<Log> find_logs(const std::string& path, const Directory& directory, off_t* bytes) {
    std::vector<Log> logs;
    for (int number = 0; number < NUMBER_OF_LOG_FILES; ++number) {
        logs.push_back(
            {name_of(log_file_path(path, number)), name_of(pruning_companion_path(path, number))});
        *bytes += directory.look(logs.back().name).status.st_size +
                  directory.look(logs.back().companion).status.st_size;
    }
    return logs;
}

/// While the token stands. What is added to a replaced log nevertheless is left to merge_the_rest.
void prune_each(std::vector<Log>* logs, Work* work, const Patience& patience) {
    for (Log& log : *logs) log.reason = reason_of([&] { prepare(&log, *work); });
    const Moment deadline = Moment::clock::now() + patience.longest_write;
    for (Log& log : *logs) {
        if (!log.reason.empty()) continue;
        log.reason = reason_of([&] {
            rewrite(&log, work, deadline);
            remove_unchanged_old_files(log, *work, Moment::clock::now());
        });
    }
}

/// Whether records were added to a replaced log that is not left alone.
bool needs_a_round(Log* log, const Work& work, Moment deadline) {
    bool is_done = false;
    if (!log->reason.empty()) return false;
    log->reason = reason_of([&] { is_done = remove_unchanged_old_files(*log, work, deadline); });
    return !is_done && log->reason.empty();
}

/// Adds what has come to companions, and to replaced logs. Writers are at work now: in each round
/// logs are replaced, and then it is looked whether records were added to the replaced ones.
void merge_the_rest(std::vector<Log>* logs, Work* work, const Patience& patience) {
    std::vector<Log*> rest;
    for (Log& log : *logs) {
        const std::string reason = reason_of([&] {
            prepare(&log, *work);
            if (!left_overs_of(log.name, work->logs).empty()) rest.push_back(&log);
        });
        if (!reason.empty()) log.reason = reason;
    }
    Moment deadline = Moment::clock::now() + patience.longest_write / 2;
    for (int round = 1; !rest.empty() && round <= MOST_ROUNDS; ++round) {
        for (Log* log : rest) log->reason = reason_of([&] { rewrite(log, work, deadline); });
        if (round == 1) deadline = Moment::clock::now() + patience.longest_write / 2;
        std::erase_if(rest, [&](Log* log) { return !needs_a_round(log, *work, deadline); });
    }
    for (Log* log : rest) log->reason = LATE_RECORDS;
}

/// A line for each file that was left alone; at once on standard error, for a job's mail.
std::string left_alone(const std::vector<Log>& logs, const Directory& directory) {
    std::string lines;
    const auto tell = [&](bool is_left_over, const std::string& name, const std::string& reason) {
        const std::string path = directory.path_of(name);
        const std::string line = is_left_over
                                     ? filled(LEFT_OVER_STAYS, path.c_str(), reason.c_str())
                                     : filled(LOG_LEFT_ALONE, path.c_str(), reason.c_str());
        note(line);
        lines += line + "\n";
    };
    for (const Log& log : logs) {
        std::vector<LeftOver> left_overs;
        if (!log.reason.empty())
            reason_of([&] { left_overs = left_overs_of(log.name, directory); });
        const bool is_left_alone = !log.is_pruned || left_overs.empty();
        if (is_left_alone && !log.reason.empty()) tell(false, log.name, log.reason);
        if (!log.companion_reason.empty()) tell(false, log.companion, log.companion_reason);
        for (const LeftOver& one : left_overs) tell(true, one.name, log.reason);
    }
    return lines;
}

/// Does it all, and returns what the operator is told. Nothing is locked any more then: a box may
/// stay open for long.
std::string prune(const LogsToPrune& region, std::uint8_t days, const Patience& patience) {
    const std::int64_t cut_off = set_time_values(days).start_of_period_time;
    const Directory directory(region.directory);
    if (!directory) gripe(NO_PRUNING_TOKEN, pruning_token_path(region.directory), errno);
    // On a file system without locks only one administrator is expected to prune.
    if (directory.lock() == EWOULDBLOCK) gripe(filled(PRUNED_BY_ANOTHER, region.region.c_str()));
    off_t bytes = 0;
    std::vector<Log> logs = find_logs(region.directory, directory, &bytes);
    Work work = {directory, name_of(pruning_scratch_path(region.directory)),
                 name_of(pruning_token_path(region.directory)), cut_off, Progress(bytes)};
    // The lack of memory is the only one.
    const RemovedOnException token_and_scratch_file;
    put_up_token(work, Moment::clock::now() + patience.longest_write);
    std::this_thread::sleep_for(patience.pause);
    // Left by a run that was killed. If it stays, making a new one says why.
    if (directory.look(work.scratch).is_regular()) directory.unlink(work.scratch);
    prune_each(&logs, &work, patience);
    if (const int error = take_down_token(work)) {
        const std::string path = directory.path_of(work.token);
        gripe(left_alone(logs, directory) +
              filled(TOKEN_STAYS, path.c_str(), std::strerror(error)));
    }
    // A writer that saw the token a moment ago may still have gone to a companion.
    std::this_thread::sleep_for(patience.pause);
    merge_the_rest(&logs, &work, patience);
    return left_alone(logs, directory) +
           filled(PRUNING_RESULT, static_cast<long long>(work.removed),
                  static_cast<long long>(work.total), work.removed == 1 ? "was" : "were",
                  region.region.c_str(), days);
}

}  // namespace

void prune_logging_files(const LogsToPrune& logs, std::uint8_t days, const Patience& patience) {
    const std::string text = prune(logs, days, patience);
    if (logs.display) {
        advise(text);
    } else {
        write_output(text);
    }
}

}  // namespace gatescope
