#include "pruning/one_log.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <utility>
#include <vector>

#include "base/filled.h"
#include "base/signals_held.h"
#include "base/standard_streams.h"
#include "base/temporary_files.h"
#include "base/whole_file.h"
#include "base/writers.h"
#include "dialog/messages.h"
#include "logs/log_reader.h"
#include "messages/log_texts.h"
#include "messages/startup_texts.h"
#include "pruning/left_overs.h"
#include "records/kept_records.h"

namespace gatescope {
namespace {

constexpr mode_t PUBLIC = 0666;
/// How often the copy of a log that grows is brought up to date; each time takes a fraction of the
/// time before.
constexpr int MOST_UPDATES = 5;

/// A file of which the words from byte `from` up to byte `to` become the log's.
struct Source {
    Descriptor file;
    off_t from;
    off_t to;
    Writers writers;
};

/// Why a file of that kind is not used; empty for a regular one, and for none.
std::string reason_against(const Directory::Entry& entry) {
    if (entry.exists() && S_ISLNK(entry.status.st_mode)) return IS_A_SYMBOLIC_LINK;
    if (entry.exists() && !entry.is_regular()) return NOT_A_REGULAR_FILE;
    return "";
}

/// What stands under a name. Not to know that is no reason to take it for nothing.
Directory::Entry seen(const std::string& name, const Work& work) {
    const Directory::Entry entry = work.logs.look(name);
    need(entry.error == ENOENT ? 0 : entry.error, name);
    return entry;
}

/// stop, unless the token is down: then the log is left alone.
void stop_or_leave(const char* failure, const std::string& name, int error, const Work& work) {
    if (!work.logs.look(work.token).exists()) need(error, name);
    stop(failure, name, error, work);
}

/// Opens a file for reading; nothing is open when there is none.
Descriptor open_to_read(const std::string& name, const Work& work, Moment deadline) {
    Descriptor file = work.logs.open(name, O_RDONLY, deadline);
    if (!file && errno == EWOULDBLOCK) throw LeftAlone{KEPT_OPEN};
    need(file || errno == ENOENT ? 0 : errno);
    return file;
}

/// What `file` holds when nobody writes to it any more; `name` where it is not the log.
Source settled(Descriptor file, off_t from, const std::string& name, const Work& work,
               Moment deadline) {
    Settled state = settle(file, deadline);
    need(state.error, name);
    char last = '\n';
    need(state.size == 0 || pread(file.get(), &last, 1, state.size - 1) != -1 ? 0 : errno, name);
    // Without the token a record without its end is being written.
    if (state.writers == Writers::UNKNOWN && !is_white(last) &&
        !work.logs.look(work.token).exists()) {
        state.writers = Writers::SOME;
    }
    if (state.writers == Writers::SOME)
        throw LeftAlone{(name.empty() ? "" : name + ": ") + KEPT_OPEN};
    return {std::move(file), from, state.size, state.writers};
}

std::uint64_t fingerprint_of_log(const Descriptor& log, off_t size) {
    std::uint64_t fingerprint;
    need(fingerprint_of(log.get(), size, &fingerprint));
    return fingerprint;
}

/// Makes an empty log, to which everybody can append.
void make_log(const std::string& name, const Work& work) {
    const Descriptor file = work.logs.open(name, O_WRONLY | O_CREAT | O_EXCL, {});
    if (!file) stop_or_leave(NO_LOGGING_FILE, name, errno, work);
    need(fchmod(file.get(), PUBLIC) == 0 ? 0 : errno);
}

/// Removes what a ready text holds: the taken and old files.
void remove_what_is_added(const Log& log, const Work& work) {
    for (const LeftOver& one : left_overs_of(log.name, work.logs)) {
        if (one.kind != LeftOver::READY) need(work.logs.unlink(one.name), one.name);
    }
}

/// Puts a ready text in the place of the log, which is open.
void finish(const LeftOver& ready, const Descriptor& file, const Log& log, const Work& work) {
    need(work.logs.sync());
    remove_what_is_added(log, work);
    const LeftOver old = left_over(LeftOver::OLD, log.name, ready.number);
    need(work.logs.link(log.name, old.name), old.name);
    if (!work.logs.is_name_of(old.name, file)) {
        work.logs.unlink(old.name);
        throw LeftAlone{REPLACED_MEANWHILE};
    }
    need(work.logs.rename(ready.name, log.name), ready.name);
    need(work.logs.sync());
}

/// Renames a file to a taken one.
void take(const std::string& name, const Log& log, const Work& work) {
    LeftOver taken = left_over(LeftOver::TAKEN, log.name, 0);
    while (seen(taken.name, work).exists()) {
        taken = left_over(LeftOver::TAKEN, log.name, taken.number + 1);
    }
    need(work.logs.rename(name, taken.name), name);
}

/// Completes a pruning that was ended after its commit.
void complete(const LeftOver& ready, const Log& log, const Work& work) {
    // With another name it may be a file that is none of ours.
    need(seen(ready.name, work).status.st_nlink > 1 ? EMLINK : 0, ready.name);
    const Descriptor file = open_to_read(log.name, work, Moment::clock::now());
    if (file && fingerprint_of_log(file, ready.number) == ready.fingerprint) {
        return finish(ready, file, log, work);
    }
    remove_what_is_added(log, work);
    take(ready.name, log, work);
}

/// What is to be added of the left-overs. Those of which nothing is are removed.
std::vector<Source> sources_of(const Log& log, const Work& work, Moment deadline) {
    const Directory::Entry itself = seen(log.name, work);
    std::vector<Source> sources;
    for (const LeftOver& one : left_overs_of(log.name, work.logs)) {
        Descriptor file = open_to_read(one.name, work, deadline);
        if (!file) continue;
        const off_t from = one.kind == LeftOver::OLD ? one.number : 0;
        Source source = settled(std::move(file), from, one.name, work, deadline);
        const Directory::Entry entry = seen(one.name, work);
        // A run that was killed leaves the log itself under two names.
        if (source.to <= from || (itself.exists() && id_of(itself.status) == id_of(entry.status))) {
            need(work.logs.unlink(one.name), one.name);
        } else {
            sources.push_back(std::move(source));
        }
    }
    return sources;
}

/// Hands out the words of a source piece by piece, for as long as `take` wants more.
template <typename Take>
void read_pieces(const Source& source, Progress* progress, const Take& take) {
    LogReader reader;
    reader.start(source.file.get(), source.from);
    off_t from = source.from;
    bool goes_on = true;
    for (std::string_view piece; goes_on && from < source.to && reader.next(&piece);) {
        // What was appended after the end meanwhile is not looked at here.
        piece = piece.substr(0, static_cast<std::size_t>(source.to - from));
        from += static_cast<off_t>(piece.size());
        goes_on = take(piece);
        progress->advance(static_cast<off_t>(piece.size()));
    }
    progress->wipe();
    need(reader.error());
}

/// Whether all of the log is kept as it stands, and everybody can append to it.
bool stays_as_it_is(const Source& log, KeptRecords* records, Work* work) {
    struct stat status;
    need(fstat(log.file.get(), &status) == 0 ? 0 : errno);
    // With other names it may be a file that is none of ours.
    bool stays = (status.st_mode & 07777) == PUBLIC || status.st_nlink > 1;
    if (!stays) return false;
    read_pieces(log, &work->progress, [&](std::string_view piece) {
        stays = records->of(piece).data() == piece.data();
        return stays;
    });
    return stays;
}

/// Throws LeftAlone where the log cannot be replaced, or have a second name, before anything is
/// done.
void need_replaceable(const std::string& log, const Work& work) {
    struct stat directory;
    need(fstat(work.logs.descriptor(), &directory) == 0 ? 0 : errno);
    const uid_t self = geteuid();
    // In a sticky directory names belong to the owners of their files.
    const bool is_ours = self == 0 || (directory.st_mode & S_ISVTX) == 0 ||
                         self == directory.st_uid || self == work.logs.look(log).status.st_uid;
    need(is_ours ? 0 : EPERM);
    const SignalsHeld held;
    const int error = work.logs.link(log, work.scratch);
    if (error == EEXIST) return;  // making the scratch file says so
    need(error);
    need(work.logs.unlink(work.scratch));
}

/// Appends what is kept of a source to the scratch file, and brings that to the disk.
void copy(const Source& source, const TemporaryFile& scratch, KeptRecords* records, Work* work) {
    int error = 0;
    read_pieces(source, &work->progress, [&](std::string_view piece) {
        error = write_all(scratch.file.get(), records->of(piece));
        return error == 0;
    });
    if (error == 0 && fsync(scratch.file.get()) != 0) error = errno;
    need(error, work->scratch);
}

/// Makes the ready text of what is kept of the sources, of which the log is the first.
LeftOver commit(std::vector<Source>* sources, const Log& log, KeptRecords* records, Work* work) {
    Source& old = sources->front();
    TemporaryFile scratch(work->logs, work->scratch, PUBLIC);
    if (!scratch.file) stop_or_leave(NO_PRUNING_FILE, work->scratch, errno, *work);
    carry_over_identity(old.file.get(), scratch.file.get());
    need(fchmod(scratch.file.get(), PUBLIC) == 0 ? 0 : errno, work->scratch);
    for (const Source& source : *sources) copy(source, scratch, records, work);
    // Where no token diverts the writers, the log has grown meanwhile.
    for (int update = 0; update < MOST_UPDATES; ++update) {
        const Settled now = settle(old.file, Moment::clock::now());
        if (now.error != 0 || now.writers != Writers::NONE || now.size <= old.to) break;
        old.from = std::exchange(old.to, now.size);
        copy(old, scratch, records, work);
    }
    need(scratch.file.close(), work->scratch);
    LeftOver ready =
        left_over(LeftOver::READY, log.name, old.to, fingerprint_of_log(old.file, old.to));
    need(scratch.rename_to(ready.name), ready.name);
    return ready;
}

void count(const KeptRecords& records, Log* log, Work* work) {
    work->total += records.total() - log->counted;
    work->removed += records.removed();
    log->counted = records.total() - records.removed();
    log->is_pruned = true;
}

}  // namespace

void stop(const char* failure, const std::string& name, int error, const Work& work) {
    const std::string reason = reason_against(work.logs.look(name));
    if (!reason.empty()) note(work.logs.path_of(name) + ": " + reason);
    if (work.logs.look(work.token).exists()) {
        note(filled(TOKEN_STANDS, work.logs.path_of(work.token).c_str()));
    }
    gripe(failure, work.logs.path_of(name), error);
}

void prepare(Log* log, const Work& work) {
    const Directory::Entry companion = seen(log->companion, work);
    const std::string reason = reason_against(seen(log->name, work));
    if (!reason.empty()) {
        const bool is_needed = companion.is_regular() && companion.status.st_size > 0;
        if (is_needed && work.logs.look(work.token).exists()) {
            stop(NO_LOGGING_FILE, log->name, EEXIST, work);
        }
        throw LeftAlone{reason};
    }
    for (const LeftOver& one : left_overs_of(log->name, work.logs)) {
        if (one.kind == LeftOver::READY) complete(one, *log, work);
    }
    log->companion_reason = reason_against(companion);
    if (!companion.is_regular()) return;
    if (!seen(log->name, work).exists()) make_log(log->name, work);
    take(log->companion, *log, work);
}

void rewrite(Log* log, Work* work, Moment deadline) {
    std::vector<Source> sources = sources_of(*log, *work, deadline);
    if (sources.empty() && log->is_pruned) return;
    Descriptor file = open_to_read(log->name, *work, deadline);
    if (!file && sources.empty()) return;
    if (!file) {
        make_log(log->name, *work);
        return rewrite(log, work, deadline);
    }
    sources.insert(sources.begin(), settled(std::move(file), 0, "", *work, deadline));
    KeptRecords looked_at(work->cut_off);
    if (sources.size() == 1 && stays_as_it_is(sources.front(), &looked_at, work)) {
        return count(looked_at, log, work);
    }
    need_replaceable(log->name, *work);
    KeptRecords records(work->cut_off);
    const LeftOver ready = commit(&sources, *log, &records, work);
    count(records, log, work);
    finish(ready, sources.front().file, *log, *work);
}

bool remove_unchanged_old_files(const Log& log, const Work& work, Moment deadline) {
    const std::vector<Source> added_to = sources_of(log, work, deadline);
    for (const Source& old : added_to) {
        if (old.writers == Writers::UNKNOWN) throw LeftAlone{LATE_RECORDS};
    }
    return added_to.empty();
}

}  // namespace gatescope
