#pragma once

#include <string>

namespace gatescope {

/// Appends 50000 invented records of the last 120 days to the last log file of the directory,
/// reports its progress on standard output and ends the program with status 0. Gripes when they
/// cannot be written.
[[noreturn]] void data_gen(const std::string& logging_dir);

}  // namespace gatescope
