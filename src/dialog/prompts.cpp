#include "dialog/prompts.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>

#include "base/child.h"
#include "base/filled.h"
#include "base/replace_file.h"
#include "base/run_identity.h"
#include "base/signals_held.h"
#include "base/temporary_files.h"
#include "base/text.h"
#include "dialog/answer_file.h"
#include "dialog/clearprompt.h"
#include "dialog/messages.h"
#include "messages/dialog_texts.h"
#include "messages/startup_texts.h"

namespace {

// Command lines; the texts in them come quoted already.

/// CLEARPROMPT, result file, default, newline option, prompt. The two blanks belong there.
constexpr char PROMPT_LINE[] = "%s text -prefer_gui -outfile %s  -default %s %s -prompt %s";
/// CLEARPROMPT, result file, file with the default, newline option, prompt.
constexpr char PROMPT_FROM_FILE_LINE[] = "%s text -prefer_gui -outfile %s  -dfile %s %s -prompt %s";
/// CLEARPROMPT, result file, file to show, title.
constexpr char SHOW_FILE_LINE[] =
    "%s text -prefer_gui -multi_line -outfile %s -dfile %s -newline -prompt %s";
/// CLEARPROMPT, result file, items, " " or "-choices", title.
constexpr char LIST_LINE[] = "%s list -prefer_gui -outfile %s -newline -items %s %s -prompt %s";

/// Largest answer of a multiple choice, in bytes.
constexpr std::size_t LARGEST_SELECTION = 10001;

std::string prompt_result_path() {
    return make_tfile("gatewarden_prompt_result", GLOBAL_PID_STRING.c_str(), nullptr);
}

/// Runs a dialog that shows `text` and answers in words.
std::optional<std::string> answer_in_words(const std::string& command, const std::string& text,
                                           const AnswerFile& answer) {
    if (run_dialog(command, text, NOT_ASKED_SO_CANCELLED) != 0) return std::nullopt;
    return words_joined(answer.content().value_or(""));
}

/// The picks of a multiple choice, one a line in the file, separated by commas.
std::string several_picks(const AnswerFile& answer) {
    bool failed = false;
    const auto content = answer.content(LARGEST_SELECTION + 1, &failed);
    if (!content) gripe(RESULT_FILE_DISAPPEARED);
    if (failed) gripe(INVALID_SELECTION);
    if (content->size() > LARGEST_SELECTION) {
        gripe(filled(SELECTION_TOO_LARGE, static_cast<int>(LARGEST_SELECTION)));
    }
    std::string picks(c_text(*content));
    std::replace(picks.begin(), picks.end(), '\n', ',');
    if (picks.ends_with(',')) picks.pop_back();
    return picks;
}

bool is_ours_alone(int file) {
    struct stat status;
    return fstat(file, &status) == 0 && S_ISREG(status.st_mode) && status.st_nlink == 1 &&
           status.st_uid == geteuid();
}

/// Opens the file for appending, creating it where needed; -1 when that cannot be, or when it is
/// not ours alone.
int open_default(const std::string& path) {
    const SignalsHeld held;
    const int file = open(
        path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0600);
    if (file == -1) return -1;
    if (!is_ours_alone(file)) {
        close(file);
        errno = EEXIST;
        return -1;
    }
    remember_temporary_file(path);
    return file;
}

/// Adds `text` to the file that a prompt takes its default from. What somebody else put there is
/// not written to.
void append_default(const std::string& path, const std::string& text) {
    const int file = open_default(path);
    if (file == -1) gripe(CANNOT_CREATE_TEMP_FILE, path, errno);
    int error = write_all(file, c_text(text));
    if (close(file) != 0 && error == 0) error = errno;
    if (error != 0) gripe(CANNOT_CREATE_TEMP_FILE, path, error);
}

/// One of the two standard streams, pointed at a file while a command runs.
class RedirectedStream {
  public:
    RedirectedStream(int stream, const char* duplicate_failure)
        : stream_(stream), saved_(fcntl(stream, F_DUPFD_CLOEXEC, 3)) {
        if (saved_ == -1) std::perror(duplicate_failure);
    }
    ~RedirectedStream() {
        if (saved_ == -1) return;
        dup2(saved_, stream_);
        close(saved_);
    }
    RedirectedStream(const RedirectedStream&) = delete;
    RedirectedStream& operator=(const RedirectedStream&) = delete;

