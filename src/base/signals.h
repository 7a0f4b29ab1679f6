#pragma once

#include <csignal>

/// From now on the signals that ask a process to end (SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE)
/// end the child that is being waited for, remove the temporary files, and only then end the
/// process, as they would have without this. A signal that was ignored at start stays ignored.
/// A file size limit becomes an error of the write that meets it.
void end_in_order_on_signals();

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
