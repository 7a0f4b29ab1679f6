#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "policy/gatebits.h"
#include "policy/history.h"

namespace gatescope {

// The gatebits file on the disk: read as a value, and changed in one place. Nothing is cached: each
// step of a dialog reads the file anew. What cannot be read or written ends the program through
// gripe.

/// The policy engine reads no more than this many bytes, so no reader or writer here does.
inline constexpr std::size_t GATEBITS_FILE_LIMIT = 30000;

/// How long the lock of a gatebits file is waited for: longer than a change takes even on a slow
/// disk, so a process that keeps it longer is not at work.
inline constexpr std::chrono::seconds LOCK_PATIENCE(10);

/// All bytes of the gatebits file. Gripes when it cannot be read or holds more than
/// GATEBITS_FILE_LIMIT bytes.
std::string read_gatebits_bytes(const std::string& path);

/// The gatebits file as it is now. Gripes when it cannot be read, holds more than
/// GATEBITS_FILE_LIMIT bytes or holds no line.
Gatebits read_gatebits(const std::string& path);

/// What the operator was shown before a change.
struct WhatWasShown {
    /// The file as it was read for that.
    Gatebits gatebits;
    /// What of it the change rests on: a change is made only while this comes out the same.
    std::function<std::vector<std::string>(const Gatebits& gatebits)> part;
};

/// What is shown of a change that rests on nothing.
std::vector<std::string> nothing(const Gatebits& gatebits);

/// Makes another text of the file. It touches nothing else, so it can be made on any text.
using Edit = std::function<Rewrite(const Gatebits& now)>;

/// A change that was made, or not.
struct Changed {
    ChangeResult result;
    /// The file just before, and as it is now. They are the same when nothing was written.
    Gatebits before;
    Gatebits now;
};

/// Changes the gatebits file: takes its lock, reads it anew, looks whether what was shown still
/// stands there, makes the edit, and replaces the file whole by the new text. No other gatescope
/// comes between. This and put_back are the only ways in which a gatebits file is changed.
///
/// Where a history is kept, what `record` says stands in it before the file is replaced.
///
/// Where a file system has no locks, it does without. Gripes, with the file as it was, when another
/// process keeps the lock for longer than `patience`, or when the new text is not fit to be read
/// back or cannot be written.
Changed change(const std::string& path, const WhatWasShown& shown, const Edit& edit,
               const RecordedChange& record, std::chrono::seconds patience = LOCK_PATIENCE);

/// Replaces the gatebits file by an old text of it, byte for byte: as change does, with the same
/// lock, record and errors, but also where the file is empty or holds a NUL byte.
void put_back(const std::string& path, const Gatebits& text, const RecordedChange& record);

}  // namespace gatescope
