#include "dialog/answer_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>

#include "base/filled.h"
#include "base/run_identity.h"
#include "base/temporary_files.h"
#include "base/text.h"
#include "base/whole_file.h"
#include "dialog/clearprompt.h"
#include "dialog/messages.h"
#include "messages/dialog_texts.h"
#include "messages/startup_texts.h"

namespace gatescope {
namespace {

/// The modification time that marks a file as not written since its creation.
constexpr std::array<timespec, 2> NEVER_WRITTEN = {{{0, 0}, {0, 0}}};

/// 0 when the file was written, ENOENT when it was not, or another errno.
int check_written(int descriptor) {
    struct stat status;
    if (fstat(descriptor, &status) != 0) return errno;
    const bool written =
        S_ISREG(status.st_mode) && (status.st_size != 0 || status.st_mtim.tv_sec != 0);
    return written ? 0 : ENOENT;
}

}  // namespace

AnswerFile::AnswerFile(const std::string& path) : path_(path) {
    const int descriptor = create_temporary_file(path);
    if (descriptor == -1) gripe(CANNOT_CREATE_TEMP_FILE, path, errno);
    const bool marked = futimens(descriptor, NEVER_WRITTEN.data()) == 0;
    if (close(descriptor) != 0 || !marked) gripe(CANNOT_CREATE_TEMP_FILE, path, errno);
}

AnswerFile::~AnswerFile() {
    remove_temporary_file(path_);
}

std::optional<std::string> AnswerFile::content(std::size_t limit, bool* failed) const {
    const int descriptor = open(path_.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    int error = descriptor == -1 ? errno : check_written(descriptor);
    const bool answered = error == 0;
    std::string text;
    if (answered) error = read_whole(descriptor, limit, &text);
    if (descriptor != -1) close(descriptor);
    if (failed != nullptr) *failed = error != 0;
    if (error != 0 && error != ENOENT && failed == nullptr) {
        gripe(filled(CANNOT_READ_ANSWER, path_.c_str(), std::strerror(error)));
    }
    return answered ? std::optional(text) : std::nullopt;
}

std::string prompt_result_path() {
    return make_tfile("gatewarden_prompt_result", GLOBAL_PID_STRING.c_str(), nullptr);
}

std::optional<std::string> ask_for_words(const std::string& command, const std::string& text,
                                         const AnswerFile& answer) {
    if (run_dialog(command, text, NOT_ASKED_SO_CANCELLED) != 0) return std::nullopt;
    return words_joined(answer.content().value_or(""));
}

}  // namespace gatescope
