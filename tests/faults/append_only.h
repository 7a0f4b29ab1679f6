#pragma once

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <string>

namespace gatescope {

/// Makes a directory append-only until the end of the scope: files can be added, but not removed.
/// It needs root and a file system that supports the attribute.
class AppendOnly {
  public:
    explicit AppendOnly(const std::string& directory)
        : file_(open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
        is_set_ = ioctl(file_, FS_IOC_GETFLAGS, &before_) == 0 && set(before_ | FS_APPEND_FL);
    }
    ~AppendOnly() {
        if (is_set_) set(before_);
        close(file_);
    }
    AppendOnly(const AppendOnly&) = delete;
    AppendOnly& operator=(const AppendOnly&) = delete;

    [[nodiscard]] bool is_set() const { return is_set_; }

  private:
    bool set(int flags) const { return ioctl(file_, FS_IOC_SETFLAGS, &flags) == 0; }

    int file_;
    int before_ = 0;
    bool is_set_ = false;
};

}  // namespace gatescope
