#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <cstring>
#include <string>
#include <string_view>

#include "base/descriptor.h"
#include "base/file_identity.h"
#include "base/trusted_links.h"
#include "logs/kept_records.h"
#include "logs/log_reader.h"
#include "logs/patience.h"
#include "logs/progress.h"

// How a pruning comes to the files that it works on, and how it leaves them alone, or stops.

/// What the steps of a pruning share.
struct Work {
    KeptRecords records;
    Progress progress;
    /// Until when writers are waited for.
    Moment deadline;
    /// The path of the token, which diverts the writers.
    std::string token = {};
};

/// Thrown by the steps on a file that has to stay as it is until the next pruning: why.
struct LeftAlone {
    std::string reason;
};

/// Why the file that the step is about stays as it is; empty when the step came to its end.
template <typename Step>
std::string reason_of(const Step& step) {
    try {
        step();
        return "";
    } catch (const LeftAlone& file) {
        return file.reason;
    }
}

/// Leaves the file alone unless the system call has done what it was to do; the reason is in errno.
void need(bool done);
/// Leaves the file alone where the name means one that must not be used.
void need_usable(const MeantFile& file);

/// Ends the program through gripe unless `error`, an errno, is 0: the pruning could not `step` the
/// file at `path`. The token stands then, even if it had gone: a writer must not go on behind half
/// a record. The message says what that means.
void stop_on(int error, const char* step, const std::string& path, const Work& work);

/// The status and the identity of an open file.
struct stat status_of(const Descriptor& file);
FileId id_of(const Descriptor& file);

/// Opens a log for reading; a link that was put at `path` after links were followed is not opened.
/// Nothing is open when there is no log. One that cannot be opened is left alone.
Descriptor open_here(const std::string& path);

/// The same, and keeps other prunings of the log out, of regions whose links lead to it too; one
/// that is at work is waited for until `deadline`.
Descriptor open_locked(const std::string& path, Moment deadline);

/// Makes the open log readable and writable for all, unless it has other names, which are not
/// ours. False when it belongs to somebody else and is not public.
bool make_log_public(const Descriptor& log);

/// Hands out the words from byte `from` up to byte `to` of an open file piece by piece, for as long
/// as `take` wants more. A file that cannot be read on is left alone. Nothing may be said, nor the
/// program be ended, in between: the progress stands on the terminal until it is done.
template <typename Take>
void read_pieces(const Descriptor& file, off_t from, off_t to, Progress* progress,
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
    if (reader.error() != 0) throw LeftAlone{std::strerror(reader.error())};
}
