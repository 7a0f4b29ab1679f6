#include "fuzz/fuzz_world.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>

#include "base/child.h"
#include "base/run_identity.h"
#include "base/temporary_files.h"
#include "dialog/process_end.h"
#include "fuzz/memory_files.h"
#include "messages/identity.h"
#include "messages/policy_texts.h"

namespace gatescope {

std::string last_command;
std::string last_answer;

namespace {

/// A run with more dialogs counts as an endless loop.
constexpr int MANY_DIALOGS = 5000;

FuzzedDataProvider* answers = nullptr;
int dialogs = 0;
FileChooser chooser;

/// The value of "-outfile" in a command line if it is in the directory of temporary files, else
/// empty: a text in the command line may contain that option with any file. Names of temporary
/// files need no quoting.
std::string result_file_in(const std::string& command) {
    constexpr std::string_view OPTION = "-outfile \"";
    const auto at = command.find(OPTION);
    if (at == std::string::npos) return "";
    const auto begin = at + OPTION.size();
    const std::string file = command.substr(begin, command.find('"', begin) - begin);
    const bool is_temporary =
        file.starts_with(TEMP_DIR + "/") && file.find("..") == std::string::npos;
    return is_temporary ? file : "";
}

bool is_file_choice(const std::string& command) {
    return command.starts_with("clearprompt file ");
}

void write_answer(const std::string& path, const std::string& answer) {
    if (path.starts_with(MEMORY_ROOT)) return put_memory_file(path, answer);
    // By a stream, whose calls are not wrapped.
    std::ofstream(path, std::ios::binary) << answer;
}

}  // namespace

// The program's versions of the next two functions are compiled under other names.
[[noreturn]] void clean_exit(int status) {
    remove_temporary_files();
    throw ProcessEnded{status};
}

int run_in_shell(const std::string& command, const char* /*program*/) {
    last_command = command;
    must(++dialogs < MANY_DIALOGS, "the dialogs end");
    const bool is_dialog = command.starts_with("clearprompt");
    if (answers == nullptr || answers->remaining_bytes() == 0) return is_dialog ? 512 : 0;
    // Mostly 0, so that the code after a dialog is reached.
    constexpr int STATUSES[] = {0, 0, 0, 0, 0, 0, 256, 512, 2, -1};
    const int status = answers->PickValueInArray(STATUSES);
    const std::string file = is_dialog ? result_file_in(command) : "";
    last_answer = chooser && is_file_choice(command) ? chooser(*answers)
                                                     : answers->ConsumeRandomLengthString();
    if (!file.empty() && status == 0) write_answer(file, last_answer);
    return status;
}

int until_the_end(const std::function<void()>& body) {
    int status = -1;
    dialogs = 0;
    try {
        body();
    } catch (const ProcessEnded& end) {
        status = end.status;
    }
    close_memory_files();
    return status;
}

std::string world_path(const std::string& name) {
    return std::string(MEMORY_ROOT) + "/" + name;
}

void put_file(const std::string& name, std::string_view bytes) {
    put_memory_file(world_path(name), bytes);
}

std::string get_file(const std::string& name) {
    return memory_file(world_path(name));
}

std::size_t files_in(const std::string& directory) {
    return memory_files_below(world_path(directory + "/"));
}

void use_gatebits(std::string_view bytes) {
    TEMP_DIR = world_path("tmp");
    GLOBAL_PID_STRING = "1";
    put_file("gatebits.txt", bytes);
}

std::string gatebits_path() {
    return world_path("gatebits.txt");
}

std::string gatebits() {
    return get_file("gatebits.txt");
}

std::string some_gatebits(FuzzedDataProvider& data) {
    std::string text = data.ConsumeRandomLengthString(300);
    if (data.ConsumeBool()) return text;
    const std::string line = data.ConsumeRandomLengthString(100);
    return text + "\n" + GS_VAR_NAME[0] + "/bin/true\n" +
           "gatewarden;;;east;\n;;O;\n;;\n;;\n; ;\n; ;\n;" + line +
           ";;\nD;000000000000000000000000;\n" + data.ConsumeRandomLengthString(300);
}

void answer_dialogs_from(FuzzedDataProvider* data) {
    answers = data;
    dialogs = 0;
}

void choose_files_by(FileChooser new_chooser) {
    chooser = std::move(new_chooser);
}

void must(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "Violated: %s\n", what);
    std::abort();
}

}  // namespace gatescope
