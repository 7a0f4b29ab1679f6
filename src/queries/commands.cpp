#include "queries/commands.h"

#include <algorithm>

#include "base/filled.h"
#include "base/text.h"
#include "messages/command_names.h"

namespace gatescope {

std::string ALL_TRIGGERABLE_COMMANDS() {
    std::string all = ",";
    for (const auto name : TRIGGERABLE_COMMANDS) all.append(name) += ',';
    return all;
}

std::string ALL_TRIGGERABLE_COMMANDS_MAP() {
    std::string map(ALL_TRIGGERABLE_COMMANDS().size(), ',');
    std::size_t at = 1;
    int number = 0;
    for (const auto name : TRIGGERABLE_COMMANDS) {
        const std::string digits = std::to_string(++number);
        std::copy(digits.begin(), digits.end(), map.begin() + static_cast<std::ptrdiff_t>(at));
        at += name.size() + 1;
    }
    return map;
}

int command_number(const std::string& name) {
    const auto place = ALL_TRIGGERABLE_COMMANDS().find(filled(",%s,", name.c_str()));
    if (place == std::string::npos) return 0;
    return static_cast<int>(leading_number(ALL_TRIGGERABLE_COMMANDS_MAP().c_str() + place + 1));
}

}  // namespace gatescope
