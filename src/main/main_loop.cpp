#include "main/main_loop.h"

#include <optional>
#include <string>

#include "actions/menus.h"
#include "actions/requests.h"
#include "base/process_end.h"
#include "dialog/messages.h"
#include "dialog/prompts.h"
#include "messages/command_line_texts.h"

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

/// Shows the menu that is due once; nothing when the submenu was left.
std::optional<std::string> show_menu(Run& run) {
    const bool during_install = run.options.IS_DURING_INSTALL;
    const bool main_menu = run.chapter == MAIN_MENU;
    const auto pick =
        main_menu ? make_selection(main_menu_title(run.region.ENTERPRIZE_NAME),
                                   main_menu_entries(run.GATEWARDEN_IS), SINGLE_CHOICE)
                  : make_selection(submenu_title(run.region.ENTERPRIZE_NAME, during_install),
                                   submenu_entries(during_install), SINGLE_CHOICE);
    if (!pick && (main_menu || during_install)) clean_exit(0);
    if (!pick) run.chapter = MAIN_MENU;
    return pick;
}

/// What the operator picks; null when there is no such request.
const Request* request_from_menu(Run& run) {
    while (true) {
        // The installer has no main menu.
        if (run.chapter == MAIN_MENU && run.options.IS_DURING_INSTALL) clean_exit(0);
        const auto pick = show_menu(run);
        if (pick && !pick->empty() && !is_separator(*pick)) return request_labelled(*pick);
    }
}

}  // namespace

int run_requests(Run& run) {
    const Options& options = run.options;
    const Request* from_command_line = request_from_command_line(options);
    do {
        const Request* request =
            from_command_line != nullptr ? from_command_line : request_from_menu(run);
        from_command_line = nullptr;
        if (request != nullptr) request->execute(run);
    } while (!options.runs_once());
    return static_cast<unsigned char>(options.selected_repeat.front());
}
