// Arbitrary command-line arguments.

#include <algorithm>

#include "fuzz/fuzz_world.h"
#include "main/command_line.h"
#include "queries/commands.h"

namespace gatescope {
namespace {

std::vector<std::string> arguments_from(FuzzedDataProvider& data) {
    std::vector<std::string> arguments;
    while (arguments.size() < 12 && data.remaining_bytes() > 0) {
        // Arguments are C strings.
        const std::string argument = data.ConsumeRandomLengthString(300);
        arguments.push_back(argument.substr(0, argument.find('\0')));
    }
    return arguments;
}

void must_be_in_range(const Options& options) {
    if (options.query_selected)
        must(options.selected_query >= 1 && options.selected_query <= 6, "the query is valid");
    if (options.action_selected)
        must(options.selected_action >= 1 && options.selected_action <= 29, "the action is valid");
    if (options.bit_selected)
        must(options.selected_bit >= -1 && options.selected_bit <= 23, "the bit is valid");
    if (options.key_selected) must(options.selected_key >= -1, "the key is valid");
    if (options.command_selected && options.selected_command != "*") {
        must(command_number(options.selected_command) != 0, "the command is valid");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    FuzzedDataProvider data(bytes, size);
    use_gatebits("");
    answer_dialogs_from(nullptr);
    const std::vector<std::string> arguments = arguments_from(data);
    const bool self_test =
        std::find(arguments.begin(), arguments.end(), "-general_test") != arguments.end();
    if (self_test) return 0;
    Options options;
    const int status = until_the_end([&] {
        run_sole_option(arguments);
        options = parse_arguments(arguments);
    });
    if (status == -1) must_be_in_range(options);
    return 0;
}

}  // namespace gatescope
