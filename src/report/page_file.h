#pragma once

#include <chrono>
#include <functional>
#include <string>

namespace gatescope {

/// Time limit for the lock of a page, which another append may have.
inline constexpr std::chrono::seconds PAGE_TIMEOUT(5);

/// Appends a page to the file at `path`, or creates it. Pages of concurrent processes do not mix.
/// Symbolic links are not followed, and only regular files with a single name are written. Gripes
/// if it fails, with the file unchanged; the reason of a failed open also goes to standard error.
void append_page(const std::string& path, const std::string& page,
                 std::chrono::milliseconds timeout = PAGE_TIMEOUT);

/// Time limit for finding a free name. Each job of the same second takes another second's name.
inline constexpr std::chrono::seconds NAME_TIMEOUT(60);

/// Creates a new file for a page, at `path` or, if that name is taken, at the first free one that
/// `next_path` returns. Gripes like append_page, and if all names were taken until the timeout.
void create_page(std::string path, const std::string& page,
                 const std::function<std::string()>& next_path,
                 std::chrono::milliseconds timeout = NAME_TIMEOUT);

}  // namespace gatescope
