#include "dialog/self_test.h"

#include "base/child.h"
#include "base/filled.h"
#include "base/process_end.h"
#include "dialog/messages.h"
#include "dialog/prompts.h"
#include "messages/command_line_texts.h"
#include "messages/dialog_texts.h"
#include "messages/identity.h"
#include "messages/self_test_texts.h"

namespace {

void test_clearprompt() {
    print_stdout(EXPECTED_OS);
    print_stdout(filled(TESTING_USABILITY, CLEARPROMPT));
    const int status = run_in_shell(filled(USABILITY_LINE, CLEARPROMPT));
    if (status != 0) {
        print_stdout(filled(CLEARPROMPT_NOT_FOUND, CLEARPROMPT));
        clean_exit(1);
    }
    advise(filled(CLEARPROMPT_RETURN_CODE, CLEARPROMPT, status));
}

void test_cleartool() {
    print_stdout(TESTING_CLEARTOOL);
    run_in_shell(CLEARTOOL_LINE);
    const int status = get_system_rc(CLEARTOOL_LINE);
    if (status != 0) {
        print_stdout(CLEARTOOL_NOT_FOUND);
        clean_exit(1);
    }
    advise(filled(CLEARTOOL_RETURN_CODE, status));
}

void test_lists_and_prompts() {
    int code = make_selection("Single Selection test...", "1,2,3,4,5", SINGLE_CHOICE);
    advise(filled(SELECTION_REPORT, GATEWARDEN_RESULT_STRING.c_str(), code));
    code = make_selection("Multi Selection test...", "this,or that,or the other,some more,last one",
                          MULTIPLE_CHOICE);
    advise(filled(SELECTION_REPORT, GATEWARDEN_RESULT_STRING.c_str(), code));
    code = prompt("Prompt...", "Default answer");
    advise(filled(RESPONSE_REPORT, GATEWARDEN_RESULT_STRING.c_str(), code));
}

void test_questions() {
    for (const TestQuestion& question : THREE_BUTTON_QUESTIONS) {
        advise(filled(THREE_BUTTON_ANSWER, ask(question.text, question.def, question.mask)));
    }
    for (const TestQuestion& question : ONE_BUTTON_QUESTIONS) {
        const int code = ask(question.text, question.def, question.mask);
        advise(filled(ONLY_ANSWER, question.mask, code));
    }
}

}  // namespace

void show_about() {
    advise(filled(ABOUT, SELF, VERSION));
    clean_exit(0);
}

void general_test() {
    test_clearprompt();
    test_cleartool();
    test_lists_and_prompts();
    test_questions();
    show_about();
}
