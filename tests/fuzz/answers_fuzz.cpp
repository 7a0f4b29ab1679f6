// Dialogs with arbitrary answers.

#include "base/text.h"
#include "dialog/clearprompt.h"
#include "dialog/messages.h"
#include "dialog/prompts.h"
#include "dialog/toolkit.h"
#include "fuzz/fuzz_world.h"
#include "policy/file_chooser.h"

namespace gatescope {
namespace {

/// Asserts that an answer consists of words with single blanks between them.
void must_be_words(const std::string& answer) {
    must(answer.find_first_of(std::string("\t\n\v\f\r\0", 6)) == std::string::npos,
         "no line breaks or NULs in an answer");
    // A word that begins with a NUL is empty, and still has its blanks.
    must(answer == words_joined(answer) || last_answer.find('\0') != std::string::npos,
         "an answer is words and single blanks");
}

void must_be_picks(const std::string& answer) {
    must(answer.find_first_of(std::string("\n\0", 2)) == std::string::npos,
         "no line breaks or NULs in picks");
    must(answer.size() <= 10001, "picks have at most 10001 bytes");
}

void run_a_dialog(FuzzedDataProvider& data) {
    const std::string text = data.ConsumeRandomLengthString(200);
    const std::string other = data.ConsumeRandomLengthString(200);
    switch (data.ConsumeIntegralInRange(0, 6)) {
        case 0:
            if (const auto answer = prompt(text, other)) must_be_words(*answer);
            break;
        case 1:
            if (const auto answer = prompt_from_file(text, other)) must_be_words(*answer);
            break;
        case 2:
            if (const auto pick = make_selection(text, other, SINGLE_CHOICE)) must_be_words(*pick);
            break;
        case 3:
            if (const auto picks = make_selection(text, other, MULTIPLE_CHOICE)) {
                must_be_picks(*picks);
            }
            break;
        case 4:
            if (const auto file = select_cb_file(gatebits_path(), text)) must_be_words(*file);
            break;
        case 5:
            must(ask(text, Answer::NO) <= Answer::ABORT, "an answer is a valid enumerator");
            break;
        default:
            show_file_with_clearprompt(text, other, data.ConsumeBool());
    }
    must(last_command.find('\0') == std::string::npos, "no NUL in a command line");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    FuzzedDataProvider data(bytes, size);
    use_gatebits("");
    answer_dialogs_from(&data);
    ZUL_PREFER_GUI = 1;
    until_the_end([&] { run_a_dialog(data); });
    must(get_file("tmp/gatewarden_prompt_result_1_.txt").empty() &&
             get_file("tmp/gatewarden_select_result_1_.txt").empty(),
         "no answer is left behind");
    answer_dialogs_from(nullptr);
    return 0;
}

}  // namespace gatescope
