#pragma once

#include <optional>
#include <string>

#include "policy/region.h"
#include "policy/tool_variables.h"

namespace gatescope {

// The policy engine's own checker, run on a gatebits file.

/// What a checker run is asked for.
enum class CheckMode { ERRORS, STATUS, COUNT };

/// The EMERGENCY_CHECKER of a program that was started with this path: everything before the last
/// 'g' in it, wherever that stands, and the checker's name.
std::string emergency_checker(const std::string& program_path);

/// Whether there is such a program: a bare name, which the shell looks for on the search path,
/// exists when it is there.
bool checker_exists(const std::string& checker);

/// The gatebits file's checker, or the emergency one where that is empty or missing; the choice
/// is stored in `*tools`, in memory only. False when neither exists.
bool find_checker(ToolSettings* tools);

/// The option of a check whose report the operator reads.
inline constexpr char CHECK[] = "check";

/// The command line that runs `checker` over the gatebits file, with `word` as its option.
std::string checker_command(const std::string& checker, const std::string& gatebits_file,
                            const char* word);

/// What a checker run says of the gatebits file.
struct CheckResult {
    bool CURRENT_GATEBITS_FILE_HAS_ERRORS = false;
    /// The shell's status, undivided, of a counting run; 0: no errors.
    int CURRENT_GATEBITS_FILE_HAS_THIS_MANY_ERRORS = 0;
};

/// Runs the checker over the gatebits file in use. Nothing, after telling the operator, when it
/// could not be found; the one that was found is stored in `*region`.
std::optional<CheckResult> perform_cbfile_only_check(CheckMode mode, RegionSettings* region);

}  // namespace gatescope
