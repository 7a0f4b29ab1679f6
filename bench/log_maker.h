#pragma once

#include <cstdint>
#include <random>
#include <string>

namespace gatescope {

// Records for the benchmarks.

inline constexpr int BENCH_FILES = 21;
inline constexpr int BENCH_USERS = 500;
inline constexpr int BENCH_DAYS = 125;
inline constexpr int BENCH_COMMANDS = 54;

/// Appends a random record to `text`: an allowed command with probability 2/5, and a denial, a use
/// of a bit or a decision of the parent policy with 1/5 each.
inline void append_record(std::mt19937& random, std::int64_t time, std::string* text) {
    const std::string user = "user" + std::to_string(random() % BENCH_USERS);
    const std::string command = std::to_string(1 + random() % BENCH_COMMANDS);
    const auto record = [&](char kind, const std::string& tail) {
        *text += std::to_string(time) + ":" + kind + ":" + user + "[" + command + "]" + tail + "\n";
    };
    switch (random() % 5) {
        case 0:
            return record('D', std::string(1, "KBRC"[random() % 4]) + "<" +
                                   std::to_string(random() % 40) + ">");
        case 1:
            return record('B', "-<" + std::to_string(random() % 24) + ">");
        case 2:
            return record('P', random() % 4 == 0 ? "d<->" : "a<->");
        default:
            return record('S', "-<->");
    }
}

}  // namespace gatescope
