#pragma once

#include <string>

namespace gatescope {

// The name of this run, and the names of its temporary files.

/// The separator in paths.
inline constexpr char DIR_DELIMETER = '/';

/// The process id in decimal, and the directory of all temporary files, without a separator at its
/// end. Global: verify_set_tempdir sets both once at start-up, and the name of every temporary file
/// contains them.
extern std::string GLOBAL_PID_STRING;
extern std::string TEMP_DIR;

/// "<TEMP_DIR>/<tag>_<part2>_<part3>.txt"; null parts are empty.
std::string make_tfile(const char* tag, const char* part2, const char* part3);

/// The run's scratch file, for the text of a new gatebits file and the answer of the file chooser.
std::string t_file_name();

}  // namespace gatescope
