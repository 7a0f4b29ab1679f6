#pragma once

#include <optional>
#include <string>

namespace gatescope {

/// The operator's last answer during a request.
struct LastAnswer {
    /// Nothing when no dialog was shown; empty after a cancelled one, and the submenu is then shown
    /// again at once.
    std::optional<std::string> text = {};
    /// Whether the request ended because another process has changed the file.
    bool changed_meanwhile = false;
};
/// The last answer after a cancelled dialog.
inline constexpr char UNANSWERED[] = "";

}  // namespace gatescope
