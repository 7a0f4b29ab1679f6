#pragma once

#include <optional>
#include <string>

namespace gatescope {

/// The directory of `path`.
std::string directory_of(const std::string& path);

/// The last component of `path`.
std::string file_name_of(const std::string& path);

/// The path of `name` in the directory of `path`.
std::string beside(const std::string& path, const std::string& name);

/// The path that a symbolic link points to; nothing when it cannot be read.
std::optional<std::string> link_target(const std::string& link);

/// The canonical path of an existing file, all symbolic links followed; else `path` itself.
std::string resolved_path(const std::string& path);

/// The absolute path of a file that need not exist, symbolic links followed.
std::string absolute_path(const std::string& path);

}  // namespace gatescope
