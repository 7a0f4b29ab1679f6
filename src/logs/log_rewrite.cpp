#include "logs/log_rewrite.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "base/file_identity.h"
#include "base/files.h"
#include "base/replace_file.h"
#include "base/signals_held.h"
#include "base/temporary_files.h"
#include "dialog/messages.h"
#include "logs/settling.h"
#include "messages/log_texts.h"

namespace {

/// In a sticky directory names belong to the owners of their files.
bool may_be_replaced(const std::string& log, const Descriptor& file) {
    struct stat directory;
    const uid_t self = geteuid();
    return self == 0 || stat(log.substr(0, log.rfind('/') + 1).c_str(), &directory) != 0 ||
           (directory.st_mode & S_ISVTX) == 0 || self == directory.st_uid ||
           self == status_of(file).st_uid;
}

/// Makes the scratch file.
Descriptor make_scratch_file(const Log& log) {
    Descriptor scratch(create_temporary_file(log.scratch, 0666));
    if (!scratch && !log.is_linked) gripe(NO_PRUNING_FILE, log.scratch, errno);
    need(static_cast<bool>(scratch));
    return scratch;
}

/// Writes what is kept of a log's old file up to byte `to.size` to the scratch file, which gets the
/// old file's owner and attributes as far as the system allows, and is writable for all. The new
/// text, open for reading and locked.
Descriptor write_new_text(const Log& log, Descriptor scratch, const Settled& to, LeftOver* old_file,
                          Work* work) {
    carry_over_identity(old_file->file.get(), scratch.get());
    need(fchmod(scratch.get(), 0666) == 0);
    old_file->from = add_words(*old_file, to, log.scratch, std::move(scratch), work);
    // Others may have put a pipe there meanwhile, which must not be waited for.
    Descriptor text(open_regular_file(log.scratch, O_RDONLY | O_NOFOLLOW));
    need(static_cast<bool>(text));
    flock(text.get(), LOCK_EX | LOCK_NB);
    return text;
}

/// Gives the old file the name of the left-over, and then the new text the log's.
void put_in_place(const Log& log, LeftOver* old_file) {
    const SignalsHeld held;
    const std::string& path = log.file.path;
    const std::string second = old_file->path();
    // Where the system does not allow the second name, the old file will have none. Across a
    // network the answer that it was given may get lost, and the call repeated.
    old_file->has_name =
        link(path.c_str(), second.c_str()) == 0 || is_name_of(second, old_file->file.get());
    if (!is_name_of(old_file->has_name ? second : path, old_file->file.get())) {
        throw LeftAlone{REPLACED_MEANWHILE};
    }
    need(rename(log.scratch.c_str(), path.c_str()) == 0);
    forget_temporary_file(log.scratch);
}

}  // namespace

void rewrite_log(Log* log, Work* work) {
    need_usable(log->file);
    const std::string& path = log->file.path;
    Descriptor old_log = open_locked(path, work->deadline);
    if (!old_log) return;
    unlink(log->scratch.c_str());
    // The name of a partly added left-over holds the log's inode, which a new text would change.
    for (const LeftOver& one : log->left_overs) {
        if (one.log == id_of(old_log)) throw LeftAlone{one.stays};
    }
    const Settled settled = settle(old_log, work->deadline);
    if (settled.is_written) throw LeftAlone{KEPT_OPEN};

    KeptRecords looked_at = work->records;
    bool keeps_all = true;
    read_pieces(old_log, 0, settled.size, &work->progress, [&](std::string_view piece) {
        keeps_all = looked_at.of(piece).data() == piece.data();
        return keeps_all;
    });
    // A log that only its owner can write gets a new text, so that others can append.
    if (keeps_all && make_log_public(old_log)) {
        work->records = std::move(looked_at);
        return;
    }
    if (!may_be_replaced(path, old_log)) throw LeftAlone{std::strerror(EPERM)};
    const KeptRecords before = work->records;
    LeftOver old_file = new_left_over(path, std::move(old_log));
    // Until it gets one.
    old_file.has_name = false;
    Descriptor scratch = make_scratch_file(*log);
    Descriptor new_log;
    const std::string reason = reason_of([&] {
        new_log = write_new_text(*log, std::move(scratch), settled, &old_file, work);
        put_in_place(*log, &old_file);
    });
    if (!reason.empty()) {
        if (old_file.has_name) unlink(old_file.path().c_str());
        remove_temporary_file(log->scratch);
        work->records = before;
        throw LeftAlone{reason};
    }
    stop_on(sync_directory_of(path), "replace", path, *work);
    add_left_over(&old_file, path, new_log, work);
    if (!old_file.stays.empty()) log->left_overs.push_back(std::move(old_file));
}
