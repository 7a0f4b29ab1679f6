#pragma once

#include <cerrno>
#include <cstring>
#include <string>

#include "messages/log_texts.h"

namespace gatescope {

/// Thrown by a step that cannot be done on a log, which then stays as it is until the next pruning:
/// the file that is the cause (the log or a file beside it), and the reason.
struct SkippedLog {
    std::string name;
    std::string reason;
};

/// Throws SkippedLog unless `error`, the errno of a call for the file `name`, is 0.
inline void skip_log_on(int error, const std::string& name) {
    if (error != 0) throw SkippedLog{name, error == EWOULDBLOCK ? HELD_OPEN : std::strerror(error)};
}

}  // namespace gatescope
