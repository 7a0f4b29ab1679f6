#include "dialog/self_test.h"

#include <optional>
#include <string>

#include "base/child.h"
#include "base/exit_status.h"
#include "base/filled.h"
#include "dialog/messages.h"
#include "dialog/process_end.h"
#include "dialog/prompts.h"
#include "messages/command_line_texts.h"
#include "messages/dialog_texts.h"
#include "messages/identity.h"
#include "messages/self_test_texts.h"

namespace gatescope {
namespace {

constexpr char USABILITY_LINE[] = "%s yes_no -mask yes -def yes -pre -pro clearprompt_found_OK";
constexpr char CLEARTOOL[] = "cleartool";
constexpr char CLEARTOOL_LINE[] = "cleartool -ver";

void test_clearprompt() {
    print_stdout(EXPECTED_OS);
    print_stdout(filled(TESTING_USABILITY, CLEARPROMPT));
    const int status = run_in_shell(filled(USABILITY_LINE, CLEARPROMPT), CLEARPROMPT);
    if (status != 0) {
        print_stdout(filled(CLEARPROMPT_NOT_FOUND, CLEARPROMPT));
        clean_exit(STATUS_MISSING_PREREQUISITE);
    }
    advise(filled(CLEARPROMPT_RETURN_CODE, CLEARPROMPT, status));
}

void test_cleartool() {
    print_stdout(TESTING_CLEARTOOL);
    run_in_shell(CLEARTOOL_LINE, CLEARTOOL);
    const int status = get_system_rc(CLEARTOOL_LINE);
    if (status != 0) {
        print_stdout(CLEARTOOL_NOT_FOUND);
        clean_exit(STATUS_MISSING_PREREQUISITE);
    }
    advise(filled(CLEARTOOL_RETURN_CODE, status));
}

/// The codes that the reports show.
constexpr int ANSWERED = 0;
constexpr int CANCELLED = 2;

/// The code of an answer, which is stored in `*last` unless it was cancelled.
int store_answer(const std::optional<std::string>& answer, std::string* last) {
    if (answer) *last = *answer;
    return answer ? ANSWERED : CANCELLED;
}

/// After a cancel the reports show the previous answer.
void test_lists_and_prompts() {
    std::string last;
    int code = store_answer(
        make_selection(SINGLE_SELECTION_TITLE, SINGLE_SELECTION_ITEMS, SINGLE_CHOICE), &last);
    advise(filled(SELECTION_REPORT, last.c_str(), code));
    code = store_answer(
        make_selection(MULTI_SELECTION_TITLE, MULTI_SELECTION_ITEMS, MULTIPLE_CHOICE), &last);
    advise(filled(SELECTION_REPORT, last.c_str(), code));
    code = store_answer(prompt(TEST_PROMPT, TEST_PROMPT_DEFAULT), &last);
    advise(filled(RESPONSE_REPORT, last.c_str(), code));
}

struct TestQuestion {
    const char* text;
    Answer def;
};
constexpr TestQuestion THREE_BUTTON_QUESTIONS[] = {{THREE_BUTTONS_ABORT, Answer::ABORT},
                                                   {THREE_BUTTONS_NO, Answer::NO},
                                                   {THREE_BUTTONS_YES, Answer::YES},
                                                   {THREE_BUTTONS_DEFAULT, default_default}};

struct OnlyAnswer {
    Answer answer;
    Buttons button;
};
constexpr OnlyAnswer ONE_BUTTON_QUESTIONS[] = {
    {Answer::ABORT, Buttons::ABORT}, {Answer::YES, Buttons::YES}, {Answer::NO, Buttons::NO}};

void test_questions() {
    for (const TestQuestion& question : THREE_BUTTON_QUESTIONS) {
        const int code = static_cast<int>(ask(question.text, question.def));
        advise(filled(THREE_BUTTON_ANSWER, code));
    }
    for (const auto& [answer, button] : ONE_BUTTON_QUESTIONS) {
        const char* word = ANSWER_WORDS[static_cast<std::size_t>(answer)];
        const int code = static_cast<int>(ask(filled(ONLY_QUESTION, word), answer, button));
        advise(filled(ONLY_ANSWER, word, code));
    }
}

}  // namespace

void show_about() {
    advise(filled(ABOUT, SELF, VERSION));
    clean_exit(STATUS_SUCCESS);
}

void general_test() {
    test_clearprompt();
    test_cleartool();
    test_lists_and_prompts();
    test_questions();
    show_about();
}

}  // namespace gatescope
