#pragma once

#include <sys/resource.h>

#include <csignal>

namespace gatescope {

/// Writing beyond `bytes` fails with EFBIG from now on.
inline void limit_file_size(rlim_t bytes) {
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit = {bytes, bytes};
    setrlimit(RLIMIT_FSIZE, &limit);
}

}  // namespace gatescope
