#pragma once

#include <functional>
#include <optional>
#include <string>

#include "policy/validators.h"

namespace gatescope {

// The lists and prompts of the actions.

/// The operator's input.
struct Entered {
    /// The new value; nothing when the operator cancelled.
    std::optional<std::string> value;
    /// The last answer, also before a cancel; empty when there was none.
    std::string last_answer;
};

/// Prompts until `is_ok` accepts the answer or the operator cancels. After a rejected answer its
/// message replaces `question`; the default is always `def`.
Entered prompt_until_ok(std::string question, const std::string& def,
                        const std::function<Validity(const std::string& value)>& is_ok);

/// Shows the list until an entry is picked. The pick; nothing when the operator cancels.
std::optional<std::string> pick_one(const std::string& title, const std::string& items);

/// The decimal number at the start of a pick; nothing without one, or when it exceeds an int.
std::optional<int> number_at_front(const std::string& pick);

}  // namespace gatescope
