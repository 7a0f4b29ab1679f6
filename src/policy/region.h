#pragma once

#include <string>

// The region's settings as the gatebits file has them. All are set by interrogate_the_enterprise,
// at start-up and whenever the gatebits file in use or a setting in it has changed.

/// The region header line as read.
extern std::string SYSTEM_VARS__SYSTEM_REGION_HEADER;
/// The region's name; a single blank when the file has none.
extern std::string ENTERPRIZE_NAME;
/// The UNIX policy depot and the UNIX parent gatebits file; a single blank when empty.
extern std::string SYSTEM_VARS__SYSTEM_POLICY_DIR;
extern std::string SYSTEM_VARS__SYSTEM_PARENT_FILE;
/// The logging personality: 'A', 'E', 'O' or 'S'.
extern char LOGGING;
/// Directory of the region's log files, without a delimiter at its end.
extern std::string logging_dir;
/// Directory where report pages are written, without a delimiter at its end.
extern std::string results_dir;

/// Loads the settings. Every fault of the region block ends the program through gripe: nothing is
/// done with a damaged gatebits file. Tool variables without a line keep their value. Always 0.
int interrogate_the_enterprise();
