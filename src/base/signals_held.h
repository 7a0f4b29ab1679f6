#pragma once

#include <csignal>

/// The signals that ask a process to end: SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE.
sigset_t ending_signals();

/// Holds those signals back as long as it lives.
class SignalsHeld {
  public:
    SignalsHeld();
    ~SignalsHeld();
    SignalsHeld(const SignalsHeld&) = delete;
    SignalsHeld& operator=(const SignalsHeld&) = delete;

    /// What was held back before.
    [[nodiscard]] const sigset_t& before() const { return before_; }

  private:
    sigset_t before_;
};
