#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <string>
#include <string_view>

#include "base/descriptor.h"
#include "logs/log_reader.h"
#include "logs/progress.h"
#include "logs/settling.h"

// How a pruning comes to the files that it works on, and how it stops.

/// If `error` is an errno, and not 0, ends the program through gripe: it could not `step` the file.
/// The token stays, and the message says what that means.
void stop_on(int error, const char* step, const std::string& path);
/// Stops the pruning unless the system call has done what it was to do; the reason is in errno.
void must(bool done, const char* step, const std::string& path);

/// Of an open file. Stops the pruning when it cannot be examined.
struct stat status_of(int file);

/// Which file it is, under whatever name.
struct FileId {
    dev_t device = 0;
    ino_t inode = 0;
    bool operator==(const FileId&) const = default;
};
FileId id_of(int file);
/// Whether `path` is a name of the open file, and no link.
bool is_name_of(const std::string& path, int file);

/// The file that is meant by a name in the logging directory.
struct Place {
    /// Behind symbolic links, whether there is a file or not.
    std::string path;
    /// Why the file must not be used; empty when it may.
    std::string reason;
    off_t size = 0;
};

/// Follows symbolic links that belong to root, to the operator or to the owner of what they lead
/// to: others may have been planted by anybody who may write to the logging directory.
Place behind_links(const std::string& path);

/// Opens a log for reading and keeps other prunings of it out, of regions whose links lead to it
/// too; one that is at work is waited for until `deadline`. Nothing is open when that fails;
/// `*reason` says why, and is empty when there is no log.
Descriptor open_locked(const std::string& path, Moment deadline, std::string* reason);

/// Makes the open log readable and writable for all, unless it has other names, which are not
/// ours. False when it has another owner, who has not done it.
bool make_log_public(int log);

/// Hands out the words from byte `from` up to byte `to` of an open file piece by piece, and tells
/// `progress` of them, where that is wanted. Stops the pruning when the file cannot be read.
template <typename Take>
void read_pieces(int file, const std::string& path, off_t from, off_t to, const Take& take,
                 Progress* progress = nullptr) {
    LogReader reader;
    reader.start(file, from);
    for (std::string_view piece; from < to && reader.next(&piece);) {
        // What was appended behind `to` meanwhile is not looked at here.
        piece = piece.substr(0, static_cast<std::size_t>(to - from));
        from += static_cast<off_t>(piece.size());
        take(piece);
        if (progress != nullptr) progress->advance(static_cast<off_t>(piece.size()));
    }
    if (progress != nullptr) progress->wipe();
    stop_on(reader.error(), "read", path);
}
