#include "main/answer_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>

#include "dialog/messages.h"
#include "main/process_end.h"
#include "main/temporary_files.h"
#include "messages/startup_texts.h"

namespace {

/// A file that nobody has written since its creation carries this time.
constexpr std::array<timespec, 2> NEVER_WRITTEN = {{{0, 0}, {0, 0}}};

bool was_written(int descriptor) {
    struct stat status;
    return fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) &&
           (status.st_size != 0 || status.st_mtim.tv_sec != 0);
}

}  // namespace

int create_temporary_file(const std::string& path) {
    unlink(path.c_str());
    const int descriptor = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (descriptor != -1) remember_temporary_file(path);
    return descriptor;
}

void remove_temporary_file(const std::string& path) {
    unlink_remove(path);
    forget_temporary_file(path);
}

AnswerFile::AnswerFile(const std::string& path) : path_(path) {
    const int descriptor = create_temporary_file(path);
    if (descriptor == -1) gripe(CANNOT_CREATE_TEMP_FILE);
    const bool marked = futimens(descriptor, NEVER_WRITTEN.data()) == 0;
    if (close(descriptor) != 0 || !marked) gripe(CANNOT_CREATE_TEMP_FILE);
}

AnswerFile::~AnswerFile() {
    remove_temporary_file(path_);
}

std::optional<std::string> AnswerFile::content(std::size_t limit, bool* failed) const {
    if (failed != nullptr) *failed = false;
    const int descriptor = open(path_.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (descriptor == -1) return std::nullopt;
    if (!was_written(descriptor)) {
        close(descriptor);
        return std::nullopt;
    }
    std::string text;
    std::array<char, 4096> chunk;
    while (text.size() < limit) {
        const ssize_t got =
            read(descriptor, chunk.data(), std::min(chunk.size(), limit - text.size()));
        if (got < 0 && errno == EINTR) continue;
        if (got < 0 && failed != nullptr) *failed = true;
        if (got <= 0) break;
        text.append(chunk.data(), static_cast<std::size_t>(got));
    }
    close(descriptor);
    return text;
}
