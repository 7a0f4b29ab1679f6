#include "pruning/pruning.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <thread>
#include <vector>

#include "base/file_identity.h"
#include "base/filled.h"
#include "base/paths.h"
#include "base/signals_held.h"
#include "base/standard_streams.h"
#include "base/temporary_files.h"
#include "base/whole_file.h"
#include "dialog/messages.h"
#include "logs/log_files.h"
#include "messages/log_texts.h"
#include "pruning/left_alone.h"
#include "pruning/one_log.h"
#include "records/query_period.h"

namespace gatescope {
namespace {

/// Opens the token, or makes it, and appends to it. From then on a signal takes it away. 0 or an
/// errno; `*is_new` says whether this run has made it.
int write_token(const Work& work, Moment deadline, bool* is_new) {
    constexpr int FLAGS = O_WRONLY | O_APPEND;
    if (is_in_append_only_directory(work.logs.path_of(work.token))) return EPERM;
    Descriptor token = work.logs.open(work.token, FLAGS, deadline);
    const bool is_missing = !token && errno == ENOENT;
    if (!token && !is_missing) return errno;
    remember_file_removed_on_signal(work.token, work.logs.descriptor());
    // In a step of its own: in a sticky directory the system may make nothing where another user's
    // file is.
    if (is_missing) token = work.logs.open(work.token, FLAGS | O_CREAT | O_EXCL, deadline);
    *is_new = is_missing && token;
    struct stat status;
    if (!token || fstat(token.get(), &status) != 0) return errno;
    // With a second name it may be a file from outside of the directory.
    if (status.st_nlink > 1) return EMLINK;
    // The next operator has to append to it if this run is killed.
    if (*is_new && fchmod(token.get(), 0666) != 0) return errno;
    return write_all(token.get(), filled(TOKEN_TEXT, time_text(work.cut_off).c_str()));
}

/// 0 or an errno.
int take_down_token(const Work& work) {
    // A signal must not take away the token of the next pruning.
    const SignalsHeld held;
    forget_temporary_file(work.token);
    return work.logs.unlink(work.token);
}

/// Puts up the token, which diverts the log writers to the companions. Gripes when that fails.
void put_up_token(Work* work, Moment deadline) {
    bool is_new = false;
    if (const int error = write_token(*work, deadline, &is_new)) {
        if (is_new) take_down_token(*work);
        forget_temporary_file(work->token);
        stop(NO_PRUNING_TOKEN, work->token, error, work);
    }
}

/// The logs, and the bytes that are to be read of them.
std::vector<Log> find_logs(const std::string& path, const Directory& directory, off_t* bytes) {
    std::vector<Log> logs;
    for (int number = 0; number < NUMBER_OF_LOG_FILES; ++number) {
        logs.push_back({file_name_of(log_file_path(path, number)),
                        file_name_of(pruning_companion_path(path, number))});
        *bytes += directory.look(logs.back().name).status.st_size +
                  directory.look(logs.back().companion).status.st_size;
    }
    return logs;
}

/// Takes a step on each log, and keeps the reason of one that is left alone.
template <typename Step>
void on_each(std::vector<Log>* logs, const Step& step) {
    for (Log& log : *logs) {
        try {
            step(&log);
        } catch (const LeftAlone& file) {
            log.reason = (file.name == log.name ? "" : file.name + ": ") + file.reason;
        }
    }
}

/// Lists the directory once for all logs.
void prepare_each(std::vector<Log>* logs, Work* work) {
    std::vector<std::string> names;
    const int error = work->logs.list("logging_", &names);
    work->unused.clear();
    on_each(logs, [&](Log* log) {
        leave_alone_on(error, log->name);
        prepare(log, names, work);
    });
}

/// Rewrites each log that is not left alone: once, or until nothing more is to be added.
void rewrite_each(std::vector<Log>* logs, Work* work, Moment deadline, bool is_repeated) {
    on_each(logs, [&](Log* log) {
        while (log->reason.empty() && rewrite(log, work, deadline) && is_repeated) continue;
    });
}

/// A line for each file that was left alone; also on standard error at once, for a job's mail.
std::string left_alone(const std::vector<Log>& logs, Work* work) {
    work->progress.wipe();
    std::string lines;
    const auto tell = [&](const std::string& line) {
        note(line);
        lines += line + "\n";
    };
    const auto path = [&](const std::string& name) { return work->logs.path_of(name); };
    for (const Log& log : logs) {
        bool is_told = log.reason.empty();
        for (const LeftOver& one : log.left_overs) {
            if (log.reason.empty() || !work->logs.look(one.name).exists()) continue;
            tell(filled(LEFT_OVER_STAYS, path(one.name).c_str(), log.reason.c_str()));
            is_told = log.kept.has_value();
        }
        if (!is_told) tell(filled(LOG_LEFT_ALONE, path(log.name).c_str(), log.reason.c_str()));
    }
    for (const auto& [name, reason] : work->unused) {
        tell(filled(LOG_LEFT_ALONE, path(name).c_str(), reason.c_str()));
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
    Work work = {directory, file_name_of(pruning_scratch_path(region.directory)),
                 file_name_of(pruning_token_path(region.directory)), cut_off, Progress(bytes)};
    // A lack of memory is what throws one.
    const RemovedOnException token_and_scratch_file;
    put_up_token(&work, Moment::clock::now() + patience.longest_write);
    std::this_thread::sleep_for(patience.pause);
    // Left by a run that was killed. If it stays, making a new one says why.
    if (directory.look(work.scratch).is_regular()) directory.unlink(work.scratch);
    prepare_each(&logs, &work);
    rewrite_each(&logs, &work, Moment::clock::now() + patience.longest_write, true);
    if (const int error = take_down_token(work)) {
        const std::string path = directory.path_of(work.token);
        gripe(left_alone(logs, &work) + filled(TOKEN_STAYS, path.c_str(), std::strerror(error)));
    }
    work.has_token = false;
    // A writer that saw the token a moment ago may still have gone to a companion.
    std::this_thread::sleep_for(patience.pause);
    prepare_each(&logs, &work);
    // Logs that were left alone are tried once more, too.
    rewrite_each(&logs, &work, Moment::clock::now() + patience.longest_write / 2, false);
    // Writers are at work again: those that have a replaced log open are given time.
    rewrite_each(&logs, &work, Moment::clock::now() + patience.longest_write / 2, true);
    return left_alone(logs, &work) + filled(PRUNING_RESULT, static_cast<long long>(work.removed),
                                            static_cast<long long>(work.total),
                                            work.removed == 1 ? "was" : "were",
                                            region.region.c_str(), days);
}

}  // namespace

void prune_logging_files(const LogsToPrune& logs, std::uint8_t days, const Patience& patience) {
    const std::string text = prune(logs, days, patience);
    if (logs.display) return advise(text);
    write_output(text);
}

}  // namespace gatescope
