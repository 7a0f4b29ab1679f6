#pragma once

#include <functional>
#include <optional>
#include <string>

#include "policy/validators.h"

namespace gatescope {

// The lists and prompts of the actions, and what comes back from them.

/// What the operator entered.
struct Entered {
    /// The new value; nothing when the operator cancelled.
    std::optional<std::string> value;
    /// The answer given last, even where a cancel followed; empty when there was none.
    std::string last_answer;
};

/// Prompts until `is_ok` accepts the answer or the operator cancels. A rejected answer's message
/// takes the place of `question`; what is there to be edited is `def` each time.
Entered prompt_until_ok(std::string question, const std::string& def,
                        const std::function<Validity(const std::string& value)>& is_ok);

/// Shows the list, for a single choice, until something is picked. The pick, or nothing when the
/// operator cancels.
std::optional<std::string> pick_one(const std::string& title, const std::string& items);

/// The decimal number that a pick begins with; nothing when it does not begin with one.
std::optional<int> number_at_front(const std::string& pick);

}  // namespace gatescope
