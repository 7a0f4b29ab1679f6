#include "policy/tool_variables.h"

namespace {

/// Which of the eight settings `line` sets, if any.
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

/// The value that the lines set; of several the last one counts.
std::optional<std::string> value_among(const std::vector<std::string>& lines, std::size_t index) {
    std::optional<std::string> value;
    for (const std::string& line : lines) {
        if (tool_variable_of(line) == index) value = value_in(line);
    }
    return value;
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

void build_var_list(const std::string& gatebits_file, ToolSettings* tools) {
    tools->GS_VAR.fill("");
    for (const std::string& line : read_gatebits_lines(gatebits_file))
        take_tool_variable(line, tools);
}

std::optional<std::string> stored_variable(const std::string& gatebits_file, std::size_t index) {
    return value_among(read_gatebits_lines(gatebits_file), index);
}

ChangeResult change_a_var(const std::string& gatebits_file, ToolSettings* tools, int index,
                          const std::string& value, const std::optional<std::string>& stored) {
    const auto at = static_cast<std::size_t>(index);
    ChangeResult result = ChangeResult::CHANGED_MEANWHILE;
    change_gatebits_lines(gatebits_file, [&](std::vector<std::string>* lines) {
        if (stored && *stored != value_among(*lines, at).value_or("")) return false;
        // What another process has set meanwhile must not be undone.
        for (const std::string& line : *lines) take_tool_variable(line, tools);
        tools->GS_VAR.at(at) = value;
        *lines = with_settings_on_top(*tools, *lines);
        result = ChangeResult::WRITTEN;
        return true;
    });
    return result;
}
