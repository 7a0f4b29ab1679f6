#pragma once

#include <optional>
#include <string>

#include "policy/gatebits.h"

/// What the operator answered last while a request ran: empty when a dialog was left without an
/// answer, nothing when none was shown. After an empty one the submenu comes up again at once.
struct LastAnswer : std::optional<std::string> {
    using optional::optional;
    LastAnswer(const std::optional<std::string>& answer) : optional(answer) {}
    LastAnswer(const std::optional<std::string>& answer, ChangeResult change)
        : optional(answer), changed_meanwhile(change == ChangeResult::CHANGED_MEANWHILE) {}

    /// Whether it was for nothing: the operator was told that somebody else has changed the file,
    /// and goes back to the menu.
    bool changed_meanwhile = false;
};
/// The last answer of a request whose last dialog was left without one.
inline constexpr char UNANSWERED[] = "";
