#pragma once

#include <string>

namespace gatescope {

/// The number of processors that this process may keep busy: as many as its CPU affinity and its
/// cgroup (version 2) allow, at least 1.
int usable_processors();

/// The CPU limit, in processors rounded up, of the cgroup in the file `membership` (in the format
/// of /proc/self/cgroup) and of all cgroups above it, read below `root`. -1 when there is no limit.
int processors_granted(const std::string& membership, const std::string& root);

}  // namespace gatescope
