#pragma once

#include <sys/types.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstddef>

namespace gatescope {

/// The progress of a long task, as one line on a terminal: bytes done, total bytes, seconds left.
/// The line appears when the task has taken a second, if standard error is a terminal, and is wiped
/// by the destructor. Code that prints or ends the program before that must call wipe() first.
class Progress {
  public:
    /// `total` is the number of bytes of the task, as far as it is known. Tests set the terminal
    /// and the delay of the line.
    explicit Progress(off_t total, int terminal = STDERR_FILENO,
                      std::chrono::milliseconds delay = std::chrono::seconds(1));
    ~Progress() { wipe(); }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// Adds to the bytes done, and draws the line if it is due.
    void advance(off_t bytes);
    /// Adds without drawing: for threads other than the one that constructed the object.
    void add(off_t bytes) { done_.fetch_add(bytes, std::memory_order_relaxed); }
    /// Erases the line until the next one is due.
    void wipe();

  private:
    using Clock = std::chrono::steady_clock;

    void draw(Clock::time_point now);

    const off_t total_;
    const int terminal_;
    const Clock::time_point begun_;
    Clock::time_point next_;
    std::atomic<off_t> done_ = 0;
    /// Length of the line on the terminal.
    std::size_t drawn_ = 0;
};

}  // namespace gatescope
