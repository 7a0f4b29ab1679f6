#include "fuzz/fuzz_world.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "main/child.h"
#include "main/process_end.h"
#include "main/startup.h"
#include "main/temporary_files.h"
#include "messages/identity.h"
#include "policy/gatebits_file.h"

std::string last_command;
std::string last_answer;

namespace {

/// More dialogs than this without an end are a loop.
constexpr int MANY_DIALOGS = 5000;

FuzzedDataProvider* answers = nullptr;
int dialogs = 0;

/// The world's directory, as long as the process lives.
struct Directory {
    std::string path = "/dev/shm/gatescope_fuzz_XXXXXX";
    Directory() {
        if (mkdtemp(path.data()) != nullptr) return;
        path = "/tmp/gatescope_fuzz_XXXXXX";
        must(mkdtemp(path.data()) != nullptr, "a directory for the world");
    }
    ~Directory() { std::filesystem::remove_all(path); }
    Directory(const Directory&) = delete;
    Directory& operator=(const Directory&) = delete;
};

/// The value of "-outfile" in a command line, if that is a file of the world's: the texts of a
/// dialog may hold the same words, and nothing outside may be written to.
std::string result_file_in(const std::string& command) {
    constexpr std::string_view OPTION = "-outfile \"";
    const auto at = command.find(OPTION);
    if (at == std::string::npos) return "";
    const auto begin = at + OPTION.size();
    const std::string path = command.substr(begin, command.find('"', begin) - begin);
    const bool inside = path.starts_with(world_path("")) && path.find("..") == std::string::npos;
    return inside ? path : "";
}

void write_bytes(const std::string& path, std::string_view bytes) {
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    must(file != -1 && write(file, bytes.data(), bytes.size()) == ssize_t(bytes.size()), "a file");
    close(file);
}

}  // namespace

// The program's own two are compiled under other names.
[[noreturn]] void clean_exit(int status) {
    remove_temporary_files();
    throw ProcessEnded{status};
}

int run_in_shell(const std::string& command) {
    last_command = command;
    must(++dialogs < MANY_DIALOGS, "an end to the dialogs");
    const bool is_dialog = command.starts_with("clearprompt");
    if (answers == nullptr || answers->remaining_bytes() == 0) return is_dialog ? 512 : 0;
    // Mostly 0, so that the work behind a dialog is reached.
    constexpr int STATUSES[] = {0, 0, 0, 0, 0, 0, 256, 512, 2, -1};
    const int status = answers->PickValueInArray(STATUSES);
    const std::string file = is_dialog ? result_file_in(command) : "";
    last_answer = answers->ConsumeRandomLengthString();
    if (!file.empty() && status == 0) write_bytes(file, last_answer);
    return status;
}

int until_the_end(const std::function<void()>& body) {
    static const int first_free = [] {
        const int probe = open("/dev/null", O_RDONLY);
        close(probe);
        return probe;
    }();
    int status = -1;
    dialogs = 0;
    try {
        body();
    } catch (const ProcessEnded& end) {
        status = end.status;
    }
    if (LOGGING_STREAM != nullptr) std::fclose(LOGGING_STREAM);
    if (LOGGING_FILE_PRUNE_STREAM != nullptr) std::fclose(LOGGING_FILE_PRUNE_STREAM);
    LOGGING_STREAM = LOGGING_FILE_PRUNE_STREAM = nullptr;
    if (status != -1) close_range(static_cast<unsigned>(first_free), ~0U, 0);
    return status;
}

std::string world_path(const std::string& name) {
    static const Directory directory;
    return directory.path + "/" + name;
}

void put_file(const std::string& name, std::string_view bytes) {
    write_bytes(world_path(name), bytes);
}

std::string get_file(const std::string& name) {
    std::ifstream stream(world_path(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

void use_gatebits(std::string_view bytes) {
    TEMP_DIR = world_path("tmp");
    static const bool made = std::filesystem::create_directory(TEMP_DIR);
    must(made, "a directory for temporary files");
    GLOBAL_PID_STRING = "1";
    t_file_name = make_tfile("t_file", SELF, GLOBAL_PID_STRING.c_str());
    ENTERPRIZE_PERMISSION_FILE = world_path("gatebits.txt");
    put_file("gatebits.txt", bytes);
}

std::string gatebits() {
    return get_file("gatebits.txt");
}

void answer_dialogs_from(FuzzedDataProvider* data) {
    answers = data;
    dialogs = 0;
}

void must(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "This does not hold: %s\n", what);
    std::abort();
}
