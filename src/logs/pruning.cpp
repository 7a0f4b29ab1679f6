#include "logs/pruning.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <thread>
#include <vector>

#include "base/files.h"
#include "base/filled.h"
#include "base/signals_held.h"
#include "base/standard_streams.h"
#include "base/temporary_files.h"
#include "base/trusted_links.h"
#include "base/whole_file.h"
#include "dialog/messages.h"
#include "logs/log_files.h"
#include "logs/log_rewrite.h"
#include "messages/log_texts.h"

namespace {

/// What follows the path of a log that a link leads to.
constexpr char LINKED_SCRATCH[] = ".pruning_";

/// Opens a file for appending and makes it where it is missing; gripes when that cannot be done.
Descriptor open_to_append(const std::string& path, const char* failure) {
    constexpr int FLAGS = O_WRONLY | O_APPEND | O_NOFOLLOW;
    // In two steps: in sticky directories the system may make nothing where somebody's file is.
    Descriptor file(open_regular_file(path, FLAGS));
    if (!file && errno == ENOENT) file = Descriptor(open_regular_file(path, FLAGS | O_CREAT));
    if (!file) gripe(failure, path, errno);
    return file;
}

/// Makes sure that there is a log, to which everybody can append.
void make_log(const std::string& path) {
    make_log_public(open_to_append(path, NO_LOGGING_FILE));
}

/// Locks the file. Gripes when another pruning has locked it: the two would take each other's files
/// for left-overs.
void lock(const Descriptor& file, const std::string& region) {
    // Where a file system has no locks, only one administrator is expected to prune.
    if (flock(file.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
        gripe(filled(PRUNED_BY_ANOTHER, region.c_str()));
    }
}

/// The token diverts the log writers to the companions. Locked as long as this is there: the
/// directory, and the token, since across a network some file systems lock no directories.
struct Token {
    std::string path;
    Descriptor directory;
    Descriptor file = {};
};

Token put_up_token(const LogsToPrune& logs, std::int64_t cut_off) {
    Token token = {pruning_token_path(logs.directory),
                   Descriptor(open(logs.directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC))};
    if (!token.directory) gripe(NO_PRUNING_TOKEN, token.path, errno);
    lock(token.directory, logs.region);
    // Before it is there: nobody else puts up a token while the directory is locked.
    remember_for_signals(token.path);
    token.file = open_to_append(token.path, NO_PRUNING_TOKEN);
    lock(token.file, logs.region);
    // Whoever comes next after a run that was killed has to append to it.
    make_log_public(token.file);
    const int error = write_all(token.file.get(), filled(TOKEN_TEXT, time_text(cut_off).c_str()));
    if (error != 0) gripe(NO_PRUNING_TOKEN, token.path, error);
    return token;
}

/// 0 or an errno.
int take_down(const Token& token) {
    // A signal must not take away the token of the next pruning.
    const SignalsHeld held;
    forget_temporary_file(token.path);
    return unlink(token.path.c_str()) == 0 || errno == ENOENT ? 0 : errno;
}

Log find_log(const std::string& directory, int number, Listings* listings) {
    const std::string path = log_file_path(directory, number);
    const std::string companion = pruning_companion_path(directory, number);
    Log log = {follow_links(path), follow_links(companion), pruning_scratch_path(directory)};
    log.is_linked = log.file.path != path;
    if (log.is_linked) log.scratch = log.file.path + LINKED_SCRATCH;
    const std::string reason = reason_of([&] {
        // A link may be newer than what an earlier pruning has left in the directory itself.
        for (const std::string& source : {path, companion, log.file.path, log.companion.path}) {
            find_left_overs(source, listings, &log.left_overs);
        }
        if (log.companion.reason.empty() && log.file.id != FileId() &&
            log.file.id == log.companion.id) {
            throw LeftAlone{COMPANION_OF_ITSELF};
        }
    });
    // Without its left-overs nobody knows what has been added to a log.
    if (log.file.reason.empty()) log.file.reason = reason;
    return log;
}

/// Adds the left-overs of a log to it. Those that stay say why.
void add_left_overs(Log* log, Work* work) {
    std::vector<LeftOver>& left_overs = log->left_overs;
    if (left_overs.empty()) return;
    const std::string& path = log->file.path;
    Descriptor file;
    FileId id;
    std::string reason = reason_of([&] {
        need_usable(log->file);
        if (!this_file_exists(path)) make_log(path);
        file = open_locked(path, work->deadline);
        need(static_cast<bool>(file));
        id = id_of(file);
    });
    // Those that are partly added come before anything else is appended.
    std::stable_partition(left_overs.begin(), left_overs.end(),
                          [id](const LeftOver& left_over) { return left_over.log == id; });
    for (LeftOver& one : left_overs) {
        one.stays = reason;
        if (reason.empty()) add_left_over(&one, path, file, work);
        if (one.log == id) reason = one.stays;
    }
    std::erase_if(left_overs, [](const LeftOver& left_over) { return left_over.stays.empty(); });
}

/// Renames the log's companion to a left-over, where no writer looks for it.
void take_companion_of(Log* log) {
    MeantFile& companion = log->companion;
    if (!log->file.reason.empty() || !companion.reason.empty()) return;
    companion.reason = reason_of([&] {
        Descriptor file = open_here(companion.path);
        if (!file) return;
        make_log(log->file.path);
        LeftOver taken = new_left_over(companion.path, std::move(file));
        need(rename(companion.path.c_str(), taken.path().c_str()) == 0);
        if (!is_name_of(taken.path(), taken.file.get())) throw LeftAlone{REPLACED_MEANWHILE};
        log->left_overs.push_back(std::move(taken));
    });
}

/// Adds to the logs what has come into companions.
void merge_companions(std::vector<Log>* logs, const Patience& patience, Work* work) {
    for (Log& log : *logs) take_companion_of(&log);
    std::this_thread::sleep_for(patience.pause);
    // Every writer that has a companion open opened it before it was taken.
    work->deadline = patience.deadline();
    for (Log& log : *logs) add_left_overs(&log, work);
}

/// A line for each of what was left alone; at once on standard error, for a job's mail.
std::string left_alone(const std::vector<Log>& logs) {
    std::string lines;
    const auto tell = [&](const std::string& line) {
        note(line);
        lines += line + "\n";
    };
    for (const Log& log : logs) {
        for (const MeantFile& file : {MeantFile{log.file.path, log.stays}, log.companion}) {
            if (file.reason.empty()) continue;
            tell(filled(LOG_LEFT_ALONE, file.path.c_str(), file.reason.c_str()));
        }
        for (const LeftOver& one : log.left_overs) {
            const std::string named = one.has_name ? one.path() : log.file.path;
            tell(filled(one.has_name ? LEFT_OVER_STAYS : LATE_RECORDS_LOST, named.c_str(),
                        one.stays.c_str()));
        }
    }
    return lines;
}

/// Does it all, and returns what the operator is told. Nothing is locked any more then: a box may
/// stay open for long.
std::string prune(const LogsToPrune& logs, std::uint8_t days, const Patience& patience) {
    const std::int64_t cut_off = set_time_values(days).start_of_period_time;
    const Token token = put_up_token(logs, cut_off);
    std::this_thread::sleep_for(patience.pause);
    const Moment deadline = patience.deadline();
    Listings listings;
    std::vector<Log> found;
    off_t bytes = 0;
    for (int number = 0; number < NUMBER_OF_LOG_FILES; ++number) {
        found.push_back(find_log(logs.directory, number, &listings));
        bytes += found.back().file.size + found.back().companion.size;
    }

    Work work = {KeptRecords(cut_off), Progress(bytes), deadline, token.path};
    for (Log& log : found) add_left_overs(&log, &work);
    // The records that were kept stand in the logs now, and are counted there.
    const std::int64_t counted_there = work.records.total() - work.records.removed();
    for (Log& log : found) log.stays = reason_of([&] { rewrite_log(&log, &work); });
    merge_companions(&found, patience, &work);
    if (const int error = take_down(token)) {
        gripe(left_alone(found) + filled(TOKEN_STAYS, token.path.c_str(), std::strerror(error)));
    }
    // A writer that saw the token a moment ago may still have gone to a companion.
    std::this_thread::sleep_for(patience.pause);
    merge_companions(&found, patience, &work);

    const auto removed = static_cast<long long>(work.records.removed());
    const auto total = static_cast<long long>(work.records.total() - counted_there);
    return left_alone(found) + filled(PRUNING_RESULT, removed, total, removed == 1 ? "was" : "were",
                                      logs.region.c_str(), days);
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
