#pragma once

#include <string>

namespace gatescope {

// Where the region's log files are.

/// Log files are numbered 0 to 20.
inline constexpr int NUMBER_OF_LOG_FILES = 21;
/// Demo records go to this one.
inline constexpr int DEMO_LOG_FILE = 20;

/// The files of a region's logging directory: the log file and its pruning companion by number, the
/// pruner's scratch file and its token.
std::string log_file_path(const std::string& logging_dir, int number);
std::string pruning_companion_path(const std::string& logging_dir, int number);
std::string pruning_scratch_path(const std::string& logging_dir);
std::string pruning_token_path(const std::string& logging_dir);

}  // namespace gatescope
