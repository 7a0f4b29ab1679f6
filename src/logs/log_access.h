#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <string>
#include <string_view>

#include "base/descriptor.h"
#include "base/file_identity.h"
#include "logs/kept_records.h"
#include "logs/log_reader.h"
#include "logs/patience.h"
#include "logs/progress.h"

// How a pruning comes to the files that it works on, and how it stops.

/// What the steps of a pruning share.
struct Work {
    KeptRecords records;
    Progress progress;
    /// Until when writers are waited for.
    Moment deadline;
};

/// Ends the program through gripe unless `error`, an errno, is 0: the pruning could not `step` the
/// file at `path`. The token stays, and the message says what that means.
void stop_on(int error, const char* step, const std::string& path);
/// Stops the pruning unless the system call has done what it was to do; the reason is in errno.
void must(bool done, const char* step, const std::string& path);

/// The status and the identity of an open file. Both stop the pruning when it cannot be examined.
struct stat status_of(const Descriptor& file);
FileId id_of(const Descriptor& file);

/// The file that is meant by a name in the logging directory.
struct Place {
    /// With all symbolic links followed, whether there is a file or not.
    std::string path;
    /// Why the file must not be used; empty when it may.
    std::string reason = {};
    off_t size = 0;
    uid_t owner = 0;
    FileId id = {};
};

/// The place that `path` leads to, through symbolic links that belong to root, to the operator or
/// to the owner of what they lead to: others may have been planted by anybody who may write to the
/// logging directory. More than `most_links`, which is what the system would follow, count as a
/// ring.
Place follow_links(const std::string& path, int most_links = 40);

/// open_log, but for links: one that was put at `path` after links were followed is not opened.
Descriptor open_here(const std::string& path, std::string* reason);

/// Opens a log for reading and keeps other prunings of it out, of regions whose links lead to it
/// too; one that is at work is waited for until `deadline`. Nothing is open when that fails;
/// `*reason` says why, and is empty when there is no log.
Descriptor open_locked(const std::string& path, Moment deadline, std::string* reason);

/// Makes the open log readable and writable for all, unless it has other names, which are not
/// ours. False when it belongs to somebody else and is not public.
bool make_log_public(const Descriptor& log);

/// Hands out the words from byte `from` up to byte `to` of an open file piece by piece, for as long
/// as `take` wants more. 0, or the errno for which the file cannot be read on. Nothing may be said,
/// nor the program be ended, in between: the progress stands on the terminal until it is done.
template <typename Take>
[[nodiscard]] int read_pieces(const Descriptor& file, off_t from, off_t to, Progress* progress,
                              const Take& take) {
    LogReader reader;
    reader.start(file.get(), from);
    bool goes_on = true;
    for (std::string_view piece; goes_on && from < to && reader.next(&piece);) {
        // What was appended after `to` meanwhile is not looked at here.
        piece = piece.substr(0, static_cast<std::size_t>(to - from));
        from += static_cast<off_t>(piece.size());
        goes_on = take(piece);
        progress->advance(static_cast<off_t>(piece.size()));
    }
    progress->wipe();
    return reader.error();
}
