#include "pruning/one_log.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "base/filled.h"
#include "base/standard_streams.h"
#include "base/temporary_files.h"
#include "base/whole_file.h"
#include "base/writers.h"
#include "dialog/messages.h"
#include "logs/log_reader.h"
#include "messages/log_texts.h"
#include "messages/startup_texts.h"
#include "pruning/skipped_log.h"
#include "records/kept_records.h"

namespace gatescope {
namespace {

using enum LeftOver::Kind;

/// Every user can append to a log.
constexpr mode_t LOG_MODE = 0666;

/// A file whose words between the bytes `from` and `to` are merged into the new log.
struct Source {
    std::string name;
    /// Only the log is open throughout: there may be more left-overs than files can be open.
    Descriptor file;
    off_t from;
    off_t to;
    struct stat status;
};

/// Why a file of this type is not used; empty if it is regular or does not exist.
std::string reason_unusable(const Directory::Entry& entry) {
    if (entry.exists() && S_ISLNK(entry.status.st_mode)) return IS_A_SYMBOLIC_LINK;
    if (entry.exists() && !entry.is_regular()) return NOT_A_REGULAR_FILE;
    return "";
}

/// What lstat says of a name. Skips the log if lstat fails with anything but ENOENT, as the name
/// may exist.
Directory::Entry entry_of(const std::string& name, const Run& run) {
    const Directory::Entry entry = run.logs.entry_of(name);
    skip_log_on(entry.error == ENOENT ? 0 : entry.error, name);
    return entry;
}

/// Whether `name` is a regular file. For a file of another type the reason is added to run->unused.
bool is_usable(const std::string& name, Run* run) {
    const Directory::Entry entry = entry_of(name, *run);
    const std::string reason = reason_unusable(entry);
    if (!reason.empty()) run->unused[name] = reason;
    return entry.is_regular();
}

/// Opens a file for reading; the descriptor is empty if the file does not exist.
Descriptor open_to_read(const std::string& name, const Run& run, Moment deadline) {
    Descriptor file = run.logs.open(name, O_RDONLY, deadline);
    skip_log_on(file || errno == ENOENT ? 0 : errno, name);
    return file;
}

/// Waits until no process has `file` open for writing; the source begins at byte `from`.
Source idle_source(const std::string& name, Descriptor file, off_t from, const Run& run,
                   Moment deadline) {
    const WriterCheck state = wait_for_writers(file, deadline);
    skip_log_on(state.error, name);
    const off_t size = state.status.st_size;
    char last = '\n';
    skip_log_on(size == 0 || pread(file.get(), &last, 1, size - 1) != -1 ? 0 : errno, name);
    // Once the token is removed, writers use the logs again: a last record without a blank after it
    // may still be being written.
    const bool is_torn = state.writers == Writers::UNKNOWN && !run.has_token && !is_white(last);
    if (is_torn || state.writers == Writers::PRESENT) throw SkippedLog{name, HELD_OPEN};
    return {name, std::move(file), from, size, state.status};
}

/// The ready file that replaces the first `size` bytes of the open log.
LeftOver ready_left_over(const Log& log, const Descriptor& file, off_t size) {
    std::uint64_t fingerprint;
    skip_log_on(fingerprint_of(file.get(), size, &fingerprint), log.name);
    return left_over(READY, log.name, size, fingerprint);
}

/// Creates an empty log and opens it for reading.
Descriptor create_log(const std::string& name, Run* run) {
    Descriptor file = run->logs.open(name, O_RDONLY | O_CREAT | O_EXCL, {});
    if (!file) abort_or_skip(NO_LOGGING_FILE, name, errno, run);
    skip_log_on(fchmod(file.get(), LOG_MODE) == 0 ? 0 : errno, name);
    return file;
}

/// Syncs the directory, so that the ready file's name is on the disk, then removes the taken and
/// old files: the ready file includes their records.
void remove_merged(const Log& log, const Run& run) {
    skip_log_on(run.logs.sync(), log.name);
    for (const LeftOver& one : log.left_overs) {
        if (one.kind != READY) skip_log_on(run.logs.unlink(one.name), one.name);
    }
}

/// Renames a ready file over the open log, and keeps the replaced log as an old file.
void install(const LeftOver& ready, const Descriptor& file, Log* log, const Run& run) {
    remove_merged(*log, run);
    const LeftOver old = left_over(OLD, log->name, ready.number);
    skip_log_on(run.logs.link(log->name, old.name), old.name);
    log->left_overs.insert(old);
    // If another process has replaced the log, the old file is a hard link of the new log, and the
    // next step removes it.
    if (!run.logs.is_name_of(old.name, file)) throw SkippedLog{log->name, LOG_REPLACED_MEANWHILE};
    skip_log_on(run.logs.rename(ready.name, log->name), ready.name);
    skip_log_on(run.logs.sync(), log->name);
}

/// Renames a file to the first unused name of a taken file.
void rename_to_taken(const std::string& name, Log* log, const Run& run) {
    LeftOver file = left_over(TAKEN, log->name, 0);
    while (entry_of(file.name, run).exists()) file = left_over(TAKEN, log->name, file.number + 1);
    skip_log_on(run.logs.rename(name, file.name), name);
    log->left_overs.insert(file);
}

/// Completes a pruning that ended after its commit.
void complete_pruning(const LeftOver& ready, Log* log, const Run& run) {
    // A file with several hard links may belong outside the directory.
    skip_log_on(entry_of(ready.name, run).status.st_nlink > 1 ? EMLINK : 0, ready.name);
    const Descriptor file = open_to_read(log->name, run, Moment::clock::now());
    const bool is_of_log = file && ready_left_over(*log, file, ready.number).name == ready.name;
    if (is_of_log) return install(ready, file, log, run);
    remove_merged(*log, run);
    rename_to_taken(ready.name, log, run);
}

/// The left-overs with records to merge. Removes left-overs without any.
std::vector<Source> sources_of(const Log& log, const Run& run, Moment deadline) {
    const Directory::Entry log_entry = entry_of(log.name, run);
    std::vector<Source> sources;
    for (const LeftOver& one : log.left_overs) {
        Descriptor file = open_to_read(one.name, run, deadline);
        if (!file) continue;
        const off_t from = one.kind == OLD ? one.number : 0;
        const Source source = idle_source(one.name, std::move(file), from, run, deadline);
        // A killed run may have left the old file as a hard link of the log itself.
        const bool is_new = source.to > from && id_of(log_entry.status) != id_of(source.status);
        if (!is_new) skip_log_on(run.logs.unlink(one.name), one.name);
        if (is_new) sources.push_back({one.name, Descriptor(), from, source.to, source.status});
    }
    return sources;
}

/// Passes the words of a source to `consume` piece by piece, until it returns false.
template <typename Consume>
void read_pieces(const Source& source, Run* run, const Consume& consume) {
    const Descriptor reopened = source.file ? Descriptor() : open_to_read(source.name, *run, {});
    LogReader reader;
    reader.start(source.file ? source.file.get() : reopened.get(), source.from, source.to);
    for (std::string_view piece; reader.next(&piece) && consume(piece);) {
        run->progress.advance(static_cast<off_t>(piece.size()));
    }
    skip_log_on(reader.error(), source.name);
}

/// Counts the words of a log, in place of an earlier count of this run.
void count_words(const KeptRecords& records, Log* log, Run* run) {
    // Fewer than before if another process has replaced the log since.
    run->total += std::max<std::int64_t>(records.total() - log->kept_words.value_or(0), 0);
    run->removed += records.removed();
    log->kept_words = records.total() - records.removed();
}

/// Whether the log needs no rewriting: every record is kept, each on its own line, and the mode is
/// right. If so, counts its words.
bool is_already_pruned(const Source& file, Log* log, Run* run) {
    // The mode of a log with several hard links is ignored: it may belong outside the directory.
    bool is_unchanged = (file.status.st_mode & 07777) == LOG_MODE || file.status.st_nlink > 1;
    if (!is_unchanged) return false;
    KeptRecords records(run->cut_off);
    read_pieces(file, run, [&](std::string_view piece) {
        return is_unchanged = records.of(piece).data() == piece.data();
    });
    if (is_unchanged) count_words(records, log, run);
    return is_unchanged;
}

/// Appends the kept records of a source to the scratch file and syncs it.
void copy_kept(const Source& source, const TemporaryFile& scratch, KeptRecords* kept, Run* run) {
    read_pieces(source, run, [&](std::string_view piece) {
        skip_log_on(write_all(scratch.file.get(), kept->of(piece)), run->scratch);
        return true;
    });
    skip_log_on(fsync(scratch.file.get()) == 0 ? 0 : errno, run->scratch);
}

/// Replaces the log, the first of the sources, by the kept records of all sources, and counts their
/// words.
void replace_log(std::vector<Source>* sources, Log* log, Run* run) {
    Source& old = sources->front();
    TemporaryFile scratch(run->logs, run->scratch, LOG_MODE);
    if (!scratch.file) abort_or_skip(NO_PRUNING_FILE, run->scratch, errno, run);
    carry_over_identity(old.file.get(), scratch.file.get());
    skip_log_on(fchmod(scratch.file.get(), LOG_MODE) == 0 ? 0 : errno, run->scratch);
    KeptRecords records(run->cut_off);
    for (const Source& source : *sources) copy_kept(source, scratch, &records, run);
    // Without a token, writers may have appended to the log meanwhile.
    const WriterCheck now = wait_for_writers(old.file, Moment::clock::now());
    if (now.writers == Writers::NONE && now.status.st_size > old.to) {
        old.from = std::exchange(old.to, now.status.st_size);
        copy_kept(old, scratch, &records, run);
    }
    skip_log_on(scratch.file.close(), run->scratch);
    const LeftOver ready = ready_left_over(*log, old.file, old.to);
    skip_log_on(scratch.rename_to(ready.name), ready.name);
    log->left_overs.insert(ready);
    log->is_replaced = true;
    count_words(records, log, run);
    install(ready, old.file, log, *run);
}

}  // namespace

void abort_or_skip(const char* failure, const std::string& name, int error, Run* run) {
    const std::string reason = reason_unusable(run->logs.entry_of(name));
    if (!run->has_token) throw SkippedLog{name, reason.empty() ? std::strerror(error) : reason};
    run->progress.wipe();
    if (!reason.empty()) note(run->logs.path_of(name) + ": " + reason);
    const std::string token = run->logs.path_of(run->token);
    if (run->logs.entry_of(run->token).exists()) note(filled(TOKEN_DIVERTS_WRITERS, token.c_str()));
    gripe(failure, run->logs.path_of(name), error);
}

void prepare(Log* log, const std::vector<std::string>& names, Run* run) {
    log->reason.clear();
    log->is_replaced = false;
    log->left_overs = left_overs_of(log->name, names);
    std::erase_if(log->left_overs, [&](const LeftOver& one) { return !is_usable(one.name, run); });
    const Directory::Entry companion = entry_of(log->companion, *run);
    const std::string reason = reason_unusable(entry_of(log->name, *run));
    if (!reason.empty()) {
        const bool has_records = companion.is_regular() && companion.status.st_size > 0;
        if (has_records) abort_or_skip(NO_LOGGING_FILE, log->name, EEXIST, run);
        throw SkippedLog{log->name, reason};
    }
    const std::set<LeftOver> found = log->left_overs;
    for (const LeftOver& one : found) {
        if (one.kind == READY) complete_pruning(one, log, *run);
    }
    if (is_usable(log->companion, run)) rename_to_taken(log->companion, log, *run);
}

bool rewrite(Log* log, Run* run, Moment deadline) {
    std::vector<Source> sources = sources_of(*log, *run, deadline);
    if (sources.empty() && log->kept_words) return false;
    const bool is_late = log->is_replaced && Moment::clock::now() >= deadline;
    if (is_late) throw SkippedLog{log->name, LOG_GREW_MEANWHILE};
    Descriptor file = open_to_read(log->name, *run, deadline);
    if (!file && log->left_overs.empty()) return false;
    if (!file) file = create_log(log->name, run);
    sources.push_back(idle_source(log->name, std::move(file), 0, *run, deadline));
    // The log comes first. (With insert, g++ 12 warns at -O3.)
    std::rotate(sources.begin(), sources.end() - 1, sources.end());
    if (sources.size() == 1 && is_already_pruned(sources.front(), log, run)) return false;
    skip_log_on(run->logs.check_replaceable(log->name, run->scratch), log->name);
    replace_log(&sources, log, run);
    return true;
}

}  // namespace gatescope
