#include "actions/picks.h"

#include <limits>

#include "base/text.h"
#include "dialog/prompts.h"

namespace gatescope {

Entered prompt_until_ok(std::string question, const std::string& def,
                        const std::function<Validity(const std::string& value)>& is_ok) {
    std::string last_answer;
    while (const auto answer = prompt(question, def)) {
        last_answer = *answer;
        const Validity validity = is_ok(*answer);
        if (validity.accepted()) return {answer, last_answer};
        question = validity.message();
    }
    return {std::nullopt, last_answer};
}

std::optional<std::string> pick_one(const std::string& title, const std::string& items) {
    std::optional<std::string> pick;
    do {
        pick = make_selection(title, items, SINGLE_CHOICE);
    } while (pick && pick->empty());
    return pick;
}

std::optional<int> number_at_front(const std::string& pick) {
    if (pick.empty() || pick.front() < '0' || pick.front() > '9') return std::nullopt;
    const long long number = leading_number(pick.c_str());
    if (number > std::numeric_limits<int>::max()) return std::nullopt;
    return static_cast<int>(number);
}

}  // namespace gatescope
