#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace gatescope {

// Files of a region's logs, as the rule for their pruning sees them.

/// All words of a log; those that a NUL cuts short are what stands before it.
std::vector<std::string> words_of(const std::string& text);

/// What stands at a path itself; no link is followed.
struct Place {
    /// A file, or nothing.
    bool is_usable = true;
    std::optional<std::string> text;
};
Place place_at(const std::string& path);

/// Something that a pruning that was ended may have left beside a log.
struct FileBesideLog {
    enum Kind { TAKEN, OLD, READY } kind;
    std::string path;
    /// The first one of its name.
    std::size_t number;
    std::string text = {};
};
/// What the name of something says; nothing when it is no name of that kind beside the log.
std::optional<FileBesideLog> beside_log(const std::string& log, const std::string& path);

}  // namespace gatescope
