#pragma once

#include <string>
#include <string_view>

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
/// A failure ends the program through gripe with a text that names the file, the reason and the
/// state in which it and the copy were left. `safe_copy` is removed unless it holds the only
/// whole text.
void replace_file(const std::string& path, std::string_view text, const std::string& safe_copy);

/// Writes all of `text` to the descriptor, however often the system takes only a part of it or is
/// interrupted. 0 or an errno.
int write_all(int descriptor, std::string_view text);
