#pragma once

#include <optional>
#include <string>

namespace gatescope {

/// The directory that holds `path`.
std::string directory_of(const std::string& path);

/// The name of the file `path` in its directory.
std::string name_in(const std::string& path);

/// The path of `name` in the directory that holds `path`.
std::string beside(const std::string& path, const std::string& name);

/// The path that a symbolic link says; nothing when it cannot be read.
std::optional<std::string> target_of_link(const std::string& link);

/// The file that `path` names in the end, all links followed; `path` itself when it names none.
std::string end_of_links(const std::string& path);

/// The absolute path of a file, links followed, whether there is a file or not.
std::string absolute_path(const std::string& path);

}  // namespace gatescope
