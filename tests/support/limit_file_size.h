#pragma once

#include <sys/resource.h>

#include <csignal>

namespace gatescope {

/// What is written after the limit ends with an error, as on a full disk.
inline void limit_file_size(rlim_t bytes) {
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit = {bytes, bytes};
    setrlimit(RLIMIT_FSIZE, &limit);
}

}  // namespace gatescope
