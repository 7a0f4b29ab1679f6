#pragma once

#include <csignal>

namespace gatescope {

/// The signals that end a process by default and can be caught, except SIGXFSZ.
sigset_t ending_signals();

/// Blocks the ending_signals while it lives.
class SignalsHeld {
  public:
    SignalsHeld();
    ~SignalsHeld();
    SignalsHeld(const SignalsHeld&) = delete;
    SignalsHeld& operator=(const SignalsHeld&) = delete;

    /// The signal mask from before.
    [[nodiscard]] const sigset_t& before() const { return before_; }

  private:
    sigset_t before_;
};

}  // namespace gatescope
