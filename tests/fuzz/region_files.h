#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace gatescope {

// Files of a region's logs, for the reference implementation of pruning.

/// All words of a log, each up to its first NUL.
std::vector<std::string> words_of(const std::string& text);

/// The entry at a path, without following links.
struct Place {
    /// Whether it is a regular file or does not exist.
    bool is_usable = true;
    std::optional<std::string> text;
};
Place place_at(const std::string& path);

/// A file beside a log that an interrupted prune may have left.
struct FileBesideLog {
    enum Kind { TAKEN, OLD, READY } kind;
    std::string path;
    /// The first number in its name.
    std::size_t number;
    std::string text = {};
};
/// Kind and number by the name of a file; nullopt if it is not such a name for the log.
std::optional<FileBesideLog> beside_log(const std::string& log, const std::string& path);

}  // namespace gatescope
