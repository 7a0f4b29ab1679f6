#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "messages/policy_texts.h"
#include "policy/gatebits.h"

namespace gatescope {

// gatescope's own eight settings, kept as comment lines in the gatebits file.

/// Indexes of GS_VAR and GS_VAR_NAME.
inline constexpr std::size_t UNIX_CHECKER = 0;
inline constexpr std::size_t WINDOWS_CHECKER = 1;
inline constexpr std::size_t UNIX_BROWSER = 2;
inline constexpr std::size_t WINDOWS_BROWSER = 3;
inline constexpr std::size_t UNIX_LOGGING_DIR = 4;
inline constexpr std::size_t WINDOWS_LOGGING_DIR = 5;
inline constexpr std::size_t UNIX_RESULTS_DIR = 6;
inline constexpr std::size_t WINDOWS_RESULTS_DIR = 7;

/// The values of the eight settings, and the default of the checker.
struct ToolSettings {
    std::array<std::string, GS_VAR_NAME.size()> GS_VAR;
    /// Path of the checker if that of the gatebits file does not exist.
    std::string EMERGENCY_CHECKER;
};

/// The lines of the eight settings, in the order of the table.
std::vector<std::string> tool_variable_lines(const ToolSettings& tools);

/// If `line` sets one of the eight settings, stores its value, the text after the first '=', in
/// GS_VAR.
void take_tool_variable(std::string_view line, ToolSettings* tools);

/// Sets GS_VAR from the gatebits file; a setting without a line becomes empty.
void build_var_list(const Gatebits& gatebits, ToolSettings* tools);

/// The value of GS_VAR[index] in the gatebits file; nothing if it has no such line.
std::optional<std::string> stored_variable(const Gatebits& gatebits, std::size_t index);

/// The gatebits file with `value` for GS_VAR[index] (0 to 7) and all eight settings at its top, in
/// the order of the table. The others have their values of the file, or of `tools` without a line.
Rewrite change_a_var(const Gatebits& gatebits, ToolSettings tools, std::size_t index,
                     const std::string& value);

}  // namespace gatescope
