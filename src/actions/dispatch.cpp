#include <algorithm>
#include <string>

#include "actions/actions.h"
#include "actions/field_table.h"
#include "actions/menus.h"
#include "actions/requests.h"
#include "base/exit_status.h"
#include "base/filled.h"
#include "dialog/messages.h"
#include "dialog/process_end.h"
#include "dialog/prompts.h"
#include "messages/action_texts.h"
#include "policy/checker.h"
#include "policy/gatebits_file.h"

namespace gatescope {

// Runs actions from the submenu, and guarded actions.

namespace {

/// After so many runs in a row without a change of the file, an error that was in it before no
/// longer repeats the action.
constexpr int MOST_RUNS_UNCHANGED = 3;

/// Runs the pick. An entry that only the installer is shown does nothing here: the main loop, which
/// shows the same menu, runs it.
LastAnswer run_submenu_pick(const Options& options, RegionInUse& region,
                            const std::string& QUERY_OR_ACTION) {
    const Request* request = request_labelled(QUERY_OR_ACTION);
    if (request == nullptr) return {};
    if (request->in_submenu == Shown::NO || request->in_submenu == Shown::TO_INSTALLER_ONLY) {
        return {};
    }
    return request->execute(options, region).last_answer;
}

/// The menu after the submenu.
int leave_submenu(const Options& options) {
    if (options.runs_once() || options.IS_DURING_INSTALL) clean_exit(STATUS_SUCCESS);
    return MAIN_MENU;
}

/// Whether the action edits a path outside the gatebits file. The checker does not examine such
/// files, so there is no check after the action.
bool edits_path(int number) {
    return std::any_of(field_editors().begin(), field_editors().end(),
                       [&](const FieldEditor& field) {
                           return field.action == number && field.kind->names_a_path;
                       });
}

/// The result of the check before an action.
struct CheckBefore {
    bool errors = false;
    int count = 0;
};

CheckBefore check_before(RegionSettings* region) {
    CheckBefore before;
    const auto status = perform_cbfile_only_check(CheckMode::STATUS, region);
    if (!status || !status->CURRENT_GATEBITS_FILE_HAS_ERRORS) return before;
    before.errors = true;
    const auto counted = perform_cbfile_only_check(CheckMode::COUNT, region);
    if (counted) before.count = counted->CURRENT_GATEBITS_FILE_HAS_THIS_MANY_ERRORS;
    return before;
}

/// Whether the file passes the second check: without errors before, it must have none; else fewer
/// than before.
bool is_good_enough(const CheckResult& after, const CheckBefore& before) {
    return before.errors ? after.CURRENT_GATEBITS_FILE_HAS_THIS_MANY_ERRORS < before.count
                         : !after.CURRENT_GATEBITS_FILE_HAS_ERRORS;
}

/// Whether the file has at most as many errors as at the start of A_X. All errors are new when
/// there were none before the last run.
bool has_no_new_errors(const CheckBefore& at_entry, const CheckBefore& before,
                       const CheckResult& after) {
    return before.errors && after.CURRENT_GATEBITS_FILE_HAS_THIS_MANY_ERRORS <= at_entry.count;
}

}  // namespace

int A_2(const Options& options, RegionInUse& region) {
    const bool during_install = options.IS_DURING_INSTALL;
    // The submenu is shown again after an empty last answer, and after one that looks like a
    // separator.
    std::string last_answer;
    while (last_answer.empty() || is_separator(last_answer)) {
        const auto pick =
            make_selection(submenu_title(region.settings.ENTERPRIZE_NAME, during_install),
                           submenu_entries(during_install), SINGLE_CHOICE);
        if (!pick) return leave_submenu(options);
        last_answer = run_submenu_pick(options, region, *pick).text.value_or(*pick);
    }
    return SUBMENU;
}

LastAnswer A_X(const Options& options, RegionInUse& region, int n) {
    CheckBefore before = check_before(&region.settings);
    const CheckBefore at_entry = before;
    const Request* request = request_numbered(RequestKind::ACTION, n);
    if (request == nullptr || !request->guarded) gripe(INCOMPLETE_ACTION_CODING);
    const std::string& gatebits_file = region.settings.ENTERPRIZE_PERMISSION_FILE;
    const bool is_checked = !edits_path(n);
    LastAnswer last_answer;
    for (int runs_unchanged = 0;; before = check_before(&region.settings)) {
        const std::string bytes = is_checked ? read_gatebits_bytes(gatebits_file) : "";
        // After a run without a dialog the previous answer stays.
        const LastAnswer answer = request->handler(options, region, *request).last_answer;
        if (answer.text) last_answer = answer;
        // Entering another value would not help.
        if (last_answer.changed_meanwhile || !is_checked) return last_answer;
        const auto after = perform_cbfile_only_check(
            before.errors ? CheckMode::COUNT : CheckMode::STATUS, &region.settings);
        if (!after || is_good_enough(*after, before)) return last_answer;
        runs_unchanged = read_gatebits_bytes(gatebits_file) != bytes ? 0 : runs_unchanged + 1;
        if (runs_unchanged >= MOST_RUNS_UNCHANGED && has_no_new_errors(at_entry, before, *after)) {
            return last_answer;
        }
        advise_wait(AX_MSG);
    }
}

bool A_during_install(bool during_install, const char* title) {
    if (!during_install) return false;
    const std::string label = title;
    const auto dash = label.find(LABEL_DASH);
    advise_wait(dash == std::string::npos
                    ? NO_LABEL_DURING_INSTALL
                    : filled(NOT_DURING_INSTALL,
                             label.substr(dash + std::string(LABEL_DASH).size()).c_str()));
    return true;
}

}  // namespace gatescope
