#pragma once

#include <optional>
#include <string>

// The policy engine's own checker, run on the gatebits file in use.

/// Where to look for the checker when the gatebits file names none that exists. Set once, at
/// start-up, from the name that the run was started with.
extern std::string EMERGENCY_CHECKER;

/// What a checker run is asked for.
inline constexpr char CHECK_ERRORS = 'E';
inline constexpr char CHECK_STATUS = 'S';
inline constexpr char CHECK_COUNT = 'C';

/// Derives EMERGENCY_CHECKER from the path that this program was started with: everything before
/// the last 'g' in it, wherever that stands, and the checker's name.
void set_emergency_checker(const std::string& program_path);

/// Whether there is such a program: a bare name, which the shell looks for on the search path,
/// exists when it is there.
bool checker_exists(const std::string& checker);

/// The gatebits file's checker, or the emergency one where that is empty or missing; the choice
/// is stored in GS_VAR, in memory only. False when neither exists.
bool find_checker();

/// The command line that runs the checker that find_checker chose over the gatebits file in use,
/// with `word` as its option.
std::string checker_command(const char* word);

/// What a checker run says of the gatebits file.
struct CheckResult {
    bool CURRENT_GATEBITS_FILE_HAS_ERRORS = false;
    /// The shell's status, undivided, of a counting run; 0: no errors.
    int CURRENT_GATEBITS_FILE_HAS_THIS_MANY_ERRORS = 0;
};

/// Runs the checker in one of the three modes. Nothing, after telling the operator, when it could
/// not be found in the `region` of that name. Any other mode gripes.
std::optional<CheckResult> perform_cbfile_only_check(char mode, const std::string& region);
