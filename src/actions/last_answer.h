#pragma once

#include <optional>
#include <string>

namespace gatescope {

/// What the operator answered last while a request ran.
struct LastAnswer {
    /// Empty when a dialog was left without an answer, nothing when none was shown. After an empty
    /// one the submenu comes up again at once.
    std::optional<std::string> text = {};
    /// The operator was told that another process has changed the file meanwhile, and goes back to
    /// the menu.
    bool changed_meanwhile = false;
};
/// The last answer of a request whose last dialog was left without one.
inline constexpr char UNANSWERED[] = "";

}  // namespace gatescope
