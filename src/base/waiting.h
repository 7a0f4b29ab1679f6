#pragma once

#include <chrono>
#include <thread>

namespace gatescope {

/// Calls `attempt` at least once, and again after a pause until it returns true or `patience` is
/// over. Whether it returned true.
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
