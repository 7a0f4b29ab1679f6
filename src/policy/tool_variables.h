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

/// Places in GS_VAR and GS_VAR_NAME.
inline constexpr std::size_t UNIX_CHECKER = 0;
inline constexpr std::size_t WINDOWS_CHECKER = 1;
inline constexpr std::size_t UNIX_BROWSER = 2;
inline constexpr std::size_t WINDOWS_BROWSER = 3;
inline constexpr std::size_t UNIX_LOGGING_DIR = 4;
inline constexpr std::size_t WINDOWS_LOGGING_DIR = 5;
inline constexpr std::size_t UNIX_RESULTS_DIR = 6;
inline constexpr std::size_t WINDOWS_RESULTS_DIR = 7;

/// The eight values, and what stands in for one of them. Whoever holds the region's settings holds
/// these with them.
struct ToolSettings {
    std::array<std::string, GS_VAR_NAME.size()> GS_VAR;
    /// Where to look for the checker when the gatebits file names none that exists.
    std::string EMERGENCY_CHECKER;
};

/// The lines of the eight settings, in the order of the table.
std::vector<std::string> tool_variable_lines(const ToolSettings& tools);

/// Puts the value of `line`, everything after its first '=', into GS_VAR when the line sets one
/// of the eight.
void take_tool_variable(std::string_view line, ToolSettings* tools);

/// Empties GS_VAR and fills it from the gatebits file, so that a setting without a line is empty.
void build_var_list(const Gatebits& gatebits, ToolSettings* tools);

/// The value that the gatebits file has for GS_VAR[index]; nothing when it has no such line.
std::optional<std::string> stored_variable(const Gatebits& gatebits, std::size_t index);

/// The gatebits file with `value` for GS_VAR[index] (0 to 7) and all eight at its top, in the order
/// of the table: the others as the file has them, or as `tools` has those that it lacks.
Rewrite change_a_var(const Gatebits& gatebits, ToolSettings tools, std::size_t index,
                     const std::string& value);

}  // namespace gatescope
