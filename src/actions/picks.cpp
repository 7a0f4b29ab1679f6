#include "actions/picks.h"

#include <limits>

#include "base/process_end.h"
#include "base/text.h"
#include "dialog/prompts.h"

std::string as_list(const std::vector<std::string>& entries) {
    std::string list;
    for (const std::string& entry : entries) list += entry + ",";
    if (!list.empty()) list.pop_back();
    return list;
}

int show_list(const std::string& title, const std::string& items, const std::string& option) {
    TMSG = title;
    GATEWARDEN_RESULT_STRING.clear();
    return make_selection(TMSG, items, option);
}

int pick_one(const std::string& title, const std::string& items) {
    do {
        if (show_list(title, items, SINGLE_CHOICE) == CANCELLED) return CANCELLED;
    } while (GATEWARDEN_RESULT_STRING.empty());
    return ANSWERED;
}

std::optional<int> number_at_front(const std::string& pick) {
    if (pick.empty() || pick.front() < '0' || pick.front() > '9') return std::nullopt;
    const long number = leading_number(pick.c_str());
    if (number > std::numeric_limits<int>::max()) return std::nullopt;
    return static_cast<int>(number);
}
