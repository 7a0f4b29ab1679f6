#include "main/main_loop.h"

#include <optional>
#include <string>

#include "actions/menus.h"
#include "actions/requests.h"
#include "base/exit_status.h"
#include "dialog/messages.h"
#include "dialog/process_end.h"
#include "dialog/prompts.h"
#include "messages/command_line_texts.h"

namespace gatescope {
namespace {

/// The request of the command line, or null. Gripes when its number has no request.
const Request* request_from_command_line(const Options& options) {
    if (!options.query_selected && !options.action_selected) return nullptr;
    const Request* request = options.query_selected
                                 ? request_numbered(RequestKind::QUERY, options.selected_query)
                                 : request_numbered(RequestKind::ACTION, options.selected_action);
    if (request == nullptr) gripe(INCOMPLETE_QUERY_CODING);
    return request;
}

/// Shows the menu of `*chapter` once. The pick; nothing, with the main menu next, when the submenu
/// was cancelled.
std::optional<std::string> show_menu(bool during_install, const RegionInUse& region, int* chapter) {
    const std::string& name = region.settings.ENTERPRIZE_NAME;
    const bool main_menu = *chapter == MAIN_MENU;
    const auto pick = main_menu
                          ? make_selection(main_menu_title(name),
                                           main_menu_entries(region.GATEWARDEN_IS), SINGLE_CHOICE)
                          : make_selection(submenu_title(name, during_install),
                                           submenu_entries(during_install), SINGLE_CHOICE);
    if (!pick && (main_menu || during_install)) clean_exit(STATUS_SUCCESS);
    if (!pick) *chapter = MAIN_MENU;
    return pick;
}

/// The request that the operator picks; null when the pick names none. `*chapter` is the menu
/// shown.
const Request* request_from_menu(bool during_install, const RegionInUse& region, int* chapter) {
    while (true) {
        // The installer has no main menu.
        if (*chapter == MAIN_MENU && during_install) clean_exit(STATUS_SUCCESS);
        const auto pick = show_menu(during_install, region, chapter);
        if (pick && !pick->empty() && !is_separator(*pick)) return request_labelled(*pick);
    }
}

}  // namespace

int run_requests(const Options& options, RegionInUse& region) {
    int chapter = MAIN_MENU;
    const Request* from_command_line = request_from_command_line(options);
    do {
        const Request* request =
            from_command_line != nullptr
                ? from_command_line
                : request_from_menu(options.IS_DURING_INSTALL, region, &chapter);
        from_command_line = nullptr;
        if (request != nullptr) {
            chapter = request->execute(options, region).next_menu.value_or(chapter);
        }
    } while (!options.runs_once());
    return STATUS_SINGLE_REQUEST;
}

}  // namespace gatescope
