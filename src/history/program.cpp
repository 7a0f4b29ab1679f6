#include "history/program.h"

#include <getopt.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "base/filled.h"
#include "base/operator_name.h"
#include "base/standard_streams.h"
#include "base/whole_file.h"
#include "dialog/messages.h"
#include "dialog/process_end.h"
#include "history/change_list.h"
#include "history/changes.h"
#include "history/line_diff.h"
#include "main/startup.h"
#include "messages/environment.h"
#include "messages/history_texts.h"
#include "messages/identity.h"
#include "messages/startup_texts.h"
#include "policy/gatebits_file.h"
#include "policy/history.h"

namespace gatescope {
namespace {

enum Status { FOUND = 0, NOTHING_FOUND = 1, SAME = 0, DIFFERENT = 1, RESTORED = 0 };

void print(const std::string& text) {
    const int error = write_all(STDOUT_FILENO, text);
    if (error != 0) gripe(filled(OUTPUT_NOT_WRITTEN, std::strerror(error)));
}

/// How many characters there is room for in a line.
std::size_t width_of_output() {
    winsize size = {};
    const bool is_terminal = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return is_terminal ? size.ws_col : std::numeric_limits<std::size_t>::max();
}

const PastChange& change_numbered(const std::string& number, const History& history) {
    const auto found = std::find_if(
        history.changes.begin(), history.changes.end(),
        [&](const PastChange& change) { return std::to_string(change.number) == number; });
    if (found != history.changes.end()) return *found;
    gripe(filled(NO_SUCH_CHANGE, number.c_str(), history.directory.c_str()));
}

int list(const History& history) {
    for (const PastChange& change : history.changes) {
        const std::string first = history.changes.front().text("file");
        if (change.text("file") == first) continue;
        gripe(filled(SEVERAL_FILES, history.directory.c_str(), first.c_str(),
                     change.text("file").c_str()));
    }
    print(list_of(history.changes, width_of_output()));
    return history.changes.empty() ? NOTHING_FOUND : FOUND;
}

int show_diff(const History& history, const PastChange& change) {
    const NamedText before = text_before(history, change);
    const NamedText after = text_after(history, change);
    const std::string diff = unified_diff(before.text, after.text, before.name, after.name);
    print(isatty(STDOUT_FILENO) == 1 ? in_colours(diff) : diff);
    return diff.empty() ? SAME : DIFFERENT;
}

/// Through the same door as every change.
int restore(const History& history, const PastChange& change) {
    const std::string file = change.text("file");
    if (!operator_name()) gripe(NO_USER);
    if (!change.has("saved")) {
        gripe(filled(NO_TEXT_BEFORE, change.number, file.c_str()));
    }
    const NamedText before = text_before(history, change);
    verify_set_tempdir();
    setenv(ENV_HISTORY, history.directory.c_str(), 1);
    gatescope::change(
        file, {Gatebits(before.text), no_part},
        [&](const Gatebits& /*now*/) {
            return Rewrite{ChangeResult::WRITTEN, Gatebits(before.text)};
        },
        {RESTORE_ACTION, filled(TEXT_BEFORE_CHANGE, change.number), std::nullopt, before.name});
    return RESTORED;
}

/// The history that the options name, of the file that they name.
History history_of(const char* directory, const char* file) {
    if (directory == nullptr) gripe(filled(NO_HISTORY_NAMED, ENV_HISTORY));
    History history = read_history(directory);
    if (file != nullptr) {
        std::erase_if(history.changes, [wanted = absolute_path(file)](const PastChange& change) {
            return change.text("file") != wanted;
        });
    }
    return history;
}

[[noreturn]] void say_and_end(const std::string& text) {
    print(text);
    clean_exit(0);
}

}  // namespace

int run_history_program(int argument_count, char** arguments) {
    constexpr std::array<option, 3> LONG_OPTIONS = {
        {{"help", no_argument, nullptr, 'h'}, {"version", no_argument, nullptr, 'v'}, {}}};
    const char* directory = std::getenv(ENV_HISTORY);
    const char* file = nullptr;
    opterr = 0;
    int letter = 0;
    while ((letter = getopt_long(argument_count, arguments, "d:f:", LONG_OPTIONS.data(),
                                 nullptr)) != -1) {
        if (letter == 'h') say_and_end(HISTORY_USAGE);
        if (letter == 'v') say_and_end(filled(HISTORY_VERSION, HISTORY_PROGRAM, VERSION));
        if (letter == '?') gripe(WRONG_WORDS);
        (letter == 'd' ? directory : file) = optarg;
    }
    const std::vector<std::string> words(arguments + optind, arguments + argument_count);
    const auto say = [&](const char* command, std::size_t size) {
        return words.size() == size && words[0] == command;
    };
    if (say("list", 1)) return list(history_of(directory, file));
    if (!say("diff", 2) && !say("restore", 2)) gripe(WRONG_WORDS);
    const History history = history_of(directory, file);
    const PastChange& change = change_numbered(words[1], history);
    return say("diff", 2) ? show_diff(history, change) : restore(history, change);
}

}  // namespace gatescope
