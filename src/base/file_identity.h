#pragma once

#include <string>

/// Gives the open file `to` the owner, group, mode and extended attributes (access control lists
/// among them) of the open file `from`, and takes away what that one does not have. 0, or the errno
/// of the first that could not be carried over.
int carry_over_identity(int from, int to);

/// Brings the directory that holds `path` to the disk, so that a rename in it survives a crash.
/// 0 or an errno; a file system that cannot sync directories counts as done.
int sync_directory_of(const std::string& path);

/// Whether a file made at `path` could not be removed or renamed again, since its directory only
/// lets files be added.
bool would_stay_at(const std::string& path);
