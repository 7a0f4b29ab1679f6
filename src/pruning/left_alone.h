#pragma once

#include <cerrno>
#include <cstring>
#include <string>

#include "messages/log_texts.h"

namespace gatescope {

/// Thrown by the steps on a log that has to stay as it is until the next pruning: the file that is
/// the cause, and the reason.
struct LeftAlone {
    std::string name;
    std::string reason;
};

/// Throws LeftAlone unless `error`, the errno of a call for the file `name`, is 0.
inline void leave_alone_on(int error, const std::string& name) {
    if (error != 0) throw LeftAlone{name, error == EWOULDBLOCK ? KEPT_OPEN : std::strerror(error)};
}

}  // namespace gatescope
