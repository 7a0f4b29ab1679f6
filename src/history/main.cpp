#include <getopt.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "base/filled.h"
#include "base/operator_name.h"
#include "base/paths.h"
#include "base/utf8.h"
#include "base/whole_file.h"
#include "dialog/messages.h"
#include "history/change_list.h"
#include "history/changes.h"
#include "history/line_diff.h"
#include "main/startup.h"
#include "messages/environment.h"
#include "messages/history_texts.h"
#include "messages/identity.h"
#include "messages/policy_texts.h"
#include "messages/startup_texts.h"
#include "policy/gatebits_file.h"

namespace gatescope {
namespace {

// Exit statuses, as of grep and diff; after an error it is 2.

/// There are changes, no differences, or the text was put back.
constexpr int SUCCESS = 0;
constexpr int NO_CHANGES_OR_DIFFERENT = 1;

/// Prints the text and returns the status; gripes when it cannot be written.
int print(const std::string& text, int status) {
    const int error = write_all(STDOUT_FILENO, text);
    if (error != 0) gripe(filled(OUTPUT_NOT_WRITTEN, std::strerror(error)));
    return status;
}

/// The columns of the terminal; without one unlimited.
std::size_t output_width() {
    winsize size = {};
    const bool is_terminal = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return is_terminal ? size.ws_col : std::numeric_limits<std::size_t>::max();
}

bool has_colours() {
    const char* terminal = std::getenv(ENV_TERM);
    const char* no_color = std::getenv(ENV_NO_COLOR);
    return terminal != nullptr && std::strcmp(terminal, "dumb") != 0 &&
           (no_color == nullptr || *no_color == '\0');
}

/// The change with that number; gripes if there is none.
const ChangeRecord& change_numbered(const std::string& number, const ChangeRecords& changes) {
    for (const ChangeRecord& change : changes) {
        if (std::to_string(change.number) == number) return change;
    }
    gripe(filled(NO_SUCH_CHANGE, number.c_str(), std::getenv(ENV_HISTORY)));
}

int list(const ChangeRecords& changes, const std::string& /*number*/) {
    if (changes.empty()) return NO_CHANGES_OR_DIFFERENT;
    const std::string first = changes.front().text("file");
    for (const ChangeRecord& change : changes) {
        const std::string file = change.text("file");
        if (file == first) continue;
        gripe(filled(SEVERAL_FILES, change.directory.c_str(), first.c_str(), file.c_str()));
    }
    return print(list_of(changes, output_width()), SUCCESS);
}

int show_diff(const ChangeRecords& changes, const std::string& number) {
    const ChangeRecord& change = change_numbered(number, changes);
    const std::string file = printable(change.text("file"));
    const std::string diff =
        unified_diff(text_before(change), text_after(change, changes),
                     filled(DIFF_HEAD, file.c_str(), change.number, file.c_str(), change.number));
    return print(isatty(STDOUT_FILENO) == 1 ? for_terminal(diff, has_colours()) : diff,
                 diff.empty() ? SUCCESS : NO_CHANGES_OR_DIFFERENT);
}

int restore(const ChangeRecords& changes, const std::string& number) {
    const ChangeRecord& change = change_numbered(number, changes);
    const std::string file = change.text("file");
    const auto saved = change.value("saved");
    if (!saved) gripe(filled(NO_TEXT_BEFORE, change.number, file.c_str()));
    if (!operator_name()) gripe(NO_USER);
    verify_set_tempdir();
    const Gatebits text(text_before(change));
    if (text.lines().empty()) gripe(filled(GATEBITS_EMPTY, saved->c_str()));
    const std::string item = filled(TEXT_BEFORE_CHANGE, change.number);
    put_back(file, text, {RESTORE_ACTION, item, std::nullopt, saved});
    return SUCCESS;
}

struct Command {
    const char* name;
    std::size_t words;  ///< with its name
    int (*run)(const ChangeRecords& changes, const std::string& number);
};
constexpr std::array<Command, 3> COMMANDS = {
    {{"list", 1, list}, {"diff", 2, show_diff}, {"restore", 2, restore}}};

constexpr std::array<option, 3> LONG_OPTIONS = {
    {{"help", no_argument, nullptr, 'h'}, {"version", no_argument, nullptr, 'v'}, {}}};

int run(int argument_count, char** arguments) {
    std::optional<std::string> file;
    opterr = 0;
    for (int letter; (letter = getopt_long(argument_count, arguments, "d:f:", LONG_OPTIONS.data(),
                                           nullptr)) != -1;) {
        if (letter == 'h') return print(HISTORY_USAGE, SUCCESS);
        if (letter == 'v') return print(filled(HISTORY_VERSION, HISTORY_PROGRAM, VERSION), SUCCESS);
        if (letter == 'd') setenv(ENV_HISTORY, optarg, 1);
        if (letter == 'f') file = absolute_path(optarg);
        if (letter == '?') gripe(WRONG_WORDS);
    }
    const std::vector<std::string> words(arguments + optind, arguments + argument_count);
    for (const Command& command : COMMANDS) {
        if (words.size() != command.words || words.front() != command.name) continue;
        const char* directory = std::getenv(ENV_HISTORY);
        if (directory == nullptr) gripe(filled(NO_HISTORY_NAMED, ENV_HISTORY));
        return command.run(read_history(directory, file), words.back());
    }
    gripe(WRONG_WORDS);
}

}  // namespace
}  // namespace gatescope

int main(int argument_count, char** arguments) {
    using namespace gatescope;
    ZUL_PREFER_GUI = ERRORS_ON_STDERR;
    return run_program(HISTORY_PROGRAM, run, argument_count, arguments);
}
