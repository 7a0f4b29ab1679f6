#pragma once

#include <functional>
#include <string>

namespace gatescope {

// Functions that may end the process, or that need other rights, are tried in a child.

struct Ended {
    /// The exit status, or 128 and the number of the signal.
    int status = -1;
    /// What it wrote to standard output.
    std::string said;
};

/// Runs `body` in a child whose messages go to standard output; 0 is its status when it returns.
Ended in_child(const std::function<void()>& body);

/// The same as a user without any rights of its own.
Ended in_child_of_nobody(const std::function<void()>& body);

/// Whether this process may become another user.
bool can_become_nobody();

}  // namespace gatescope
