// Fills the templates of the manual pages and the completions from the program's own tables, so
// that they always agree with the program.
//
// Usage: fill_templates TEMPLATE OUTPUT
//
// A line of the template that ends with "@@name@@" is replaced by the lines of the block of that
// name, each after the text before the mark; "@NAME@" inside a line is replaced by the text of that
// name.

#include <array>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>

#include "actions/requests.h"
#include "base/filled.h"
#include "messages/arguments.h"
#include "messages/bit_names.h"
#include "messages/command_names.h"
#include "messages/environment.h"
#include "messages/identity.h"
#include "messages/policy_texts.h"

namespace gatescope {
namespace {

/// The part of a label after its number.
std::string title_of(std::string_view label) {
    constexpr std::string_view MARK = " - ";
    const auto mark = label.find(MARK);
    return std::string(mark == std::string_view::npos ? label : label.substr(mark + MARK.size()));
}

/// A text as a line of a manual page.
std::string manual_line(std::string_view text) {
    std::string result;
    for (const char character : text) {
        result += character == '\\' ? "\\e" : std::string(1, character);
    }
    const bool looks_like_macro = !result.empty() && (result[0] == '.' || result[0] == '\'');
    return looks_like_macro ? "\\&" + result : result;
}

std::string manual_requests(RequestKind kind, char letter) {
    std::string block;
    for (const Request& request : all_requests()) {
        if (request.kind != kind) continue;
        block += filled(".It Cm %c=%d\n%s\n", letter, request.number,
                        manual_line(title_of(request.label)).c_str());
        if (request.lite_label != nullptr) {
            block +=
                filled(".Pq lite edition: %s\n", manual_line(title_of(request.lite_label)).c_str());
        }
    }
    return block;
}

std::string manual_queries() {
    return manual_requests(RequestKind::QUERY, 'Q');
}

std::string manual_actions() {
    return manual_requests(RequestKind::ACTION, 'A');
}

std::string manual_bits() {
    std::string block;
    int number = 0;
    for (const char* name : GATEWARDEN_BITS_DESC) {
        block += filled(".It %d\n.Dv %s\n", number++, name);
    }
    return block;
}

std::string manual_commands() {
    std::string block;
    for (const auto name : TRIGGERABLE_COMMANDS) {
        const bool last = name == TRIGGERABLE_COMMANDS.back();
        block.append(".Cm ").append(name).append(last ? " .\n" : " ,\n");
    }
    return block;
}

std::string manual_environment() {
    std::string block;
    for (const EnvironmentVariable& variable : ENVIRONMENT) {
        block += filled(".It Ev %s\n%s.\n", variable.name, manual_line(variable.meaning).c_str());
    }
    return block;
}

std::string manual_settings() {
    std::string block;
    for (const char* prefix : GS_VAR_NAME) block += filled(".It Li %s\n", prefix);
    return block;
}

/// A text as one word of the shell.
std::string shell_word(std::string_view text) {
    std::string word = "'";
    for (const char character : text)
        word += character == '\'' ? "'\\''" : std::string(1, character);
    return word + "'";
}

/// A quoted word on a line.
std::string shell_line(std::string_view text) {
    return shell_word(text) + "\n";
}

/// A word and its meaning, in the format of all tables for the shells.
std::string shell_line(std::string_view word, std::string_view meaning) {
    return shell_line(std::string(word).append(" - ").append(meaning));
}

std::string shell_requests(RequestKind kind) {
    std::string block;
    for (const Request& request : all_requests()) {
        if (request.kind != kind) continue;
        block += shell_line(std::to_string(request.number), title_of(request.label));
    }
    return block;
}

std::string shell_queries() {
    return shell_requests(RequestKind::QUERY);
}

std::string shell_actions() {
    return shell_requests(RequestKind::ACTION);
}

std::string shell_bits() {
    std::string block;
    int number = 0;
    for (const char* name : GATEWARDEN_BITS_DESC) {
        block += shell_line(std::to_string(number++), name);
    }
    return block;
}

std::string shell_commands() {
    std::string block;
    for (const auto name : TRIGGERABLE_COMMANDS) block += shell_line(name);
    return block;
}

/// The arguments for operators, without those for the installer.
std::string shell_arguments(ArgumentKind kind) {
    std::string block;
    for (const KnownArgument& argument : KNOWN_ARGUMENTS) {
        if (argument.kind != kind || argument.for_installer) continue;
        block += shell_line(argument.spelling, argument.meaning);
    }
    return block;
}

std::string shell_options() {
    return shell_arguments(ArgumentKind::OPTION);
}

std::string shell_switches() {
    return shell_arguments(ArgumentKind::SWITCH);
}

std::string shell_parameters() {
    return shell_arguments(ArgumentKind::PARAMETER);
}

struct Block {
    std::string_view name;
    std::string (*text)();
};
constexpr std::array<Block, 13> BLOCKS = {{{"@@manual_queries@@", manual_queries},
                                           {"@@manual_actions@@", manual_actions},
                                           {"@@manual_bits@@", manual_bits},
                                           {"@@manual_commands@@", manual_commands},
                                           {"@@manual_environment@@", manual_environment},
                                           {"@@manual_settings@@", manual_settings},
                                           {"@@shell_queries@@", shell_queries},
                                           {"@@shell_actions@@", shell_actions},
                                           {"@@shell_bits@@", shell_bits},
                                           {"@@shell_commands@@", shell_commands},
                                           {"@@shell_options@@", shell_options},
                                           {"@@shell_switches@@", shell_switches},
                                           {"@@shell_parameters@@", shell_parameters}}};

/// The numbers of the guarded actions, as a list in a sentence.
std::string guarded_actions() {
    std::string list;
    std::string last;
    for (const Request& request : all_requests()) {
        if (!request.guarded) continue;
        if (!last.empty()) list.append(list.empty() ? "" : ", ").append(last);
        last = std::to_string(request.number);
    }
    return list + " and " + last;
}

struct Text {
    std::string_view name;
    std::string text;
};

std::array<Text, 7> texts() {
    return {{{"@VERSION@", VERSION},
             {"@QUERIES@", std::to_string(highest_number(RequestKind::QUERY))},
             {"@ACTIONS@", std::to_string(highest_number(RequestKind::ACTION))},
             {"@COMMANDS@", std::to_string(TRIGGERABLE_COMMANDS.size())},
             {"@BITS@", std::to_string(GATEWARDEN_BITS_DESC.size())},
             {"@HIGHEST_BIT@", std::to_string(HIGHEST_BIT)},
             {"@GUARDED_ACTIONS@", guarded_actions()}}};
}

/// Whether the line contains a name in capitals between two '@'.
bool names_a_text(std::string_view line) {
    constexpr std::string_view LETTERS = "ABCDEFGHIJKLMNOPQRSTUVWXYZ_";
    for (auto at = line.find('@'); at != std::string_view::npos; at = line.find('@', at + 1)) {
        const auto end = line.find_first_not_of(LETTERS, at + 1);
        if (end != std::string_view::npos && end > at + 1 && line[end] == '@') return true;
    }
    return false;
}

/// The lines of `block`, each after `start`.
std::string each_after(std::string_view start, const std::string& block) {
    std::istringstream lines(block);
    std::string result;
    for (std::string line; std::getline(lines, line);) result.append(start).append(line) += '\n';
    return result;
}

/// A line with its texts filled in; nullopt if it names an unknown block or text.
std::optional<std::string> filled_line(const std::string& line) {
    for (const Block& block : BLOCKS) {
        if (!line.ends_with(block.name)) continue;
        return each_after({line.data(), line.size() - block.name.size()}, block.text());
    }
    std::string result = line;
    for (const auto& [name, text] : texts()) {
        for (auto at = result.find(name); at != std::string::npos; at = result.find(name, at)) {
            result.replace(at, name.size(), text);
        }
    }
    if (result.find("@@") != std::string::npos || names_a_text(result)) return std::nullopt;
    return result + "\n";
}

int complain(const char* about, const std::string& what) {
    std::cerr << "fill_templates: " << about << ": " << what << "\n";
    return 1;
}

}  // namespace
}  // namespace gatescope

int main(int argument_count, char** arguments) {
    using namespace gatescope;
    if (argument_count != 3) return complain("usage", "fill_templates TEMPLATE OUTPUT");
    std::ifstream input(arguments[1]);
    if (!input) return complain("cannot read", arguments[1]);
    std::ostringstream result;
    for (std::string line; std::getline(input, line);) {
        const auto text = filled_line(line);
        if (!text) return complain("no such table", line);
        result << *text;
    }
    std::ofstream output(arguments[2], std::ios::binary);
    output << result.str();
    output.close();
    return output ? 0 : complain("cannot write", arguments[2]);
}
