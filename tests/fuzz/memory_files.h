#pragma once

#include <string>
#include <string_view>

namespace gatescope {

// Files in memory, for fast executions. The linker redirects the calls of the C library that the
// program uses for files (see CMakeLists.txt): those for paths below MEMORY_ROOT work on strings,
// all others go to the system. There are no links and no permissions.

inline constexpr std::string_view MEMORY_ROOT = "/gatescope_memory";

/// Creates or replaces a file with these bytes.
void put_memory_file(const std::string& path, std::string_view bytes);
/// The bytes of a file; empty if it does not exist.
std::string memory_file(const std::string& path);
/// The number of files whose path begins with `start`.
std::size_t memory_files_below(const std::string& start);
/// Closes all open files in memory.
void close_memory_files();

}  // namespace gatescope
