#pragma once

#include <functional>
#include <string>

namespace gatescope {

// Runs functions that may end the process, or that need other rights, in a child process.

struct Ended {
    /// The exit status, or 128 plus the number of the signal.
    int status = -1;
    /// Its standard output.
    std::string said;
};

/// Runs `body` in a child whose messages go to standard output. The status is 0 if `body` returns.
Ended in_child(const std::function<void()>& body);

/// The same, as the user nobody (65534), without privileges.
Ended in_child_of_nobody(const std::function<void()>& body);

/// Whether this process may become the user nobody.
bool can_become_nobody();

}  // namespace gatescope
