#include <sys/stat.h>

#include "actions/actions.h"
#include "actions/menus.h"
#include "actions/requests.h"
#include "base/filled.h"
#include "base/process_end.h"
#include "dialog/messages.h"
#include "dialog/prompts.h"
#include "messages/action_texts.h"
#include "policy/checker.h"
#include "policy/gatebits_file.h"
#include "policy/region.h"

// The submenu and the guard: how an action is run, whichever it is.

namespace {

/// How often an operator may leave an action without having written anything before an error that
/// was in the file all along stops holding them in it.
constexpr int TIMES_LEFT_UNCHANGED = 3;

/// What the submenu has for the installer only, the main loop runs and not the submenu itself.
void run_submenu_pick(Run& run, const std::string& QUERY_OR_ACTION) {
    const Request* request = request_labelled(QUERY_OR_ACTION);
    if (request == nullptr) return;
    if (request->in_submenu == Shown::NO || request->in_submenu == Shown::TO_INSTALLER_ONLY) return;
    request->execute(run);
}

void leave_submenu(Run& run) {
    if (run.options.runs_once() || run.options.IS_DURING_INSTALL) clean_exit(0);
    run.chapter = MAIN_MENU;
    GATEWARDEN_RESULT_STRING.clear();
}

/// Actions that enter a path outside the gatebits file: the checker does not judge that path, so
/// it is looked at here, and a bad one is not asked for again.
struct PathAction {
    int number;
    RegionLine line;
    int field;
    bool testable_here;
};
constexpr PathAction PATH_ACTIONS[] = {
    {6, PARENT_LINE, 1, false},
    {7, PARENT_LINE, 2, true},
    {9, NOTIFY_LINE, 1, false},
    {10, NOTIFY_LINE, 2, true},
};

const PathAction* path_action(int number) {
    for (const PathAction& action : PATH_ACTIONS) {
        if (action.number == number) return &action;
    }
    return nullptr;
}

/// 1 when the path holds, or cannot be tested from here; else 0.
int path_holds(const PathAction& action) {
    const std::string path = field_or_empty(action.line, action.field);
    if (path.empty() || !action.testable_here) return 1;
    struct stat status;
    return stat(path.c_str(), &status) == 0 && !S_ISDIR(status.st_mode) ? 1 : 0;
}

/// What the checker says of the file before an action.
struct Before {
    bool errors = false;
    int count = 0;
};

Before look_before() {
    Before before;
    if (perform_cbfile_only_check(CHECK_STATUS) == 0) return before;
    before.errors = CURRENT_GATEBITS_FILE_HAS_ERRORS != 0;
    if (before.errors && perform_cbfile_only_check(CHECK_COUNT) != 0) {
        before.count = CURRENT_GATEBITS_FILE_HAS_THIS_MANY_ERRORS;
    }
    return before;
}

/// What the second check says.
enum class Verdict { NOT_CHECKED, GOOD_ENOUGH, REENTER };

Verdict verdict_after(const Before& before) {
    if (perform_cbfile_only_check(before.errors ? CHECK_COUNT : CHECK_STATUS) == 0) {
        return Verdict::NOT_CHECKED;
    }
    // A file with errors has to get better: as many as before will not do.
    const bool no_better = before.errors
                               ? CURRENT_GATEBITS_FILE_HAS_THIS_MANY_ERRORS >= before.count
                               : CURRENT_GATEBITS_FILE_HAS_ERRORS != 0;
    return no_better ? Verdict::REENTER : Verdict::GOOD_ENOUGH;
}

/// Runs the handler; whether it left the file other than it was.
bool changes_the_file(const Request& request, Run& run) {
    const std::string bytes = read_gatebits_bytes();
    request.handler(run);
    return read_gatebits_bytes() != bytes;
}

/// Whether the errors that are counted now are no more than those at the start of the action. A
/// file that had none before the last run has more than that.
bool no_more_errors_than(const Before& at_entry, const Before& before_last_run) {
    return before_last_run.errors && CURRENT_GATEBITS_FILE_HAS_THIS_MANY_ERRORS <= at_entry.count;
}

}  // namespace

void A_2(Run& run) {
    GATEWARDEN_RESULT_STRING.clear();
    while (GATEWARDEN_RESULT_STRING.empty() || is_separator(GATEWARDEN_RESULT_STRING)) {
        run.chapter = SUBMENU;
        const bool during_install = run.options.IS_DURING_INSTALL;
        TMSG = submenu_title(ENTERPRIZE_NAME, during_install);
        const std::string CHOICES = submenu_entries(during_install);
        if (make_selection(TMSG, CHOICES, SINGLE_CHOICE) == CANCELLED) return leave_submenu(run);
        const std::string QUERY_OR_ACTION = GATEWARDEN_RESULT_STRING;
        run_submenu_pick(run, QUERY_OR_ACTION);
    }
}

int A_X(Run& run, int n) {
    Before before = look_before();
    const Before at_entry = before;
    const Request* request = request_numbered(RequestKind::ACTION, n);
    if (request == nullptr || !request->guarded) gripe(INCOMPLETE_ACTION_CODING);
    for (int times_unchanged = 0;; before = look_before()) {
        times_unchanged = changes_the_file(*request, run) ? 0 : times_unchanged + 1;
        if (const PathAction* action = path_action(n)) return path_holds(*action);

        const Verdict verdict = verdict_after(before);
        if (verdict == Verdict::NOT_CHECKED) return 0;
        if (verdict == Verdict::GOOD_ENOUGH) return 1;
        if (times_unchanged >= TIMES_LEFT_UNCHANGED && no_more_errors_than(at_entry, before)) {
            return 1;
        }
        advise_wait(AX_MSG);
    }
}

int A_during_install(bool during_install, const char* title) {
    if (!during_install) return 0;
    const std::string label = title;
    const auto dash = label.find(LABEL_DASH);
    TMSG = dash == std::string::npos
               ? NO_LABEL_DURING_INSTALL
               : filled(NOT_DURING_INSTALL,
                        label.substr(dash + std::string(LABEL_DASH).size()).c_str());
    advise_wait(TMSG);
    return 1;
}
