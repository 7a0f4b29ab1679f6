#pragma once

#include <string>

namespace gatescope {

/// How many processors this process may keep busy: those that its affinity allows, but no more
/// than its control groups grant it time on, rounded up. At least 1.
int usable_processors();

/// What the control groups grant: those named in the file `membership` (as /proc/self/cgroup is
/// written) and all above them, looked up below `root`. -1 when they set no limit.
int processors_granted(const std::string& membership, const std::string& root);

}  // namespace gatescope
