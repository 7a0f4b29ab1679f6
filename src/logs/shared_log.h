#pragma once

#include <cstddef>
#include <mutex>
#include <string>
#include <utility>

#include "base/descriptor.h"

namespace gatescope {

/// A log that several threads read by ranges. It is open from its first range to its last: all
/// ranges are read from the same file, even if its name is given to another one, and only a few of
/// many logs are open at the same time.
class SharedLog {
  public:
    SharedLog(std::string path, std::size_t ranges)
        : path_(std::move(path)), ranges_left_(ranges) {}

    /// The open file; -1 if it could not be opened. Each range is begun once and ended once.
    int begin_range();
    void end_range();

    /// The errno with which it could not be opened; 0 if it was.
    int error();

  private:
    const std::string path_;
    std::mutex mutex_;
    Descriptor file_;
    std::size_t ranges_left_;
    bool tried_ = false;
    int error_ = 0;
};

/// Whether an errno means that the process or the system lacks descriptors or memory, which is no
/// fault of the file.
bool is_resource_shortage(int error);

}  // namespace gatescope
