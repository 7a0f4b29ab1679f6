#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/descriptor.h"

/// Why a file was not replaced.
struct Failure {
    /// What to tell the operator: the file, the reason and the state in which it and the copy were
    /// left.
    std::string message;
    /// The errno that the message leaves in numbers; 0 when it says the reason in words.
    int error = 0;
};

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

/// Writes all of `text`, brings it to the disk and closes the file. 0, or the errno of the first
/// that failed.
int write_sync_close(int descriptor, std::string_view text);

/// Writes all of `text` to the descriptor, however often the system takes only a part of it or is
/// interrupted. 0 or an errno.
int write_all(int descriptor, std::string_view text);
