#pragma once

#include <string>
#include <string_view>

namespace gatescope {

// Files in memory, for executions by the million. The calls of the C library with which the
// program handles files by descriptor come here by way of the linker (see CMakeLists.txt); what
// they are told about a path below MEMORY_ROOT is done to strings, the rest goes to the system.
// There are no links and no permissions here.

inline constexpr std::string_view MEMORY_ROOT = "/gatescope_memory";

/// Makes a file with these bytes, or gives it these.
void put_memory_file(const std::string& path, std::string_view bytes);
/// Its bytes; empty when there is no such file.
std::string memory_file(const std::string& path);
/// How many files there are whose path begins with `start`.
std::size_t memory_files_below(const std::string& start);
/// Closes what is open.
void close_memory_files();

}  // namespace gatescope
