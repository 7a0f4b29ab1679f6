#include "dialog/prompts.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>

#include "base/child.h"
#include "base/filled.h"
#include "base/run_identity.h"
#include "base/temporary_files.h"
#include "base/text.h"
#include "dialog/answer_file.h"
#include "dialog/clearprompt.h"
#include "dialog/messages.h"
#include "messages/dialog_texts.h"

namespace gatescope {
namespace {

// Command lines; their texts must be quoted.

/// CLEARPROMPT, result file, default, newline option, prompt. Two blanks after the result file.
constexpr char PROMPT_LINE[] = "%s text -prefer_gui -outfile %s  -default %s %s -prompt %s";
/// CLEARPROMPT, result file, items, " " or "-choices", title.
constexpr char LIST_LINE[] = "%s list -prefer_gui -outfile %s -newline -items %s %s -prompt %s";

/// Largest answer of a multiple choice, in bytes.
constexpr std::size_t LARGEST_SELECTION = 10001;

/// The picks of a multiple choice, which are lines in the file, separated by commas.
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

/// A standard stream that is restored by the destructor.
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
    return ask_for_words(
        filled(PROMPT_LINE, CLEARPROMPT, quoted(answer.path()).c_str(), quoted(def).c_str(),
               newline_option(prompt_text).c_str(), quoted(prompt_text).c_str()),
        prompt_text, answer);
}

std::string as_list(const std::vector<std::string>& entries) {
    std::string list;
    for (const std::string& entry : entries) list += entry + ",";
    if (!list.empty()) list.pop_back();
    return list;
}

std::optional<std::string> make_selection(const std::string& title, const std::string& items,
                                          const std::string& option) {
    const AnswerFile answer(
        make_tfile("gatewarden_select_result", GLOBAL_PID_STRING.c_str(), nullptr));
    const std::string command =
        filled(LIST_LINE, CLEARPROMPT, quoted(answer.path()).c_str(), quoted(items).c_str(),
               option.c_str(), quoted(title).c_str());
    if (option == SINGLE_CHOICE) return ask_for_words(command, title, answer);
    if (run_dialog(command, title, NOT_ASKED_SO_CANCELLED) != 0) return std::nullopt;
    return several_picks(answer);
}

int get_system_rc(const std::string& command) {
    std::fflush(stdout);
    std::fflush(stderr);
    const RedirectedStream out(STDOUT_FILENO, CANNOT_KEEP_STDOUT);
    const RedirectedStream err(STDERR_FILENO, CANNOT_KEEP_STDERR);
    if (!out.is_saved() && !err.is_saved()) return run_in_shell(command);
    const std::string trash =
        make_tfile("gatewarden_temp_trash_file", nullptr, GLOBAL_PID_STRING.c_str());
    const int file = create_temporary_file(trash);
    if (file == -1) {
        print_stdout(CANNOT_OPEN_TRASH_FILE);
        return run_in_shell(command);
    }
    out.point_at(file, CANNOT_REDIRECT_STDOUT);
    err.point_at(file, CANNOT_REDIRECT_STDERR);
    const int status = run_in_shell(command);
    close(file);
    remove_temporary_file(trash);
    return status;
}

}  // namespace gatescope