    [[nodiscard]] bool is_saved() const { return saved_ != -1; }
    void point_at(int file, const char* failure) const {
        if (saved_ != -1 && dup2(file, stream_) == -1) std::perror(failure);
    }

  private:
    int stream_;
    int saved_;
};

}  // namespace

std::optional<std::string> prompt(const std::string& prompt_text, const std::string& def) {
    const AnswerFile answer(prompt_result_path());
    return answer_in_words(
        filled(PROMPT_LINE, CLEARPROMPT, quoted(answer.path()).c_str(), quoted(def).c_str(),
               newline_option(prompt_text).c_str(), quoted(prompt_text).c_str()),
        prompt_text, answer);
}

std::optional<std::string> prompt_from_file(const std::string& prompt_text,
                                            const std::string& default_text) {
    const AnswerFile answer(prompt_result_path());
    const std::string default_file =
        make_tfile("gatewarden_prompt_prompt", GLOBAL_PID_STRING.c_str(), nullptr);
    append_default(default_file, default_text);
    auto typed =
        answer_in_words(filled(PROMPT_FROM_FILE_LINE, CLEARPROMPT, quoted(answer.path()).c_str(),
                               quoted(default_file).c_str(), newline_option(prompt_text).c_str(),
                               quoted(prompt_text).c_str()),
                        prompt_text, answer);
    remove_temporary_file(default_file);
    return typed;
}

void show_file_with_clearprompt(const std::string& title, const std::string& file, bool errors) {
    const AnswerFile answer(prompt_result_path());
    const std::string full_title =
        filled(SHOW_FILE_TITLE, title.c_str(), errors ? "one or more " : "NO ",
               errors ? "displayed near bottom " : "");
    run_dialog(filled(SHOW_FILE_LINE, CLEARPROMPT, quoted(answer.path()).c_str(),
                      quoted(file).c_str(), quoted(full_title).c_str()),
               filled("%s\n%s", full_title.c_str(), file.c_str()), NOT_SHOWN);
}

std::optional<std::string> make_selection(const std::string& title, const std::string& items,
                                          const std::string& option) {
    const AnswerFile answer(
        make_tfile("gatewarden_select_result", GLOBAL_PID_STRING.c_str(), nullptr));
    const std::string command =
        filled(LIST_LINE, CLEARPROMPT, quoted(answer.path()).c_str(), quoted(items).c_str(),
               option.c_str(), quoted(title).c_str());
    if (option == SINGLE_CHOICE) return answer_in_words(command, title, answer);
    if (run_dialog(command, title, NOT_ASKED_SO_CANCELLED) != 0) return std::nullopt;
    return several_picks(answer);
}

int get_system_rc(const std::string& command) {
    std::fflush(stdout);
    std::fflush(stderr);
    const RedirectedStream out(STDOUT_FILENO, "_dup( stdout ) failure");
    const RedirectedStream err(STDERR_FILENO, "_dup( stderr ) failure");
    if (!out.is_saved() && !err.is_saved()) return run_in_shell(command);
    const std::string trash =
        make_tfile("gatewarden_temp_trash_file", nullptr, GLOBAL_PID_STRING.c_str());
    const int file = create_temporary_file(trash);
    if (file == -1) {
        print_stdout("Can't open file 'data'\n");
        return run_in_shell(command);
    }
    out.point_at(file, "Can't _dup2 stdout");
    err.point_at(file, "Can't _dup2 stderr");
    const int status = run_in_shell(command);
    close(file);
    remove_temporary_file(trash);
    return status;
}
