#pragma once

#include <sys/types.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstddef>

namespace gatescope {

/// How far a long work has come, as one line on a terminal: bytes done of all, seconds left.
/// Whoever begins the work makes one and hands it down; whoever does the work tells it of the bytes
/// that are done. Nothing is drawn before the work has lasted a second, nor where standard error
/// is no terminal.
///
/// The line stays while the work goes on, and is wiped when the Progress goes. Whoever ends the
/// program, or says something, before that calls wipe first.
class Progress {
  public:
    /// `total`: the bytes of the whole work, as far as they are known. The rest is for tests.
    explicit Progress(off_t total, int terminal = STDERR_FILENO,
                      std::chrono::milliseconds patience = std::chrono::seconds(1));
    ~Progress() { wipe(); }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// So many more bytes are done; draws the line when it is time.
    void advance(off_t bytes);
    /// The same without drawing: for all threads but the one that began the work.
    void add(off_t bytes) { done_.fetch_add(bytes, std::memory_order_relaxed); }
    /// Takes the line away until the next one is due.
    void wipe();

  private:
    using Clock = std::chrono::steady_clock;

    void draw(Clock::time_point now);

    const off_t total_;
    const int terminal_;
    const Clock::time_point begun_;
    Clock::time_point next_;
    std::atomic<off_t> done_ = 0;
    /// Characters of the line that is there.
    std::size_t drawn_ = 0;
};

}  // namespace gatescope
