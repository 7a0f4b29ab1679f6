#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/descriptor.h"

namespace gatescope {

/// Why a file was not replaced, and in what state it was left.
struct Failure {
    enum class State {
        REFUSED,      ///< unchanged: it may not be written
        NOT_REGULAR,  ///< unchanged: it is not a regular file
        UNCHANGED,
        NEW,     ///< it holds its whole new text, which may not have reached the disk yet
        DAMAGED  ///< it may be damaged; the safe copy holds the only whole text
    };
    State state;
    /// An errno; 0 of what is not a regular file.
    int error;
    /// The file, links followed.
    std::string file;
};

/// Whether the file still holds the text that it held before.
inline bool is_unchanged(const Failure& failure) {
    return failure.state != Failure::State::NEW && failure.state != Failure::State::DAMAGED;
}

/// Replaces the whole of an existing file by `text`, so that whoever looks, whenever the program
/// is killed, finds the old file or the new one. A symbolic link is followed and stays a link;
/// owner, group, mode and extended attributes stay.
///
/// The new file is written beside the old one and renamed. Where that cannot be done (hard links,
/// a directory that does not let us, an attribute that cannot be carried over) the old file is
/// rewritten in place, and `safe_copy`, a temporary file that the caller has written `text` to,
/// stays until that is done. For a moment it may then have blank lines at its end, so this is for
/// texts in which those mean nothing.
///
/// `open_file` is the file, open for reading and writing, where the caller has it so; it is used as
/// long as `path` names it.
///
/// Nothing when it is done. After a failure new files that are not needed any more are still on the
/// list of temporary files; `safe_copy` is on it too unless it holds the only whole text. Without
/// one it is removed.
[[nodiscard]] std::optional<Failure> replace_file(const std::string& path, std::string_view text,
                                                  const std::string& safe_copy,
                                                  const Descriptor& open_file = Descriptor());

}  // namespace gatescope
