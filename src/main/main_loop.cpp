#include "main/main_loop.h"

#include "actions/menus.h"
#include "actions/requests.h"
#include "base/process_end.h"
#include "dialog/messages.h"
#include "dialog/prompts.h"
#include "messages/command_line_texts.h"
#include "policy/edition.h"
#include "policy/region.h"

namespace {

/// The request of the command line; null when it named none. A number without a request is a fault.
const Request* request_from_command_line(const Options& options) {
    if (!options.query_selected && !options.action_selected) return nullptr;
    const Request* request = options.query_selected
                                 ? request_numbered(RequestKind::QUERY, options.selected_query)
                                 : request_numbered(RequestKind::ACTION, options.selected_action);
    if (request == nullptr) gripe(INCOMPLETE_QUERY_CODING);
    return request;
}

/// Shows the menu that is due once; GATEWARDEN_RESULT_STRING has the pick, or is empty when the
/// submenu was left.
void show_menu(Run& run) {
    const bool during_install = run.options.IS_DURING_INSTALL;
    const bool main_menu = run.chapter == MAIN_MENU;
    TMSG = main_menu ? main_menu_title(ENTERPRIZE_NAME)
                     : submenu_title(ENTERPRIZE_NAME, during_install);
    const std::string CHOICES =
        main_menu ? main_menu_entries(GATEWARDEN_IS) : submenu_entries(during_install);
    if (make_selection(TMSG, CHOICES, SINGLE_CHOICE) != CANCELLED) return;
    if (main_menu || during_install) clean_exit(0);
    run.chapter = MAIN_MENU;
    GATEWARDEN_RESULT_STRING.clear();
}

/// What the operator picks; null when there is no such request.
const Request* request_from_menu(Run& run) {
    GATEWARDEN_RESULT_STRING.clear();
    while (GATEWARDEN_RESULT_STRING.empty() || is_separator(GATEWARDEN_RESULT_STRING)) {
        // The installer has no main menu.
        if (run.chapter == MAIN_MENU && run.options.IS_DURING_INSTALL) clean_exit(0);
        show_menu(run);
    }
    return request_labelled(GATEWARDEN_RESULT_STRING);
}

}  // namespace

int run_requests(const Options& options) {
    Run run = {options};
    const Request* from_command_line = request_from_command_line(options);
    do {
        const Request* request =
            from_command_line != nullptr ? from_command_line : request_from_menu(run);
        from_command_line = nullptr;
        if (request != nullptr) request->execute(run);
    } while (!options.runs_once());
    return static_cast<unsigned char>(options.selected_repeat.front());
}
