#pragma once

#include <string>

namespace gatescope {

// The paths of the region's log files.

/// Log files are numbered 0 to 20.
inline constexpr int NUMBER_OF_LOG_FILES = 21;
/// The log file for demo records.
inline constexpr int DEMO_LOG_FILE = 20;

/// Paths in a region's logging directory: the log file and its pruning companion by number, the
/// scratch file and the token of pruning.
std::string log_file_path(const std::string& logging_dir, int number);
std::string pruning_companion_path(const std::string& logging_dir, int number);
std::string pruning_scratch_path(const std::string& logging_dir);
std::string pruning_token_path(const std::string& logging_dir);

}  // namespace gatescope
