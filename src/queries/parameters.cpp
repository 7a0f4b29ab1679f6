#include "queries/parameters.h"

#include <array>
#include <vector>

#include "base/filled.h"
#include "base/text.h"
#include "dialog/messages.h"
#include "dialog/prompts.h"
#include "messages/bit_names.h"
#include "messages/command_names.h"
#include "messages/query_texts.h"
#include "queries/commands.h"

namespace gatescope {
namespace {

// A value in a log record: the number of a command, a user, the number of a bit or key.
constexpr char COMMAND_FILTER[] = "[%d]";
constexpr char USER_FILTER[] = ":%s[";
constexpr char NUMBER_FILTER[] = "<%lld>";

// The values of the command line.

std::string given_command(const Options& options) {
    return options.selected_command;
}
std::string given_user(const Options& options) {
    return options.selected_user;
}
std::string number_or_all(long long number) {
    return number == -1 ? ALL : std::to_string(number);
}
std::string given_bit(const Options& options) {
    return number_or_all(options.selected_bit);
}
std::string given_key(const Options& options) {
    return number_or_all(options.selected_key);
}

// The dialogs.

using Reply = std::optional<std::string>;

Reply pick(const char* title, const std::vector<std::string>& entries) {
    return make_selection(title, as_list(entries), SINGLE_CHOICE);
}

Reply pick_command(int /*edition*/) {
    std::vector<std::string> entries = {ALL};
    entries.insert(entries.end(), TRIGGERABLE_COMMANDS.begin(), TRIGGERABLE_COMMANDS.end());
    return pick(PROMPT_SELECT_COMMAND, entries);
}

Reply input_user(int /*edition*/) {
    return prompt(PROMPT_INPUT_USER, ALL);
}

Reply pick_bit(int /*edition*/) {
    std::vector<std::string> entries = {ALL_BITS_CHOICE};
    int bit = 0;
    for (const char* name : GATEWARDEN_BITS_DESC)
        entries.push_back(filled(BIT_CHOICE, bit++, name));
    return pick(PROMPT_SELECT_BIT, entries);
}

Reply input_key(int edition) {
    return prompt(edition == 1 ? PROMPT_INPUT_KEY : PROMPT_INPUT_CPD, ALL);
}

// The value of an answer; empty if the question has to be repeated.

std::string text_in(const std::string& answer) {
    return answer;
}

std::string bit_in(const std::string& answer) {
    if (answer.starts_with(ALL)) return ALL;
    const long long bit = leading_number(answer.c_str());
    if (bit < 0 || bit > HIGHEST_BIT) gripe_uncoded("Q_2");
    return answer.empty() ? "" : std::to_string(bit);
}

std::string key_in(const std::string& answer) {
    if (answer.empty() || answer == ALL) return answer;
    if (!holds_only(answer.c_str(), "0123456789")) return "";
    return std::to_string(leading_number(answer.c_str()));
}

// The filters of values other than "*".

std::string command_filter(const std::string& command) {
    return filled(COMMAND_FILTER, command_number(command));
}

std::string user_filter(const std::string& user) {
    std::string filter = filled(USER_FILTER, user.c_str());
    return STRING_LOWER(filter);
}

std::string number_filter(const std::string& number) {
    return filled(NUMBER_FILTER, leading_number(number.c_str()));
}

struct ParameterRow {
    /// Whether the command line has the parameter, and its value.
    bool Options::*is_given;
    std::string (*given_value)(const Options& options);
    Reply (*ask_operator)(int edition);
    std::string (*value_in)(const std::string& answer);
    std::string (*filter)(const std::string& value);
};

/// In the order of Parameter.
constexpr std::array<ParameterRow, 4> PARAMETERS = {{
    {&Options::command_selected, given_command, pick_command, text_in, command_filter},
    {&Options::user_selected, given_user, input_user, text_in, user_filter},
    {&Options::bit_selected, given_bit, pick_bit, bit_in, number_filter},
    {&Options::key_selected, given_key, input_key, key_in, number_filter},
}};

const ParameterRow& row_of(Parameter parameter) {
    return PARAMETERS.at(static_cast<std::size_t>(parameter));
}

}  // namespace

std::optional<std::string> value_of(Parameter parameter, const Options& options, int edition) {
    const ParameterRow& row = row_of(parameter);
    if (options.*row.is_given) return row.given_value(options);
    std::string value;
    while (value.empty()) {
        const Reply reply = row.ask_operator(edition);
        if (!reply) return std::nullopt;
        value = row.value_in(*reply);
    }
    return value;
}

std::string filter_for(Parameter parameter, const std::string& value) {
    return value == ALL ? "" : row_of(parameter).filter(value);
}

}  // namespace gatescope
