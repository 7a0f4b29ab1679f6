#pragma once

#include <csignal>

namespace gatescope {

/// The signals that end a process by default and can be caught, except SIGXFSZ.
sigset_t ending_signals();

/// Blocks the ending_signals during its lifetime.
class SignalsBlocked {
  public:
    SignalsBlocked();
    ~SignalsBlocked();
    SignalsBlocked(const SignalsBlocked&) = delete;
    SignalsBlocked& operator=(const SignalsBlocked&) = delete;

    /// The signal mask before the blocking.
    [[nodiscard]] const sigset_t& previous_mask() const { return previous_mask_; }

  private:
    sigset_t previous_mask_;
};

}  // namespace gatescope
