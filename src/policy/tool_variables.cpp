#include "policy/tool_variables.h"

#include <vector>

#include "policy/gatebits_file.h"

std::array<std::string, GS_VAR_NAME.size()> GS_VAR;

std::optional<std::size_t> tool_variable_of(std::string_view line) {
    const std::string_view text = without_leading_blanks(line);
    for (std::size_t i = 0; i < GS_VAR_NAME.size(); ++i) {
        if (text.starts_with(GS_VAR_NAME[i])) return i;
    }
    return std::nullopt;
}

void take_tool_variable(std::string_view line) {
    if (const auto i = tool_variable_of(line)) GS_VAR[*i] = line.substr(line.find('=') + 1);
}

void build_var_list() {
    GS_VAR.fill("");
    for (const std::string& line : read_gatebits_lines()) take_tool_variable(line);
}

int change_a_var(int index, const std::string& value) {
    GS_VAR.at(static_cast<std::size_t>(index)) = value;
    std::vector<std::string> lines;
    for (std::size_t i = 0; i < GS_VAR_NAME.size(); ++i)
        lines.push_back(GS_VAR_NAME[i] + GS_VAR[i]);
    for (const std::string& line : read_gatebits_lines()) {
        if (!tool_variable_of(line)) lines.push_back(line);
    }
    write_gatebits_lines(lines);
    return 0;
}
