#pragma once

#include <cstddef>
#include <mutex>
#include <string>
#include <utility>

#include "base/descriptor.h"

namespace gatescope {

/// A log that several threads read by ranges. It is open from its first range to its last: all of
/// them are read from the same file, whatever takes its name meanwhile, and of many logs few are
/// open at the same time.
class SharedLog {
  public:
    SharedLog(std::string path, std::size_t ranges)
        : path_(std::move(path)), ranges_left_(ranges) {}

    /// The open file; -1 when it could not be opened. Each range is begun once and ended once.
    int begin_range();
    void end_range();

    /// Why it could not be opened, an errno; 0 when it was.
    int error();

  private:
    const std::string path_;
    std::mutex mutex_;
    Descriptor file_;
    std::size_t ranges_left_;
    bool tried_ = false;
    int error_ = 0;
};

/// Whether a call failed for want of something that the process or the machine has no more of: that
/// says nothing of the file.
bool is_want(int error);

}  // namespace gatescope
