#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "policy/gatebits.h"
#include "policy/history.h"

namespace gatescope {

// Reads and changes the gatebits file. It is not cached: each step of a dialog reads it again. All
// functions gripe if the file cannot be read or written.

/// Size limit, in bytes, for reading and writing: the policy engine reads no more.
inline constexpr std::size_t GATEBITS_FILE_LIMIT = 30000;

/// Time limit for the lock of a gatebits file. A change takes less time even on a slow disk, so a
/// process that keeps the lock longer is stuck.
inline constexpr std::chrono::seconds LOCK_PATIENCE(10);

/// All bytes of the gatebits file. Gripes if it cannot be read or has more than GATEBITS_FILE_LIMIT
/// bytes.
std::string read_gatebits_bytes(const std::string& path);

/// The gatebits file as it is now. Gripes if it cannot be read, has more than GATEBITS_FILE_LIMIT
/// bytes or has no line.
Gatebits read_gatebits(const std::string& path);

/// The precondition of a change: what the operator was shown before.
struct Precondition {
    /// The file that was read for the dialog.
    Gatebits gatebits;
    /// The parts of a file that the change depends on. It is made only if they have not changed.
    std::function<std::vector<std::string>(const Gatebits& gatebits)> part;
};

/// For a change that depends on no part of the file.
std::vector<std::string> no_part(const Gatebits& gatebits);

/// Returns the new text of the file. Has no side effects, so it can be applied to any text.
using Edit = std::function<Rewrite(const Gatebits& now)>;

/// The result of change().
struct Changed {
    ChangeResult result;
    /// The file before the change and after it; the same if nothing was written.
    Gatebits before;
    Gatebits now;
};

/// Changes the gatebits file: takes its lock, reads it, checks that the shown parts have not
/// changed, makes the edit, and replaces the file as a whole. The lock excludes other gatescope
/// processes. No other function but put_back changes a gatebits file.
///
/// If a history is kept, `record` is written to it before the file is replaced.
///
/// On a file system without locks, no lock is taken. Gripes, with the file unchanged, if another
/// process keeps the lock for longer than `patience`, if readers could not read back the new text,
/// or if it cannot be written.
Changed change(const std::string& path, const Precondition& precondition, const Edit& edit,
               const RecordedChange& record, std::chrono::seconds patience = LOCK_PATIENCE);

/// Replaces the gatebits file by an old text of it, byte for byte: as change does, with the same
/// lock, record and errors, but also where the file is empty or holds a NUL byte.
void put_back(const std::string& path, const Gatebits& text, const RecordedChange& record);

}  // namespace gatescope
