#include "logs/moments.h"

#include <thread>

namespace {

using namespace std::chrono_literals;

constexpr auto LATEST_WRITER = 2s;
constexpr auto SHORT_PAUSE = 5ms;

}  // namespace

Moment when_writers_have_written() {
    return std::chrono::steady_clock::now() + LATEST_WRITER;
}

void short_pause() {
    std::this_thread::sleep_for(SHORT_PAUSE);
}
