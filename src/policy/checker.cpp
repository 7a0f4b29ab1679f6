#include "policy/checker.h"

#include <unistd.h>

#include "base/child.h"
#include "base/files.h"
#include "base/filled.h"
#include "base/search_path.h"
#include "dialog/clearprompt.h"
#include "dialog/messages.h"
#include "messages/identity.h"
#include "messages/policy_texts.h"

namespace gatescope {
namespace {

/// Quoted checker, gatebits file, option.
constexpr char CHECKER_LINE[] = "%s %s -%s";

constexpr char ERROR_ONLY[] = "error_only";
constexpr char STATUS_ONLY[] = "status_only";
constexpr char ERROR_COUNT[] = "error_count";
/// In the order of CheckMode.
constexpr const char* MODE_OPTIONS[] = {ERROR_ONLY, STATUS_ONLY, ERROR_COUNT};

}  // namespace

std::string emergency_checker(const std::string& program_path) {
    // The last such letter may be in the name of a directory.
    const auto cut = program_path.rfind(SELF[0]);
    return (cut == std::string::npos ? "" : program_path.substr(0, cut)) + GATEWARDEN_LIT;
}

bool checker_exists(const std::string& checker) {
    if (checker.empty()) return false;
    if (this_file_exists(checker)) return true;
    return checker.find('/') == std::string::npos && is_on_search_path(checker, F_OK);
}

bool find_checker(ToolSettings* tools) {
    std::string& checker = tools->GS_VAR[UNIX_CHECKER];
    if (!checker_exists(checker)) checker = tools->EMERGENCY_CHECKER;
    return checker_exists(checker);
}

std::string checker_command(const std::string& checker, const std::string& gatebits_file,
                            const char* option) {
    return filled(CHECKER_LINE, quoted(checker).c_str(), path_argument(gatebits_file).c_str(),
                  option);
}

std::optional<CheckResult> perform_cbfile_only_check(CheckMode mode, RegionSettings* region) {
    const char* option = MODE_OPTIONS[static_cast<std::size_t>(mode)];
    const bool found = find_checker(&region->tools);
    const std::string& checker = region->tools.GS_VAR[UNIX_CHECKER];
    if (!found) {
        advise_wait(filled(CHECKER_NOT_FOUND, GS_VAR_NAME[UNIX_CHECKER], checker.c_str(),
                           region->ENTERPRIZE_NAME.c_str()));
        return std::nullopt;
    }
    const int status =
        run_in_shell(checker_command(checker, region->ENTERPRIZE_PERMISSION_FILE, option));
    return CheckResult{status != 0, mode == CheckMode::COUNT ? status : 0};
}

}  // namespace gatescope
