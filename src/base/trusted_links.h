#pragma once

#include <sys/types.h>

#include <string>

#include "base/file_identity.h"

/// The file that is meant by a name in a directory where others may write.
struct MeantFile {
    /// With all symbolic links followed, whether there is a file or not.
    std::string path;
    /// Why the file must not be used; empty when it may.
    std::string reason = {};
    off_t size = 0;
    uid_t owner = 0;
    FileId id = {};
};

/// The file that `path` leads to, through symbolic links that belong to root, to the operator or
/// to the owner of what they lead to: others may have been planted by anybody who may write to the
/// directory. More than `most_links`, which is what the system would follow, count as a ring.
MeantFile follow_links(const std::string& path, int most_links = 40);
