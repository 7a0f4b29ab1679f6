#pragma once

#include <optional>
#include <string>

// Lists of the actions, and what comes back from them.

/// Shows the list, for a single choice, until something is picked. The pick, or nothing when the
/// operator cancels.
std::optional<std::string> pick_one(const std::string& title, const std::string& items);

/// The decimal number that a pick begins with; nothing when it does not begin with one.
std::optional<int> number_at_front(const std::string& pick);
