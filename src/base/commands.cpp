#include "base/commands.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "base/filled.h"
#include "base/text.h"
#include "messages/command_names.h"

namespace {

std::string names_between_commas() {
    std::string all = ",";
    for (const auto name : TRIGGERABLE_COMMANDS) all.append(name) += ',';
    return all;
}

std::string numbers_at_the_names() {
    std::string map(ALL_TRIGGERABLE_COMMANDS.size(), ',');
    std::size_t at = 1;
    int number = 0;
    for (const auto name : TRIGGERABLE_COMMANDS) {
        const std::string digits = std::to_string(++number);
        std::copy(digits.begin(), digits.end(), map.begin() + static_cast<std::ptrdiff_t>(at));
        at += name.size() + 1;
    }
    return map;
}

}  // namespace

// The map is made from the names, so it has to stand behind them.
const std::string ALL_TRIGGERABLE_COMMANDS = names_between_commas();
const std::string ALL_TRIGGERABLE_COMMANDS_MAP = numbers_at_the_names();
const char* const p_com = ALL_TRIGGERABLE_COMMANDS.c_str();
const char* const p_map = ALL_TRIGGERABLE_COMMANDS_MAP.c_str();

int command_number(const std::string& name) {
    const auto place = ALL_TRIGGERABLE_COMMANDS.find(filled(",%s,", name.c_str()));
    if (place == std::string::npos) return 0;
    return static_cast<int>(leading_number(p_map + place + 1));
}

bool is_ucm_vob(const std::string& vob_tag) {
    std::fflush(stdout);
    FILE* listing = popen(filled("cleartool lsvob %s", vob_tag.c_str()).c_str(), "r");
    if (listing == nullptr) return false;
    char* line = nullptr;
    std::size_t capacity = 0;
    bool found = false;
    while (getline(&line, &capacity, listing) >= 0) {
        found = found || std::string_view(line).find("(ucmvob") != std::string_view::npos;
    }
    std::free(line);
    pclose(listing);
    return found;
}
