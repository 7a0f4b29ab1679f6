#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/descriptor.h"

namespace gatescope {

/// Why a file was not replaced, and its state.
struct Failure {
    enum class State {
        REFUSED,      ///< unchanged: not writable
        NOT_REGULAR,  ///< unchanged: not a regular file
        UNCHANGED,
        NEW,     ///< has its complete new text, which may not be on the disk yet
        DAMAGED  ///< may be damaged; the safe copy has the complete new text
    };
    State state;
    /// An errno; 0 for NOT_REGULAR.
    int error;
    /// The file, symbolic links followed.
    std::string file;
};

/// Whether the file still has its old text.
inline bool is_unchanged(const Failure& failure) {
    return failure.state != Failure::State::NEW && failure.state != Failure::State::DAMAGED;
}

/// Replaces the whole of an existing file by `text`, so that readers find the old file or the new
/// one, also after a kill at any moment. A symbolic link is followed and stays a link; owner,
/// group, mode and extended attributes stay.
///
/// The new file is written beside the old one and renamed. Where that is impossible (hard links, a
/// directory without write permission, an attribute that cannot be carried over) the old file is
/// rewritten in place, and `safe_copy`, a temporary file to which the caller has written `text`,
/// stays until that is done. Meanwhile the file may have blank lines at its end, so its readers
/// must ignore those.
///
/// `open_file` is the file, if the caller has it open for reading and writing; it is used as long
/// as `path` names it.
///
/// Returns nothing on success; `safe_copy` is then removed. After a failure unneeded new files are
/// still on the list of temporary files, and so is `safe_copy` unless it has the only complete
/// text.
[[nodiscard]] std::optional<Failure> replace_file(const std::string& path, std::string_view text,
                                                  const std::string& safe_copy,
                                                  const Descriptor& open_file = Descriptor());

}  // namespace gatescope
