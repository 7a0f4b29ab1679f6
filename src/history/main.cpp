#include <getopt.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <string>
#include <vector>

#include "base/filled.h"
#include "base/operator_name.h"
#include "base/paths.h"
#include "base/signals.h"
#include "base/standard_streams.h"
#include "base/utf8.h"
#include "base/whole_file.h"
#include "dialog/messages.h"
#include "history/change_list.h"
#include "history/changes.h"
#include "history/line_diff.h"
#include "main/out_of_memory.h"
#include "main/startup.h"
#include "messages/environment.h"
#include "messages/history_texts.h"
#include "messages/identity.h"
#include "messages/policy_texts.h"
#include "messages/startup_texts.h"
#include "policy/gatebits_file.h"

namespace gatescope {
namespace {

enum Status { FOUND = 0, NOTHING_FOUND = 1, SAME = 0, DIFFERENT = 1, DONE = 0 };

/// Prints a text; the status, unless that fails.
Status print(const std::string& text, Status status) {
    const int error = write_all(STDOUT_FILENO, text);
    if (error != 0) gripe(filled(OUTPUT_NOT_WRITTEN, std::strerror(error)));
    return status;
}

/// How many characters there is room for in a line.
std::size_t width_of_output() {
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

const PastChange& change_numbered(const std::string& number, const PastChanges& changes) {
    for (const PastChange& change : changes) {
        if (std::to_string(change.number) == number) return change;
    }
    gripe(filled(NO_SUCH_CHANGE, number.c_str(), std::getenv(ENV_HISTORY)));
}

Status list(const PastChanges& changes, const std::string& /*number*/) {
    if (changes.empty()) return NOTHING_FOUND;
    const std::string first = changes.front().text("file");
    for (const PastChange& change : changes) {
        const std::string file = change.text("file");
        if (file == first) continue;
        gripe(filled(SEVERAL_FILES, change.directory.c_str(), first.c_str(), file.c_str()));
    }
    return print(list_of(changes, width_of_output()), FOUND);
}

Status show_diff(const PastChanges& changes, const std::string& number) {
    const PastChange& change = change_numbered(number, changes);
    const std::string file = harmless(change.text("file"));
    const std::string diff =
        unified_diff(text_before(change), text_after(change, changes),
                     filled(DIFF_HEAD, file.c_str(), change.number, file.c_str(), change.number));
    return print(isatty(STDOUT_FILENO) == 1 ? for_terminal(diff, has_colours()) : diff,
                 diff.empty() ? SAME : DIFFERENT);
}

Status restore(const PastChanges& changes, const std::string& number) {
    const PastChange& change = change_numbered(number, changes);
    const std::string file = change.text("file");
    const auto saved = change.value("saved");
    if (!saved) gripe(filled(NO_TEXT_BEFORE, change.number, file.c_str()));
    if (!operator_name()) gripe(NO_USER);
    verify_set_tempdir();
    const std::string item = filled(TEXT_BEFORE_CHANGE, change.number);
    const Gatebits text(text_before(change));
    if (text.lines().empty()) gripe(filled(GATEBITS_EMPTY, saved->c_str()));
    put_back(file, text, {RESTORE_ACTION, item, std::nullopt, saved});
    return DONE;
}

struct Command {
    const char* name;
    std::size_t words;  ///< with its name
    Status (*run)(const PastChanges& changes, const std::string& number);
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
        if (letter == 'h') return print(HISTORY_USAGE, DONE);
        if (letter == 'v') return print(filled(HISTORY_VERSION, HISTORY_PROGRAM, VERSION), DONE);
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
    const int error = open_missing_standard_streams();
    if (error != 0) gripe(filled(CANNOT_OPEN_NULL_DEVICE, std::strerror(error)));
    install_signal_cleanup();
    install_out_of_memory_handlers();
    try {
        return run(argument_count, arguments);
    } catch (const std::bad_alloc&) {
        gripe_out_of_memory();
    }
}
