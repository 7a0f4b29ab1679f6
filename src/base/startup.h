#pragma once

#include <string>

// Who the operator is, where temporary files go and how dialogs are shown: settled once, before
// any argument is looked at.

/// The platform: 'U' for UNIX, and the character that joins paths.
inline constexpr char OS_TYPE = 'U';
inline constexpr char DIR_DELIMETER = '/';

/// The operator's login name, lower-cased, without a domain. Set by clean_start.
extern std::string _CALCULATED_USER;
/// What kind of client the operator is on. Set by clean_start, from the environment.
extern int ZUL_SNAPSHOT_USER;
extern int REAL_ZUL_WEB_USER;
extern int REAL_ZUL_REMOTE_CLIENT_USER;

/// Set by verify_set_tempdir; read by whoever names a temporary file.
extern int GLOBAL_PID;
extern std::string GLOBAL_PID_STRING;
/// Directory of all temporary files, without a delimiter at its end.
extern std::string TEMP_DIR;
/// The last paths made.
extern std::string G_TEMP_FILE;
extern std::string G_CACHE_FILE;

/// The run's scratch file: a new gatebits file passes through it, and the file chooser answers in
/// it. Set by main.
extern std::string t_file_name;

/// Finds out who the operator is and how to talk to them. Gripes
/// when no user can be found.
void clean_start();

/// The operator's name as the environment, or else the password database, has it, lower-cased;
/// null when there is none. Kept in _CALCULATED_USER.
const std::string* calculated_user();

/// Settles the process id and the directory for temporary files ("tmp", else "temp", else /tmp);
/// gripes when that directory is not writable. A variable that is set is never passed over.
void verify_set_tempdir();

/// "<TEMP_DIR>/<tag>_<part2>_<part3>.txt"; null parts are empty. Kept in G_TEMP_FILE.
const std::string& make_tfile(const char* tag, const char* part2, const char* part3);

/// make_tfile with the tag "cache", kept in G_CACHE_FILE.
const std::string& make_cache_file(const char* part1, const char* part2);

/// Waits; returns the seconds that were left when a signal ended the wait.
unsigned zul_sleep(unsigned seconds);
