#pragma once

#include <chrono>
#include <thread>

namespace gatescope {

/// Calls `attempt` until it returns true, with a pause after each time that it does not, for no
/// longer than `patience`; at least once. Whether it did.
template <typename Attempt>
bool succeeds_within(std::chrono::milliseconds patience, Attempt attempt) {
    constexpr std::chrono::milliseconds PAUSE(10);
    const auto end = std::chrono::steady_clock::now() + patience;
    while (!attempt()) {
        if (std::chrono::steady_clock::now() >= end) return false;
        std::this_thread::sleep_for(PAUSE);
    }
    return true;
}

}  // namespace gatescope
