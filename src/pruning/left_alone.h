#pragma once

#include <cstring>
#include <string>

namespace gatescope {

/// Thrown by the steps on a log that has to stay as it is until the next pruning: why.
struct LeftAlone {
    std::string reason;
};

/// Throws LeftAlone unless `error`, an errno, is 0. `name` is the file that it is about where that
/// is not the log itself.
inline void need(int error, const std::string& name = "") {
    if (error == 0) return;
    throw LeftAlone{(name.empty() ? "" : name + ": ") + std::strerror(error)};
}

/// Why the log that the step is about is left alone; empty when the step came to its end.
template <typename Step>
std::string reason_of(const Step& step) {
    try {
        step();
        return "";
    } catch (const LeftAlone& log) {
        return log.reason;
    }
}

}  // namespace gatescope
