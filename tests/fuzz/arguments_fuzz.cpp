// Arbitrary arguments, and the question that follows when they name no gatebits file.

#include <algorithm>

#include "base/commands.h"
#include "base/selections.h"
#include "fuzz/fuzz_world.h"
#include "main/command_line.h"

namespace {

void forget_the_last_run() {
    for (bool* flag : {&file_selected, &query_selected, &action_selected, &command_selected,
                       &user_selected, &key_selected, &bit_selected, &display_selected,
                       &repeat_selected, &data_gen_selected, &IS_DURING_INSTALL}) {
        *flag = false;
    }
}

std::vector<std::string> arguments_from(FuzzedDataProvider& data) {
    std::vector<std::string> arguments;
    while (arguments.size() < 12 && data.remaining_bytes() > 0) {
        // The system hands over C text.
        const std::string argument = data.ConsumeRandomLengthString(300);
        arguments.push_back(argument.substr(0, argument.find('\0')));
    }
    return arguments;
}

void must_be_in_range() {
    if (query_selected) must(selected_query >= 1 && selected_query <= 6, "a query there is");
    if (action_selected) must(selected_action >= 1 && selected_action <= 29, "an action there is");
    if (bit_selected) must(selected_bit >= -1 && selected_bit <= 23, "a bit there is");
    if (key_selected) must(selected_key >= -1, "a key there may be");
    if (command_selected && selected_command != "*") {
        must(command_number(selected_command) != 0, "a command there is");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    FuzzedDataProvider data(bytes, size);
    use_gatebits("");
    answer_dialogs_from(nullptr);
    forget_the_last_run();
    const std::vector<std::string> arguments = arguments_from(data);
    const bool self_test =
        std::find(arguments.begin(), arguments.end(), "-general_test") != arguments.end();
    if (self_test) return 0;
    const int status = until_the_end([&] {
        obey_sole_option(arguments);
        parse_arguments(arguments);
    });
    if (status == -1) must_be_in_range();
    return 0;
}
