#pragma once

#include <string>

#include "policy/history.h"

namespace gatescope {

/// The result of create_gatebits_file.
enum class NewFile {
    CREATED,
    EXISTS,       ///< a file of that name exists; it is unchanged
    NOT_CREATED,  ///< no file of that name can be created, or not by this user
};

/// Creates the file `path` with the content `text`, atomically even if the process is killed: it is
/// complete and synced, or does not exist. No file is replaced. If `path` is a dangling symbolic
/// link, its target is created; but another user's link in a world-writable directory is not
/// followed. Gripes, with the file, the reason and the state, if the text cannot be written. If a
/// history is kept, `change` is recorded before the file is created.
NewFile create_gatebits_file(const std::string& path, const std::string& text,
                             const RecordedChange& change);

/// All bytes of the gatebits file `path`, read under its lock. Gripes, with the message of a copy
/// to `destination`, if it cannot be read, or another process keeps the lock.
std::string bytes_to_copy(const std::string& path, const std::string& destination);

}  // namespace gatescope
