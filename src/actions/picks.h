#pragma once

#include <optional>
#include <string>
#include <vector>

// Lists of the actions, and what comes back from them.

/// The entries as one list, separated by commas.
std::string as_list(const std::vector<std::string>& entries);

/// Shows the list once, with TMSG set to its title and
/// GATEWARDEN_RESULT_STRING emptied before. A DialogCode.
int show_list(const std::string& title, const std::string& items, const std::string& option);

/// Shows the list, for a single choice, until something is picked. A DialogCode; the pick is in
/// GATEWARDEN_RESULT_STRING.
int pick_one(const std::string& title, const std::string& items);

/// The decimal number that a pick begins with; nothing when it does not begin with one.
std::optional<int> number_at_front(const std::string& pick);
