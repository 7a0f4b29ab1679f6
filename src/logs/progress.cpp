#include "logs/progress.h"

#include <algorithm>
#include <string>

#include "base/filled.h"
#include "messages/log_texts.h"

namespace gatescope {
namespace {

/// Between one line and the next.
constexpr std::chrono::milliseconds BETWEEN_LINES(200);
constexpr off_t MEGABYTE = 1000000;

/// The line is a courtesy: the work goes on where it cannot be drawn.
void put(int terminal, const std::string& text) {
    [[maybe_unused]] const ssize_t written = write(terminal, text.data(), text.size());
}

}  // namespace

Progress::Progress(off_t total, int terminal, std::chrono::milliseconds patience)
    : total_(total), terminal_(terminal), begun_(Clock::now()), next_(begun_ + patience) {}

void Progress::advance(off_t bytes) {
    add(bytes);
    const Clock::time_point now = Clock::now();
    if (now >= next_) draw(now);
}

void Progress::draw(Clock::time_point now) {
    next_ = now + BETWEEN_LINES;
    if (isatty(terminal_) == 0) {
        next_ = Clock::time_point::max();
        return;
    }
    const long long done = std::max<off_t>(done_.load(std::memory_order_relaxed), 1);
    // A log may have grown since the total was taken.
    const long long total = std::max<long long>(total_, done);
    const double lasted = std::chrono::duration<double>(now - begun_).count();
    const double left = lasted * static_cast<double>(total - done) / static_cast<double>(done);
    std::string line = filled(PROGRESS_LINE, done / MEGABYTE, total / MEGABYTE, left);
    const std::size_t length = line.size();
    line.resize(std::max(length, drawn_), ' ');
    drawn_ = length;
    // The cursor stays in front: whatever ends the program, what comes next stands over the line.
    put(terminal_, "\r" + line + "\r");
}

void Progress::wipe() {
    if (drawn_ != 0) put(terminal_, "\r" + std::string(drawn_, ' ') + "\r");
    drawn_ = 0;
}

}  // namespace gatescope
