#include "policy/tool_variables.h"

namespace gatescope {
namespace {

/// The index of the setting that `line` sets, if any.
std::optional<std::size_t> tool_variable_of(std::string_view line) {
    const std::string_view text = without_leading_blanks(line);
    for (std::size_t i = 0; i < GS_VAR_NAME.size(); ++i) {
        if (text.starts_with(GS_VAR_NAME[i])) return i;
    }
    return std::nullopt;
}

std::string value_in(std::string_view line) {
    return std::string(line.substr(line.find('=') + 1));
}

/// The lines with the eight settings in front.
std::vector<std::string> with_settings_on_top(const ToolSettings& tools,
                                              const std::vector<std::string>& lines) {
    std::vector<std::string> all = tool_variable_lines(tools);
    for (const std::string& line : lines) {
        if (!tool_variable_of(line)) all.push_back(line);
    }
    return all;
}

}  // namespace

std::vector<std::string> tool_variable_lines(const ToolSettings& tools) {
    std::vector<std::string> lines;
    for (std::size_t i = 0; i < GS_VAR_NAME.size(); ++i)
        lines.push_back(GS_VAR_NAME[i] + tools.GS_VAR[i]);
    return lines;
}

void take_tool_variable(std::string_view line, ToolSettings* tools) {
    if (const auto i = tool_variable_of(line)) tools->GS_VAR[*i] = value_in(line);
}

void build_var_list(const Gatebits& gatebits, ToolSettings* tools) {
    tools->GS_VAR.fill("");
    for (const std::string& line : gatebits.lines()) take_tool_variable(line, tools);
}

std::optional<std::string> stored_variable(const Gatebits& gatebits, std::size_t index) {
    std::optional<std::string> value;
    for (const std::string& line : gatebits.lines()) {
        // The last of several lines counts.
        if (tool_variable_of(line) == index) value = value_in(line);
    }
    return value;
}

Rewrite change_a_var(const Gatebits& gatebits, ToolSettings tools, std::size_t index,
                     const std::string& value) {
    // Keeps the settings that another process has changed in the meantime.
    for (const std::string& line : gatebits.lines()) take_tool_variable(line, &tools);
    tools.GS_VAR.at(index) = value;
    return {ChangeResult::WRITTEN, Gatebits(with_settings_on_top(tools, gatebits.lines()))};
}

}  // namespace gatescope
