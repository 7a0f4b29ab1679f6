#pragma once

#include <string>

namespace gatescope {

/// Runs a program: with open standard streams, with temporary files removed by signals that end it,
/// and with a message when memory runs out. The exit status. `name` is for errors on standard
/// error.
int run_program(const char* name, int (*run)(int, char**), int argument_count, char** arguments);

// Start-up before the arguments are parsed: the operator, the way of dialogs, and the directory for
// temporary files.

/// The operator and their client. Of the client only ZUL_REMOTE_CLIENT_USER is used.
struct Operator {
    /// The login name in lower case, without a domain.
    std::string _CALCULATED_USER;
    /// In a snapshot view; in the web client; in the web client or another remote client.
    bool ZUL_SNAPSHOT_USER = false;
    bool REAL_ZUL_WEB_USER = false;
    bool REAL_ZUL_REMOTE_CLIENT_USER = false;
};

/// Determines the operator, and sets ZUL_PREFER_GUI and ZUL_REMOTE_CLIENT_USER. Gripes when no user
/// is found.
Operator clean_start();

/// Sets GLOBAL_PID_STRING and TEMP_DIR: the variable "tmp" if set, else "temp", else /tmp. Gripes
/// when that directory is not writable.
void verify_set_tempdir();

}  // namespace gatescope
