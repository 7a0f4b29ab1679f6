#pragma once

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace gatescope {

/// Lets the process open at most `free` more files until the end of the scope.
class FewDescriptors {
  public:
    explicit FewDescriptors(rlim_t free) {
        const int lowest = open("/dev/null", O_RDONLY | O_CLOEXEC);
        close(lowest);
        getrlimit(RLIMIT_NOFILE, &before_);
        const rlimit few = {static_cast<rlim_t>(lowest) + free, before_.rlim_max};
        setrlimit(RLIMIT_NOFILE, &few);
    }
    ~FewDescriptors() { setrlimit(RLIMIT_NOFILE, &before_); }
    FewDescriptors(const FewDescriptors&) = delete;
    FewDescriptors& operator=(const FewDescriptors&) = delete;

  private:
    rlimit before_ = {};
};

}  // namespace gatescope
