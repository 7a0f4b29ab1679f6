#include "logs/progress.h"

#include <algorithm>
#include <string>

#include "base/filled.h"
#include "messages/log_texts.h"

namespace gatescope {
namespace {

constexpr std::chrono::milliseconds REDRAW_INTERVAL(200);
constexpr off_t MEGABYTE = 1000000;

/// Ignores errors: the task continues without its line.
void write_to_terminal(int terminal, const std::string& text) {
    [[maybe_unused]] const ssize_t written = write(terminal, text.data(), text.size());
}

}  // namespace

Progress::Progress(off_t total, int terminal, std::chrono::milliseconds delay)
    : total_(total), terminal_(terminal), begun_(Clock::now()), next_(begun_ + delay) {}

void Progress::advance(off_t bytes) {
    add(bytes);
    const Clock::time_point now = Clock::now();
    if (now >= next_) draw(now);
}

void Progress::draw(Clock::time_point now) {
    next_ = now + REDRAW_INTERVAL;
    if (isatty(terminal_) == 0) {
        next_ = Clock::time_point::max();
        return;
    }
    const long long done = std::max<off_t>(done_.load(std::memory_order_relaxed), 1);
    // A log may have grown since the total was taken.
    const long long total = std::max<long long>(total_, done);
    const double elapsed = std::chrono::duration<double>(now - begun_).count();
    const double left = elapsed * static_cast<double>(total - done) / static_cast<double>(done);
    std::string line = filled(PROGRESS_LINE, done / MEGABYTE, total / MEGABYTE, left);
    const std::size_t length = line.size();
    line.resize(std::max(length, drawn_), ' ');
    drawn_ = length;
    // The cursor stays in the first column, so that later output overwrites the line.
    write_to_terminal(terminal_, "\r" + line + "\r");
}

void Progress::wipe() {
    const std::string blanks(drawn_, ' ');
    if (drawn_ != 0) write_to_terminal(terminal_, "\r" + blanks + "\r");
    drawn_ = 0;
}

}  // namespace gatescope
