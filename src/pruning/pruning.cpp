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
#include "base/signals_blocked.h"
#include "base/standard_streams.h"
#include "base/temporary_files.h"
#include "base/whole_file.h"
#include "dialog/messages.h"
#include "logs/log_files.h"
#include "messages/log_texts.h"
#include "pruning/one_log.h"
#include "pruning/skipped_log.h"
#include "records/query_period.h"

namespace gatescope {
namespace {

/// Opens or creates the token and appends to it. From then on a signal removes it. `*is_new`:
/// whether this run has created it. 0 or an errno.
int write_token(const Run& run, Moment deadline, bool* is_new) {
    constexpr int FLAGS = O_WRONLY | O_APPEND;
    if (is_in_append_only_directory(run.logs.path_of(run.token))) return EPERM;
    Descriptor token = run.logs.open(run.token, FLAGS, deadline);
    const bool is_missing = !token && errno == ENOENT;
    if (!token && !is_missing) return errno;
    remember_file_removed_on_signal(run.token, run.logs.descriptor());
    // Not in one call with O_CREAT: in a sticky directory the system may refuse that for another
    // user's file.
    if (is_missing) token = run.logs.open(run.token, FLAGS | O_CREAT | O_EXCL, deadline);
    *is_new = is_missing && token;
    struct stat status;
    if (!token || fstat(token.get(), &status) != 0) return errno;
    // A file with several hard links may belong outside the directory.
    if (status.st_nlink > 1) return EMLINK;
    // The next operator has to append to it if this run is killed.
    if (*is_new && fchmod(token.get(), 0666) != 0) return errno;
    return write_all(token.get(), filled(TOKEN_TEXT, time_text(run.cut_off).c_str()));
}

/// 0 or an errno.
int remove_token(const Run& run) {
    // A signal must not remove the token of the next pruning.
    const SignalsBlocked blocked;
    forget_temporary_file(run.token);
    return run.logs.unlink(run.token);
}

/// Creates the token, which diverts the log writers to the companions. Gripes on failure.
void create_token(Run* run, Moment deadline) {
    bool is_new = false;
    if (const int error = write_token(*run, deadline, &is_new)) {
        if (is_new) remove_token(*run);
        forget_temporary_file(run->token);
        abort_or_skip(NO_PRUNING_TOKEN, run->token, error, run);
    }
}

/// The logs of a directory; adds their size and that of their companions to `*bytes`.
std::vector<Log> logs_in(const std::string& path, const Directory& directory, off_t* bytes) {
    std::vector<Log> logs;
    for (int number = 0; number < NUMBER_OF_LOG_FILES; ++number) {
        logs.push_back({file_name_of(log_file_path(path, number)),
                        file_name_of(pruning_companion_path(path, number))});
        *bytes += directory.entry_of(logs.back().name).status.st_size +
                  directory.entry_of(logs.back().companion).status.st_size;
    }
    return logs;
}

/// Calls `step` for each log, and sets the reason of a log that is skipped.
template <typename Step>
void for_each_log(std::vector<Log>* logs, const Step& step) {
    for (Log& log : *logs) {
        try {
            step(&log);
        } catch (const SkippedLog& file) {
            log.reason = (file.name == log.name ? "" : file.name + ": ") + file.reason;
        }
    }
}

/// Calls `prepare` for each log; lists the directory once for all.
void prepare_logs(std::vector<Log>* logs, Run* run) {
    std::vector<std::string> names;
    const int error = run->logs.list("logging_", &names);
    run->unused.clear();
    for_each_log(logs, [&](Log* log) {
        skip_log_on(error, log->name);
        prepare(log, names, run);
    });
}

/// Rewrites each log that is not skipped: once, or repeatedly until it needs no rewriting.
void rewrite_logs(std::vector<Log>* logs, Run* run, Moment deadline, bool is_repeated) {
    for_each_log(logs, [&](Log* log) {
        while (log->reason.empty() && rewrite(log, run, deadline) && is_repeated) continue;
    });
}

/// A line for each skipped log, remaining left-over and unused file. Also writes them to standard
/// error, for the mail of a scheduled job.
std::string report_skipped(const std::vector<Log>& logs, Run* run) {
    run->progress.wipe();
    std::string lines;
    const auto report = [&](const std::string& line) {
        note(line);
        lines += line + "\n";
    };
    const auto path = [&](const std::string& name) { return run->logs.path_of(name); };
    for (const Log& log : logs) {
        bool is_reported = log.reason.empty();
        for (const LeftOver& one : log.left_overs) {
            if (log.reason.empty() || !run->logs.entry_of(one.name).exists()) continue;
            report(filled(LEFT_OVER_NOT_MERGED, path(one.name).c_str(), log.reason.c_str()));
            is_reported = log.kept_words.has_value();
        }
        if (!is_reported) report(filled(LOG_SKIPPED, path(log.name).c_str(), log.reason.c_str()));
    }
    for (const auto& [name, reason] : run->unused) {
        report(filled(LOG_SKIPPED, path(name).c_str(), reason.c_str()));
    }
    return lines;
}

/// Prunes, and returns the operator's message. The lock is released before the message is shown: a
/// dialog may stay open for long.
std::string prune(const LogsToPrune& region, std::uint8_t days, const Patience& patience) {
    const std::int64_t cut_off = set_time_values(days).start_of_period_time;
    const Directory directory(region.directory);
    if (!directory) gripe(NO_PRUNING_TOKEN, pruning_token_path(region.directory), errno);
    // On a file system without locks only one administrator is expected to prune.
    if (directory.lock() == EWOULDBLOCK) gripe(filled(ALREADY_BEING_PRUNED, region.region.c_str()));
    off_t bytes = 0;
    std::vector<Log> logs = logs_in(region.directory, directory, &bytes);
    Run run = {directory, file_name_of(pruning_scratch_path(region.directory)),
               file_name_of(pruning_token_path(region.directory)), cut_off, Progress(bytes)};
    // For std::bad_alloc.
    const RemovedOnException token_and_scratch_file;
    create_token(&run, Moment::clock::now() + patience.writer_timeout);
    std::this_thread::sleep_for(patience.pause);
    // Left by a killed run. If it cannot be removed, creating a new one reports the reason.
    if (directory.entry_of(run.scratch).is_regular()) directory.unlink(run.scratch);
    prepare_logs(&logs, &run);
    rewrite_logs(&logs, &run, Moment::clock::now() + patience.writer_timeout, true);
    if (const int error = remove_token(run)) {
        const std::string path = directory.path_of(run.token);
        gripe(report_skipped(logs, &run) + filled(TOKEN_STAYS, path.c_str(), std::strerror(error)));
    }
    run.has_token = false;
    // A writer that saw the token just before its removal may still write to a companion.
    std::this_thread::sleep_for(patience.pause);
    prepare_logs(&logs, &run);
    // Skipped logs are tried again as well.
    rewrite_logs(&logs, &run, Moment::clock::now() + patience.writer_timeout / 2, false);
    // Waits for writers that have a replaced log open; each rewriting merges what they appended.
    rewrite_logs(&logs, &run, Moment::clock::now() + patience.writer_timeout / 2, true);
    return report_skipped(logs, &run) + filled(PRUNING_RESULT, static_cast<long long>(run.removed),
                                               static_cast<long long>(run.total),
                                               run.removed == 1 ? "was" : "were",
                                               region.region.c_str(), days);
}

}  // namespace

void prune_logging_files(const LogsToPrune& logs, std::uint8_t days, const Patience& patience) {
    const std::string text = prune(logs, days, patience);
    if (logs.display) return advise(text);
    write_output(text);
}

}  // namespace gatescope
