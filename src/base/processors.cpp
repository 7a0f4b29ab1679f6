#include "base/processors.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include "base/platform.h"

namespace gatescope {
namespace {

/// Of a machine with more processors than can be told.
constexpr int MANY = 1024;

/// The first words of a file; empty where there are none.
struct Words {
    std::string first;
    std::string second;
};

Words words_of(const std::string& path) {
    Words words;
    std::ifstream(path) >> words.first >> words.second;
    return words;
}

/// A quota of "max" or -1 is none.
int limit_of(const std::string& quota, const std::string& period) {
    const long time = std::atol(quota.c_str());
    const long span = std::atol(period.c_str());
    if (time <= 0 || span <= 0) return -1;
    return static_cast<int>(std::clamp((time + span - 1) / span, 1L, 1'000'000L));
}

/// Of the two kinds of groups that there are, either may stand here.
int limit_in(const std::string& directory) {
    const Words both = words_of(directory + "/cpu.max");
    const int limit = limit_of(both.first, both.second);
    if (limit != -1) return limit;
    return limit_of(words_of(directory + "/cpu.cfs_quota_us").first,
                    words_of(directory + "/cpu.cfs_period_us").first);
}

int smaller_limit(int one, int other) {
    return one == -1 || (other != -1 && other < one) ? other : one;
}

/// A group has no more than those above it. What a container sees of its own group may lie at
/// `top`, whatever path the group has outside.
int limit_up_to(const std::string& top, std::string path) {
    int limit = limit_in(top);
    while (!path.empty()) {
        limit = smaller_limit(limit, limit_in(top + path));
        path.erase(path.rfind('/') == std::string::npos ? 0 : path.rfind('/'));
    }
    return limit;
}

bool names_processor_time(const std::string& controllers) {
    std::istringstream names(controllers);
    for (std::string name; std::getline(names, name, ',');) {
        if (name == "cpu") return true;
    }
    return false;
}

}  // namespace

int processors_granted(const std::string& membership, const std::string& root) {
    int limit = -1;
    std::ifstream groups(membership);
    // Number of the hierarchy, its controllers, the group in it.
    std::string number;
    std::string controllers;
    std::string group;
    while (std::getline(groups, number, ':') && std::getline(groups, controllers, ':') &&
           std::getline(groups, group)) {
        if (group == "/") group.clear();
        if (controllers.empty()) limit = smaller_limit(limit, limit_up_to(root, group));
        if (!names_processor_time(controllers)) continue;
        limit = smaller_limit(limit, limit_up_to(root + "/" + controllers, group));
        limit = smaller_limit(limit, limit_up_to(root + "/cpu", group));
    }
    return limit;
}

int usable_processors() {
    const int told = processors_allowed();
    const int processors = told != 0 ? told : MANY;
    const int granted =
        HAS_CONTROL_GROUPS ? processors_granted("/proc/self/cgroup", "/sys/fs/cgroup") : -1;
    return std::max(1, smaller_limit(processors, granted));
}

}  // namespace gatescope
