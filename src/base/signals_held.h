#pragma once

#include <csignal>

namespace gatescope {

/// Every signal that ends a process by default and can be caught, but for the one of the file size
/// limit.
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

}  // namespace gatescope
