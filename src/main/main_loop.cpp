#include "main/main_loop.h"

#include <utility>

#include "actions/requests.h"
#include "base/filled.h"
#include "base/process_end.h"
#include "base/selections.h"
#include "dialog/messages.h"
#include "dialog/prompts.h"
#include "logs/query_data.h"
#include "messages/command_line_texts.h"
#include "messages/menu_labels.h"
#include "policy/region.h"

unsigned char use_default_answer = 0;

namespace {

/// The label of the request that the command line named; numbers without a request are a fault.
std::string label_from_command_line(RequestKind kind, int number) {
    query_selected = false;
    action_selected = false;
    const Request* request = request_numbered(kind, number);
    if (request == nullptr) gripe(INCOMPLETE_QUERY_CODING);
    return label_of(*request);
}

void show_menu() {
    if (chapter == 1) {
        TMSG = filled(MAIN_MENU_TITLE, ENTERPRIZE_NAME.c_str());
        CHOICES = main_menu_entries();
    } else {
        TMSG = submenu_title();
        CHOICES = submenu_entries();
    }
    if (make_selection(TMSG, CHOICES, SINGLE_CHOICE) != CANCELLED) return;
    if (chapter == 1 || IS_DURING_INSTALL) clean_exit(0);
    chapter = 1;
    GATEWARDEN_RESULT_STRING.clear();
}

std::string label_from_menu() {
    GATEWARDEN_RESULT_STRING.clear();
    while (GATEWARDEN_RESULT_STRING.empty() || is_separator(GATEWARDEN_RESULT_STRING)) {
        // The installer has no main menu.
        if (chapter == 1 && IS_DURING_INSTALL) clean_exit(0);
        show_menu();
    }
    return GATEWARDEN_RESULT_STRING;
}

std::string next_label() {
    if (query_selected) return label_from_command_line(RequestKind::QUERY, selected_query);
    if (action_selected) return label_from_command_line(RequestKind::ACTION, selected_action);
    return label_from_menu();
}

void forget_last_request() {
    use_default_answer = 0;
    GLOBAL_TEST_STRING_1 = ANY_LOG_ENTRY;
    GLOBAL_TEST_STRING_2 = ANY_LOG_ENTRY;
    GLOBAL_TEST_STRING_3 = ANY_LOG_ENTRY;
    GLOBAL_TEST_STRING_4 = ANY_LOG_ENTRY;
}

}  // namespace

int run_requests() {
    do {
        QUERY_OR_ACTION = next_label();
        forget_last_request();
        const Request* request = request_labelled(QUERY_OR_ACTION);
        if (request != nullptr) request->run();
    } while (selected_repeat.front() != 'n');
    return static_cast<unsigned char>(selected_repeat.front());
}
