#pragma once

#include <string>

namespace gatescope {

// Who the operator is, where temporary files go and how dialogs are shown: settled once, before
// any argument is looked at.

/// The operator, and what kind of client they are on. All that this program makes of the client is
/// ZUL_REMOTE_CLIENT_USER: whether messages wait.
struct Operator {
    /// The login name, lower-cased, without a domain.
    std::string _CALCULATED_USER;
    /// Working in a snapshot view; in the web client; in it or another remote client.
    bool ZUL_SNAPSHOT_USER = false;
    bool REAL_ZUL_WEB_USER = false;
    bool REAL_ZUL_REMOTE_CLIENT_USER = false;
};

/// Finds out who the operator is, and settles how to talk to them. Gripes when no user can be
/// found.
Operator clean_start();

/// Settles the process id and the directory for temporary files ("tmp", else "temp", else /tmp);
/// gripes when that directory is not writable. The first of the variables that is set decides, even
/// when its directory is of no use.
void verify_set_tempdir();

}  // namespace gatescope
