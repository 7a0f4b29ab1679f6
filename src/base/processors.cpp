#include "base/processors.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <string_view>

#include "base/platform.h"

namespace gatescope {
namespace {

/// Stands for a number of processors that a cpu_set_t cannot hold.
constexpr int MANY = 1024;

/// The limit of one cgroup, rounded up; -1 when there is none. cpu.max is "QUOTA PERIOD" in
/// microseconds; a quota of "max" is no limit.
int limit_in(const std::string& directory) {
    std::string quota;
    std::string period;
    std::ifstream(directory + "/cpu.max") >> quota >> period;
    const long time = std::atol(quota.c_str());
    const long span = std::atol(period.c_str());
    if (time <= 0 || span <= 0) return -1;
    return static_cast<int>(std::clamp((time + span - 1) / span, 1L, 1'000'000L));
}

int smaller_limit(int one, int other) {
    return one == -1 || (other != -1 && other < one) ? other : one;
}

/// The smallest limit of a cgroup and those above it. A container may see its own cgroup at `root`
/// although `path` is its path outside.
int limit_up_to(const std::string& root, std::string path) {
    int limit = limit_in(root);
    while (!path.empty()) {
        limit = smaller_limit(limit, limit_in(root + path));
        path.erase(path.rfind('/') == std::string::npos ? 0 : path.rfind('/'));
    }
    return limit;
}

}  // namespace

int processors_granted(const std::string& membership, const std::string& root) {
    constexpr std::string_view VERSION_2 = "0::";
    std::ifstream cgroups(membership);
    for (std::string line; std::getline(cgroups, line);) {
        if (line.starts_with(VERSION_2)) return limit_up_to(root, line.substr(VERSION_2.size()));
    }
    return -1;
}

int usable_processors() {
    const int allowed = processors_allowed();
    const int processors = allowed != 0 ? allowed : MANY;
    const int granted =
        HAS_CGROUPS ? processors_granted("/proc/self/cgroup", "/sys/fs/cgroup") : -1;
    return std::max(1, smaller_limit(processors, granted));
}

}  // namespace gatescope
