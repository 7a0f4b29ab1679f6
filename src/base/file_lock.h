#pragma once

#include <chrono>
#include <string>

#include "base/descriptor.h"

namespace gatescope {

/// What became of the wait for a lock.
enum class LockState {
    HELD,
    NOT_TO_BE_HAD,   ///< the file cannot be written, or its file system has no locks
    KEPT_BY_ANOTHER  ///< somebody held it all the time
};

/// A lock of a file, held while this object lives. The system takes it back when the process
/// ends, however it ends.
struct FileLock {
    LockState state = LockState::NOT_TO_BE_HAD;
    /// The file, open for reading and writing; none when another holds the lock, or when it cannot
    /// be opened so or is no regular file.
    Descriptor file = {};
};

/// Tries to take the lock of an open file.
LockState try_lock(const Descriptor& file);

/// Waits for the lock of the file that `path` names, for no longer than `patience`. Whoever
/// changes a file by putting a new one in its place leaves those who wait with the lock of the old
/// one; so it is looked whether the path still names the file that the lock was got for.
FileLock lock_file(const std::string& path, std::chrono::milliseconds patience);

}  // namespace gatescope
