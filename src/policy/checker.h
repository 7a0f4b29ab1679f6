#pragma once

#include <optional>
#include <string>

#include "policy/region.h"
#include "policy/tool_variables.h"

namespace gatescope {

// Runs the policy engine's checker on a gatebits file.

/// The purpose of a checker run.
enum class CheckMode { ERRORS, STATUS, COUNT };

/// The EMERGENCY_CHECKER of a program that was started with this path: the text before the last 'g'
/// in the path, and the checker's name.
std::string emergency_checker(const std::string& program_path);

/// Whether the checker exists as a file, or, if it is a bare name, on the search path.
bool checker_exists(const std::string& checker);

/// Selects the checker of the gatebits file, or the emergency one if that is empty or missing, and
/// stores the choice in `*tools`. False if neither exists.
bool find_checker(ToolSettings* tools);

/// The option of a check with a report for the operator.
inline constexpr char CHECK[] = "check";

/// The command line that runs `checker` on the gatebits file with this option.
std::string checker_command(const std::string& checker, const std::string& gatebits_file,
                            const char* option);

/// The result of a checker run.
struct CheckResult {
    bool CURRENT_GATEBITS_FILE_HAS_ERRORS = false;
    /// For CheckMode::COUNT the raw wait status of the shell, else 0.
    int CURRENT_GATEBITS_FILE_HAS_THIS_MANY_ERRORS = 0;
};

/// Runs the checker on the gatebits file in use, and stores its path in `*region`. If there is
/// none, tells the operator and returns nothing.
std::optional<CheckResult> perform_cbfile_only_check(CheckMode mode, RegionSettings* region);

}  // namespace gatescope
