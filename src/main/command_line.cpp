#include "main/command_line.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <utility>

#include "actions/requests.h"
#include "base/exit_status.h"
#include "base/filled.h"
#include "base/standard_streams.h"
#include "base/text.h"
#include "dialog/messages.h"
#include "dialog/process_end.h"
#include "dialog/self_test.h"
#include "messages/arguments.h"
#include "messages/bit_names.h"
#include "messages/command_line_texts.h"
#include "messages/identity.h"
#include "queries/commands.h"

namespace gatescope {
namespace {

/// A parameter: the whole argument, for messages, and its value after the '='.
struct Argument {
    const std::string& whole;
    std::string value;
};

constexpr char DIGITS[] = "0123456789";
constexpr char EVERYTHING[] = "*";
constexpr int ALL_NUMBERS = -1;

[[noreturn]] void show_usage() {
    gripe(filled(USAGE, SELF, VERSION, BUILD, SELF, highest_number(RequestKind::QUERY),
                 highest_number(RequestKind::ACTION), HIGHEST_BIT));
}

[[noreturn]] void show_kudos() {
    advise(filled(KUDOS, SELF));
    clean_exit(STATUS_SUCCESS);
}

[[noreturn]] void exit_silently() {
    clean_exit(STATUS_SUCCESS);
}

struct SoleOption {
    const char* word;
    void (*run)();
};
constexpr std::array<SoleOption, 5> SOLE_OPTIONS = {{{ARG_IDENTIFY, exit_silently},
                                                     {ARG_VER, show_about},
                                                     {ARG_KUDOS, show_kudos},
                                                     {ARG_GENERAL_TEST, general_test},
                                                     {ARG_HELP, show_usage}}};

/// The number at the start of `value`; 0 when it does not begin with a digit or is above `limit`.
int number_up_to(const std::string& value, int limit) {
    if (value.find_first_of(DIGITS) != 0) return 0;
    const long long number = leading_number(value.c_str());
    return number <= limit ? static_cast<int>(number) : 0;
}

void take_action(const Argument& argument, Options* options) {
    if (options->query_selected) gripe(ERROR_48);
    const int limit = highest_number(RequestKind::ACTION);
    options->selected_action = number_up_to(argument.value, limit);
    if (options->selected_action == 0) gripe(filled(ERROR_47, argument.whole.c_str(), limit));
}

void take_query(const Argument& argument, Options* options) {
    if (options->action_selected) gripe(ERROR_48);
    const int limit = highest_number(RequestKind::QUERY);
    options->selected_query = number_up_to(argument.value, limit);
    if (options->selected_query == 0) gripe(filled(ERROR_41, argument.whole.c_str(), limit));
}

void take_bit(const Argument& argument, Options* options) {
    const char* whole = argument.whole.c_str();
    options->selected_bit = ALL_NUMBERS;
    if (argument.value == EVERYTHING) return;
    if (argument.value.front() == '*') gripe(filled(ERROR_43, whole, HIGHEST_BIT));
    if (!holds_only(argument.value.c_str(), DIGITS))
        gripe(filled(ERROR_43_NOT_A_NUMBER, whole, HIGHEST_BIT));
    const long long bit = leading_number(argument.value.c_str());
    if (bit > HIGHEST_BIT) gripe(filled(ERROR_43, whole, HIGHEST_BIT));
    options->selected_bit = static_cast<int>(bit);
}

void take_key(const Argument& argument, Options* options) {
    options->selected_key = ALL_NUMBERS;
    if (argument.value == EVERYTHING) return;
    if (!holds_only(argument.value.c_str(), DIGITS)) {
        gripe(filled(ERROR_45, argument.whole.c_str()));
    }
    options->selected_key = leading_number(argument.value.c_str());
}

void take_command(const Argument& argument, Options* options) {
    options->selected_command = argument.value;
    if (argument.value == EVERYTHING) return;
    if (command_number(argument.value) == 0) gripe(filled(ERROR_42, argument.whole.c_str()));
}

void take_user(const Argument& argument, Options* options) {
    options->selected_user = argument.value;
    STRING_LOWER(options->selected_user);
}

bool is_yes_or_no(const std::string& value) {
    return value == "y" || value == "n";
}

void take_display(const Argument& argument, Options* options) {
    options->selected_display = argument.value;
    if (!is_yes_or_no(STRING_LOWER(options->selected_display))) {
        gripe(filled(ERROR_44, argument.whole.c_str()));
    }
}

void take_repeat(const Argument& argument, Options* options) {
    options->selected_repeat = argument.value;
    if (!is_yes_or_no(STRING_LOWER(options->selected_repeat))) {
        gripe(filled(ERROR_49, argument.whole.c_str()));
    }
}

void take_file(const Argument& argument, Options* options) {
    options->selected_file = argument.value;
    const int file = open(argument.value.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    options->file_selected = file != -1;
    if (file != -1) close(file);
}

/// F= sets its flag only for a readable file, so that another one may follow an unreadable one.
constexpr bool Options::*SETS_ITS_OWN_FLAG = nullptr;

struct Parameter {
    char letter;
    /// When it is set, the parameter is a duplicate.
    bool Options::*duplicate_flag;
    /// Is set after `take`.
    bool Options::*taken_flag;
    /// Whether a duplicate is reported as ERROR_43.
    bool duplicate_is_bit_fault;
    void (*take)(const Argument&, Options*);
};
// R= sets D='s flag, and scheduled jobs depend on it: a second R= is accepted, and a D= after an R=
// is a duplicate.
constexpr std::array<Parameter, 9> PARAMETERS = {{
    {'A', &Options::action_selected, &Options::action_selected, false, take_action},
    {'B', &Options::bit_selected, &Options::bit_selected, true, take_bit},
    {'C', &Options::command_selected, &Options::command_selected, false, take_command},
    {'D', &Options::display_selected, &Options::display_selected, false, take_display},
    {'F', &Options::file_selected, SETS_ITS_OWN_FLAG, false, take_file},
    {'K', &Options::key_selected, &Options::key_selected, true, take_key},
    {'Q', &Options::query_selected, &Options::query_selected, false, take_query},
    {'R', &Options::repeat_selected, &Options::display_selected, false, take_repeat},
    {'U', &Options::user_selected, &Options::user_selected, false, take_user},
}};

constexpr std::array<const char*, 2> OPTIONS_ANYWHERE = {ARG_DATA_GEN, ARG_DURING_INSTALL};

constexpr bool is_known_argument(std::string_view spelling) {
    return std::any_of(KNOWN_ARGUMENTS.begin(), KNOWN_ARGUMENTS.end(),
                       [=](const KnownArgument& row) { return row.spelling == spelling; });
}

/// Whether KNOWN_ARGUMENTS, the source of the manual and the completion, has exactly the arguments
/// that are parsed here.
constexpr bool all_arguments_are_known() {
    const bool parameters =
        std::all_of(PARAMETERS.begin(), PARAMETERS.end(), [](const Parameter& parameter) {
            const std::array<char, 2> spelling = {parameter.letter, '='};
            return is_known_argument({spelling.data(), spelling.size()});
        });
    const bool options =
        std::all_of(SOLE_OPTIONS.begin(), SOLE_OPTIONS.end(),
                    [](const SoleOption& option) { return is_known_argument(option.word); }) &&
        std::all_of(OPTIONS_ANYWHERE.begin(), OPTIONS_ANYWHERE.end(), is_known_argument);
    return parameters && options &&
           PARAMETERS.size() + SOLE_OPTIONS.size() + OPTIONS_ANYWHERE.size() ==
               KNOWN_ARGUMENTS.size();
}
static_assert(all_arguments_are_known());

void refuse_duplicate(const Parameter& parameter, const Options& options) {
    if (!(options.*parameter.duplicate_flag)) return;
    if (parameter.duplicate_is_bit_fault) {
        gripe(filled(ERROR_43, std::string(1, parameter.letter).c_str(), HIGHEST_BIT));
    }
    gripe(filled(ERROR_39, parameter.letter));
}

/// The spellings of all parameters, or of all words, for operators: "a, b and c".
std::string spellings(bool of_parameters) {
    std::string list;
    std::string last;
    for (const KnownArgument& row : KNOWN_ARGUMENTS) {
        const bool is_parameter = row.kind == ArgumentKind::PARAMETER;
        if (row.for_installer || is_parameter != of_parameters) continue;
        if (!last.empty()) list.append(list.empty() ? "" : ", ").append(last);
        last = row.spelling;
    }
    return list + " and " + last;
}

[[noreturn]] void refuse_unknown(const std::string& argument) {
    if (argument.starts_with('-')) {
        note(filled(VALID_ARGUMENTS, spellings(false).c_str(), spellings(true).c_str(), SELF));
    }
    gripe(filled(ERROR_46, argument.c_str()));
}

void take_parameter(const std::string& argument, Options* options) {
    if (argument.size() < 2 || argument[1] != '=') refuse_unknown(argument);
    if (argument.size() == 2) gripe(filled(ERROR_40, argument.c_str()));
    const auto* parameter =
        std::find_if(PARAMETERS.begin(), PARAMETERS.end(),
                     [&](const Parameter& row) { return row.letter == argument[0]; });
    if (parameter == PARAMETERS.end()) refuse_unknown(argument);
    refuse_duplicate(*parameter, *options);
    parameter->take({argument, argument.substr(2)}, options);
    if (parameter->taken_flag != SETS_ITS_OWN_FLAG) options->*parameter->taken_flag = true;
}

}  // namespace

void run_sole_option(const std::vector<std::string>& arguments) {
    if (arguments.size() != 1) return;
    for (const auto& [word, run] : SOLE_OPTIONS) {
        if (arguments.front() == word) run();
    }
}

Options parse_arguments(std::vector<std::string> arguments) {
    Options options;
    options.IS_DURING_INSTALL =
        std::find(arguments.begin(), arguments.end(), ARG_DURING_INSTALL) != arguments.end();
    for (std::string& argument : arguments) {
        if (argument == ARG_DATA_GEN) {
            options.data_gen_selected = true;
        } else if (argument != ARG_DURING_INSTALL) {
            // Installers cannot always pass a '=', so they write A-2.
            if (options.IS_DURING_INSTALL && argument.size() >= 2 && argument[1] == '-') {
                argument[1] = '=';
            }
            take_parameter(argument, &options);
        }
    }
    return options;
}

}  // namespace gatescope
