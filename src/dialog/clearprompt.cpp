#include "dialog/clearprompt.h"

#include <strings.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "base/child.h"
#include "base/filled.h"
#include "base/search_path.h"
#include "base/standard_streams.h"
#include "messages/dialog_texts.h"
#include "messages/environment.h"

namespace gatescope {
namespace {

// Exit statuses of a shell that cannot start a program.
constexpr int NOT_EXECUTABLE = 126;
constexpr int NOT_FOUND = 127;

bool quoting_is_strict() {
    const char* setting = std::getenv(ENV_STRICT_QUOTING);
    return setting != nullptr && strcasecmp(setting, "yes") == 0;
}

/// Why clearprompt did not start; empty when it did. `status` is the shell's; errno must be that of
/// a shell that did not start. The status of a dialog in the background is always 0.
std::string why_not_started(int status) {
    if (status == -1) return filled(NO_SHELL, std::strerror(errno));
    if (!is_on_search_path(CLEARPROMPT, X_OK)) return PROGRAM_NOT_FOUND;
    const int shell_status = WIFEXITED(status) ? WEXITSTATUS(status) : 0;
    const bool failed = shell_status == NOT_EXECUTABLE || shell_status == NOT_FOUND;
    return failed ? filled(SHELL_ENDED_WITH, shell_status) : "";
}

}  // namespace

int run_dialog(const std::string& command, const std::string& text, const char* consequence) {
    errno = 0;
    const int status = run_in_shell(command, CLEARPROMPT);
    const std::string reason = why_not_started(status);
    if (!reason.empty()) {
        note(filled(DIALOG_NOT_STARTED, CLEARPROMPT, reason.c_str(), consequence, text.c_str()));
    }
    return status;
}

std::string quoted(const std::string& text) {
    const std::string_view escaped = quoting_is_strict() ? "\\\"$`" : "\\";
    std::string result = "\"";
    for (const char character : c_text(text)) {
        if (escaped.find(character) != std::string_view::npos) result += '\\';
        result += character;
    }
    return result + '"';
}

std::string path_argument(const std::string& path) {
    return quoting_is_strict() ? quoted(path) : path;
}

std::string newline_option(const std::string& text) {
    return c_text(text).find("\\n") == std::string_view::npos ? " " : "-newline";
}

}  // namespace gatescope
