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

// The submenu and the guard: how an action is run, whichever it is.

namespace {

/// How often an operator may leave an action without having written anything before an error that
/// was in the file all along stops holding them in it.
constexpr int TIMES_LEFT_UNCHANGED = 3;

/// Runs what was picked. An entry that only the installer is shown does nothing here: the main
/// loop, which shows the same menu, runs it.
LastAnswer run_submenu_pick(const Options& options, RegionInUse& region,
                            const std::string& QUERY_OR_ACTION) {
    const Request* request = request_labelled(QUERY_OR_ACTION);
    if (request == nullptr) return {};
    if (request->in_submenu == Shown::NO || request->in_submenu == Shown::TO_INSTALLER_ONLY) {
        return {};
    }
    return request->execute(options, region).last_answer;
}

/// The menu that comes after the submenu.
int leave_submenu(const Options& options) {
    if (options.runs_once() || options.IS_DURING_INSTALL) clean_exit(STATUS_OF_A_WISHED_END);
    return MAIN_MENU;
}

/// Whether action n enters a path outside the gatebits file: the checker does not judge that, so
/// the file is not checked again, and a bad path not asked for again.
bool enters_a_path(int number) {
    return std::any_of(field_editors().begin(), field_editors().end(),
                       [&](const FieldEditor& field) {
                           return field.action == number && field.kind->names_a_path;
                       });
}

/// What the checker says of the file before an action.
struct Before {
    bool errors = false;
    int count = 0;
};

Before look_before(RegionSettings* region) {
    Before before;
    const auto status = perform_cbfile_only_check(CheckMode::STATUS, region);
    if (!status || !status->CURRENT_GATEBITS_FILE_HAS_ERRORS) return before;
    before.errors = true;
    const auto counted = perform_cbfile_only_check(CheckMode::COUNT, region);
    if (counted) before.count = counted->CURRENT_GATEBITS_FILE_HAS_THIS_MANY_ERRORS;
    return before;
}

/// Whether the second check lets the file pass. One with errors has to get better: as many as
/// before will not do.
bool is_good_enough(const CheckResult& after, const Before& before) {
    return before.errors ? after.CURRENT_GATEBITS_FILE_HAS_THIS_MANY_ERRORS < before.count
                         : !after.CURRENT_GATEBITS_FILE_HAS_ERRORS;
}

/// Whether the errors are no more than those at the start of the action. A file that was without
/// errors before the last run has got new ones.
bool no_more_errors_than(const Before& at_entry, const Before& before, const CheckResult& after) {
    return before.errors && after.CURRENT_GATEBITS_FILE_HAS_THIS_MANY_ERRORS <= at_entry.count;
}

}  // namespace

int A_2(const Options& options, RegionInUse& region) {
    const bool during_install = options.IS_DURING_INSTALL;
    // What was answered last while the pick ran decides whether the submenu comes up again here: it
    // does after an empty answer, and after one that reads like a separator.
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
    Before before = look_before(&region.settings);
    const Before at_entry = before;
    const Request* request = request_numbered(RequestKind::ACTION, n);
    if (request == nullptr || !request->guarded) gripe(INCOMPLETE_ACTION_CODING);
    const std::string& gatebits_file = region.settings.ENTERPRIZE_PERMISSION_FILE;
    const bool is_checked = !enters_a_path(n);
    LastAnswer last_answer;
    for (int times_unchanged = 0;; before = look_before(&region.settings)) {
        const std::string bytes = is_checked ? read_gatebits_bytes(gatebits_file) : "";
        // A run that shows no dialog keeps the answer of the one before.
        const LastAnswer answer = request->handler(options, region, *request).last_answer;
        if (answer.text) last_answer = answer;
        // Entering another value would not help.
        if (last_answer.changed_meanwhile || !is_checked) return last_answer;
        const auto after = perform_cbfile_only_check(
            before.errors ? CheckMode::COUNT : CheckMode::STATUS, &region.settings);
        if (!after || is_good_enough(*after, before)) return last_answer;
        times_unchanged = read_gatebits_bytes(gatebits_file) != bytes ? 0 : times_unchanged + 1;
        if (times_unchanged >= TIMES_LEFT_UNCHANGED &&
            no_more_errors_than(at_entry, before, *after)) {
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
