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
#include "pruning/left_alone.h"
#include "records/kept_records.h"

namespace gatescope {
namespace {

using enum LeftOver::Kind;

constexpr mode_t PUBLIC = 0666;

/// A file of which the words from byte `from` up to byte `to` become the log's.
struct Source {
    std::string name;
    /// Only the log is open throughout: there may be more left-overs than files can be open.
    Descriptor file;
    off_t from;
    off_t to;
    struct stat status;
};

/// Why a file of that kind is not used; empty for a regular one, and for none.
std::string reason_against(const Directory::Entry& entry) {
    if (entry.exists() && S_ISLNK(entry.status.st_mode)) return IS_A_SYMBOLIC_LINK;
    if (entry.exists() && !entry.is_regular()) return NOT_A_REGULAR_FILE;
    return "";
}

/// What stands under a name. A name that cannot be looked at is not taken for a free one.
Directory::Entry seen(const std::string& name, const Work& work) {
    const Directory::Entry entry = work.logs.look(name);
    leave_alone_on(entry.error == ENOENT ? 0 : entry.error, name);
    return entry;
}

/// Whether there is a regular file of that name. Why another kind of file is not used is noted.
bool is_usable(const std::string& name, Work* work) {
    const Directory::Entry entry = seen(name, *work);
    const std::string reason = reason_against(entry);
    if (!reason.empty()) work->unused[name] = reason;
    return entry.is_regular();
}

/// Opens a file for reading; nothing is open when there is none.
Descriptor open_to_read(const std::string& name, const Work& work, Moment deadline) {
    Descriptor file = work.logs.open(name, O_RDONLY, deadline);
    leave_alone_on(file || errno == ENOENT ? 0 : errno, name);
    return file;
}

/// `file` from its byte `from` on, when no process writes to it any more.
Source settled(const std::string& name, Descriptor file, off_t from, const Work& work,
               Moment deadline) {
    const Settled state = settle(file, deadline);
    leave_alone_on(state.error, name);
    const off_t size = state.status.st_size;
    char last = '\n';
    leave_alone_on(size == 0 || pread(file.get(), &last, 1, size - 1) != -1 ? 0 : errno, name);
    // Without the token a record without its end is being written.
    const bool is_torn = state.writers == Writers::UNKNOWN && !work.has_token && !is_white(last);
    if (is_torn || state.writers == Writers::SOME) throw LeftAlone{name, KEPT_OPEN};
    return {name, std::move(file), from, size, state.status};
}

/// The name of the complete new text that stands for the first `size` bytes of the open log.
LeftOver ready_text(const Log& log, const Descriptor& file, off_t size) {
    std::uint64_t fingerprint;
    leave_alone_on(fingerprint_of(file.get(), size, &fingerprint), log.name);
    return left_over(READY, log.name, size, fingerprint);
}

/// Makes an empty log, to which everybody can append, and opens it for reading.
Descriptor make_log(const std::string& name, Work* work) {
    Descriptor file = work->logs.open(name, O_RDONLY | O_CREAT | O_EXCL, {});
    if (!file) stop(NO_LOGGING_FILE, name, errno, work);
    leave_alone_on(fchmod(file.get(), PUBLIC) == 0 ? 0 : errno, name);
    return file;
}

/// Removes what stands in a ready text, once the disk keeps its name: the taken and old files.
void remove_what_is_added(const Log& log, const Work& work) {
    leave_alone_on(work.logs.sync(), log.name);
    for (const LeftOver& one : log.left_overs) {
        if (one.kind != READY) leave_alone_on(work.logs.unlink(one.name), one.name);
    }
}

/// Puts a ready text in the place of the log, which is open.
void finish(const LeftOver& ready, const Descriptor& file, Log* log, const Work& work) {
    remove_what_is_added(*log, work);
    const LeftOver old = left_over(OLD, log->name, ready.number);
    leave_alone_on(work.logs.link(log->name, old.name), old.name);
    log->left_overs.insert(old);
    // Else it is a second name of the file that took the log's place, which the next step removes.
    if (!work.logs.is_name_of(old.name, file)) throw LeftAlone{log->name, REPLACED_MEANWHILE};
    leave_alone_on(work.logs.rename(ready.name, log->name), ready.name);
    leave_alone_on(work.logs.sync(), log->name);
}

/// Renames a file to a taken one.
void take(const std::string& name, Log* log, const Work& work) {
    LeftOver taken = left_over(TAKEN, log->name, 0);
    while (seen(taken.name, work).exists()) taken = left_over(TAKEN, log->name, taken.number + 1);
    leave_alone_on(work.logs.rename(name, taken.name), name);
    log->left_overs.insert(taken);
}

/// Completes a pruning that was ended after its commit.
void complete(const LeftOver& ready, Log* log, const Work& work) {
    // With a second name it may be a file from outside of the directory.
    leave_alone_on(seen(ready.name, work).status.st_nlink > 1 ? EMLINK : 0, ready.name);
    const Descriptor file = open_to_read(log->name, work, Moment::clock::now());
    const bool is_of_log = file && ready_text(*log, file, ready.number).name == ready.name;
    if (is_of_log) return finish(ready, file, log, work);
    remove_what_is_added(*log, work);
    take(ready.name, log, work);
}

/// What is to be added of the left-overs. Those of which nothing is are removed.
std::vector<Source> sources_of(const Log& log, const Work& work, Moment deadline) {
    const Directory::Entry itself = seen(log.name, work);
    std::vector<Source> sources;
    for (const LeftOver& one : log.left_overs) {
        Descriptor file = open_to_read(one.name, work, deadline);
        if (!file) continue;
        const off_t from = one.kind == OLD ? one.number : 0;
        const Source source = settled(one.name, std::move(file), from, work, deadline);
        // A run that was killed leaves the log itself under two names.
        const bool is_new = source.to > from && id_of(itself.status) != id_of(source.status);
        if (!is_new) leave_alone_on(work.logs.unlink(one.name), one.name);
        if (is_new) sources.push_back({one.name, Descriptor(), from, source.to, source.status});
    }
    return sources;
}

/// Hands out the words of a source piece by piece, for as long as `take` wants more.
template <typename Take>
void read_pieces(const Source& source, Work* work, const Take& take) {
    const Descriptor again = source.file ? Descriptor() : open_to_read(source.name, *work, {});
    LogReader reader;
    reader.start(source.file ? source.file.get() : again.get(), source.from, source.to);
    for (std::string_view piece; reader.next(&piece) && take(piece);) {
        work->progress.advance(static_cast<off_t>(piece.size()));
    }
    leave_alone_on(reader.error(), source.name);
}

void count(const KeptRecords& records, Log* log, Work* work) {
    // Less than before if another log took its place since it was counted.
    work->total += std::max<std::int64_t>(records.total() - log->kept.value_or(0), 0);
    work->removed += records.removed();
    log->kept = records.total() - records.removed();
}

/// Whether all of the log is kept as it stands, and everybody can append to it; counts its words
/// then.
bool stays_as_it_is(const Source& file, Log* log, Work* work) {
    // The mode of a log with a second name, which may be a file from outside, is not changed.
    bool stays = (file.status.st_mode & 07777) == PUBLIC || file.status.st_nlink > 1;
    if (!stays) return false;
    KeptRecords records(work->cut_off);
    read_pieces(file, work, [&](std::string_view piece) {
        return stays = records.of(piece).data() == piece.data();
    });
    if (stays) count(records, log, work);
    return stays;
}

/// Appends what is kept of a source to the scratch file, and brings that to the disk.
void copy(const Source& source, const TemporaryFile& scratch, KeptRecords* records, Work* work) {
    read_pieces(source, work, [&](std::string_view piece) {
        leave_alone_on(write_all(scratch.file.get(), records->of(piece)), work->scratch);
        return true;
    });
    leave_alone_on(fsync(scratch.file.get()) == 0 ? 0 : errno, work->scratch);
}

/// Replaces the log, which is the first of the sources, by what is kept of all of them, and counts
/// their words.
void replace(std::vector<Source>* sources, Log* log, Work* work) {
    Source& old = sources->front();
    TemporaryFile scratch(work->logs, work->scratch, PUBLIC);
    if (!scratch.file) stop(NO_PRUNING_FILE, work->scratch, errno, work);
    carry_over_identity(old.file.get(), scratch.file.get());
    leave_alone_on(fchmod(scratch.file.get(), PUBLIC) == 0 ? 0 : errno, work->scratch);
    KeptRecords records(work->cut_off);
    for (const Source& source : *sources) copy(source, scratch, &records, work);
    // Where no token diverts the writers, the log has grown meanwhile.
    const Settled now = settle(old.file, Moment::clock::now());
    if (now.writers == Writers::NONE && now.status.st_size > old.to) {
        old.from = std::exchange(old.to, now.status.st_size);
        copy(old, scratch, &records, work);
    }
    leave_alone_on(scratch.file.close(), work->scratch);
    const LeftOver ready = ready_text(*log, old.file, old.to);
    leave_alone_on(scratch.rename_to(ready.name), ready.name);
    log->left_overs.insert(ready);
    log->is_replaced = true;
    count(records, log, work);
    finish(ready, old.file, log, *work);
}

}  // namespace

void stop(const char* failure, const std::string& name, int error, Work* work) {
    const std::string reason = reason_against(work->logs.look(name));
    if (!work->has_token) throw LeftAlone{name, reason.empty() ? std::strerror(error) : reason};
    work->progress.wipe();
    if (!reason.empty()) note(work->logs.path_of(name) + ": " + reason);
    const std::string token = work->logs.path_of(work->token);
    if (work->logs.look(work->token).exists()) note(filled(TOKEN_STANDS, token.c_str()));
    gripe(failure, work->logs.path_of(name), error);
}

void prepare(Log* log, const std::vector<std::string>& names, Work* work) {
    log->reason.clear();
    log->is_replaced = false;
    log->left_overs = left_overs_of(log->name, names);
    std::erase_if(log->left_overs, [&](const LeftOver& one) { return !is_usable(one.name, work); });
    const Directory::Entry companion = seen(log->companion, *work);
    const std::string reason = reason_against(seen(log->name, *work));
    if (!reason.empty()) {
        const bool is_needed = companion.is_regular() && companion.status.st_size > 0;
        if (is_needed) stop(NO_LOGGING_FILE, log->name, EEXIST, work);
        throw LeftAlone{log->name, reason};
    }
    const std::set<LeftOver> found = log->left_overs;
    for (const LeftOver& one : found) {
        if (one.kind == READY) complete(one, log, *work);
    }
    if (is_usable(log->companion, work)) take(log->companion, log, *work);
}

bool rewrite(Log* log, Work* work, Moment deadline) {
    std::vector<Source> sources = sources_of(*log, *work, deadline);
    if (sources.empty() && log->kept) return false;
    const bool is_late = log->is_replaced && Moment::clock::now() >= deadline;
    if (is_late) throw LeftAlone{log->name, LATE_RECORDS};
    Descriptor file = open_to_read(log->name, *work, deadline);
    if (!file && log->left_overs.empty()) return false;
    if (!file) file = make_log(log->name, work);
    sources.push_back(settled(log->name, std::move(file), 0, *work, deadline));
    // The log comes first. (With insert, g++ 12 warns at -O3.)
    std::rotate(sources.begin(), sources.end() - 1, sources.end());
    if (sources.size() == 1 && stays_as_it_is(sources.front(), log, work)) return false;
    leave_alone_on(work->logs.may_replace(log->name, work->scratch), log->name);
    replace(&sources, log, work);
    return true;
}

}  // namespace gatescope
