#pragma once

#include <string>

namespace gatescope {

/// Appends 50000 random records of the last 120 days to log file DEMO_LOG_FILE of the directory,
/// reports its progress on standard output and ends the program with status 0. Gripes if they
/// cannot be written.
[[noreturn]] void data_gen(const std::string& logging_dir);

}  // namespace gatescope
