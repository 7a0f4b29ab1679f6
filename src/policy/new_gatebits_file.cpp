#include "policy/new_gatebits_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "base/answer_file.h"
#include "base/file_identity.h"
#include "base/filled.h"
#include "base/replace_file.h"
#include "base/startup.h"
#include "base/temporary_files.h"
#include "dialog/messages.h"
#include "messages/policy_texts.h"
#include "messages/startup_texts.h"

namespace {

/// In the same directory, so that it can be renamed; hidden, and nobody else's.
std::string unfinished_name(const std::string& path) {
    return path.substr(0, path.rfind('/') + 1) +
           filled(".gatescope_new_%s", GLOBAL_PID_STRING.c_str());
}

/// Writes, syncs and closes; 0 or an errno.
int fill(int file, const std::string& text) {
    int error = write_all(file, text);
    if (error == 0 && fsync(file) != 0) error = errno;
    if (close(file) != 0 && error == 0) error = errno;
    return error;
}

/// Gives the finished file its name unless that is taken; 0 or an errno. File systems that cannot
/// rename without replacing can link.
int give_name(const std::string& unfinished, const std::string& path) {
    if (renameat2(AT_FDCWD, unfinished.c_str(), AT_FDCWD, path.c_str(), RENAME_NOREPLACE) == 0) {
        forget_temporary_file(unfinished);
        return 0;
    }
    if (errno != EINVAL && errno != ENOSYS) return errno;
    return link(unfinished.c_str(), path.c_str()) == 0 ? 0 : errno;
}

[[noreturn]] void gripe_not_written(const std::string& path, int error) {
    gripe(filled(NEW_FILE_NOT_WRITTEN, path.c_str(), std::strerror(error)));
}

}  // namespace

NewFile create_gatebits_file(const std::string& path, const std::string& text) {
    const std::string unfinished = unfinished_name(path);
    // With the permissions of any new file of the operator's.
    const int file = create_temporary_file(unfinished, 0666);
    if (file == -1) return NewFile::NOT_PERMITTED;
    int error = fill(file, text);
    if (error == 0) error = give_name(unfinished, path);
    remove_temporary_file(unfinished);
    if (error == EEXIST) return NewFile::EXISTS;
    if (error != 0) gripe_not_written(path, error);
    error = sync_directory_of(path);
    if (error != 0) gripe(filled(NEW_FILE_NOT_SYNCED, path.c_str(), std::strerror(error)));
    return NewFile::CREATED;
}

std::string bytes_to_copy(const std::string& path, const std::string& destination) {
    FILE* stream = std::fopen(path.c_str(), "re");
    if (stream == nullptr) {
        gripe(filled(COULD_NOT_MOVE_2, path.c_str(), destination.c_str(), errno));
    }
    std::string bytes;
    std::array<char, 4096> chunk;
    std::size_t got = 0;
    while ((got = std::fread(chunk.data(), 1, chunk.size(), stream)) > 0) {
        bytes.append(chunk.data(), got);
    }
    const int error = std::ferror(stream) != 0 ? errno : 0;
    std::fclose(stream);
    if (error != 0) gripe(filled(COULD_NOT_MOVE_2, path.c_str(), destination.c_str(), error));
    return bytes;
}
