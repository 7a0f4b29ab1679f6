#pragma once

#include <string>

namespace gatescope {

// What names this run, and where its temporary files are.

/// The character that joins paths.
inline constexpr char DIR_DELIMETER = '/';

/// The process id in decimal, and the directory of all temporary files, without a delimiter at its
/// end. Both are settled by verify_set_tempdir before anything else is done, never change
/// afterwards, and are in the name of every temporary file; so they are the process's.
extern std::string GLOBAL_PID_STRING;
extern std::string TEMP_DIR;

/// "<TEMP_DIR>/<tag>_<part2>_<part3>.txt"; null parts are empty.
std::string make_tfile(const char* tag, const char* part2, const char* part3);

/// The run's scratch file: a new gatebits file passes through it, and the file chooser answers in
/// it.
std::string t_file_name();

}  // namespace gatescope
