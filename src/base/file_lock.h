#pragma once

#include <chrono>
#include <string>

#include "base/descriptor.h"

namespace gatescope {

/// The outcome of waiting for a lock.
enum class LockState {
    HELD,
    UNAVAILABLE,     ///< the file cannot be written, or its file system has no locks
    HELD_BY_ANOTHER  ///< another process held it for the whole wait
};

/// A lock of a file, held while this object lives. The system releases it when the process ends.
struct FileLock {
    LockState state = LockState::UNAVAILABLE;
    /// The file, open for reading and writing; none when another process holds the lock, or when it
    /// is not a regular file or cannot be opened.
    Descriptor file = {};
};

/// Tries to take the lock of an open file.
LockState try_lock(const Descriptor& file);

/// Waits at most `patience` for the lock of the file at `path`. A process that replaces the file by
/// a rename leaves waiting processes with the lock of the old one; so the path is compared with the
/// locked file, and the new file locked instead.
FileLock lock_file(const std::string& path, std::chrono::milliseconds patience);

}  // namespace gatescope
