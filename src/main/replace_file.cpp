#include "main/replace_file.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "dialog/messages.h"
#include "main/answer_file.h"
#include "main/file_identity.h"
#include "main/filled.h"
#include "main/temporary_files.h"
#include "messages/startup_texts.h"

namespace {

/// What became of an attempt to put a new file in the old one's place.
enum Outcome { REPLACED, NOT_POSSIBLE_HERE };

/// The file that `path` names in the end, links followed; `path` itself when it names none.
std::string target_of(const std::string& path) {
    char* resolved = realpath(path.c_str(), nullptr);
    const std::string target = resolved != nullptr ? resolved : path;
    std::free(resolved);
    return target;
}

[[noreturn]] void gripe_about(const std::string& path, const char* reason,
                              const std::string& state) {
    gripe(filled(COULD_NOT_REPLACE, path.c_str(), reason, state.c_str()));
}

[[noreturn]] void gripe_unchanged(const std::string& path, int error) {
    gripe_about(path, std::strerror(error), filled(FILE_IS_UNCHANGED, path.c_str()));
}

/// Writes and syncs; 0 or an errno.
int write_and_sync(int descriptor, std::string_view text) {
    const int error = write_all(descriptor, text);
    if (error != 0) return error;
    return fsync(descriptor) == 0 ? 0 : errno;
}

/// A name for the new file: in the same directory, so that it can be renamed, and hidden.
std::string name_beside(const std::string& path) {
    const auto base = path.rfind('/') + 1;
    return path.substr(0, base) + "." + path.substr(base) + filled(".gatescope-%d", getpid());
}

bool is_refusal(int error) {
    return error == EACCES || error == EPERM || error == EROFS || error == EEXIST ||
           error == ENAMETOOLONG;
}

/// Fills the new file and renames it. The old file is untouched whenever this gripes or gives up.
Outcome put_in_place(int old_file, int new_file, const std::string& new_path,
                     const std::string& path, std::string_view text) {
    if (carry_over_identity(old_file, new_file) != 0) {
        close(new_file);
        remove_temporary_file(new_path);
        return NOT_POSSIBLE_HERE;
    }
    int error = write_and_sync(new_file, text);
    if (close(new_file) != 0 && error == 0) error = errno;
    if (error != 0) gripe_unchanged(path, error);
    if (rename(new_path.c_str(), path.c_str()) != 0) {
        error = errno;
        if (!is_refusal(error)) gripe_unchanged(path, error);
        remove_temporary_file(new_path);
        return NOT_POSSIBLE_HERE;
    }
    forget_temporary_file(new_path);
    error = sync_directory_of(path);
    if (error != 0) {
        gripe_about(path, std::strerror(error), filled(FILE_IS_NEW, path.c_str()));
    }
    return REPLACED;
}

Outcome replace_by_rename(int old_file, const std::string& path, std::string_view text) {
    struct stat status;
    if (fstat(old_file, &status) != 0) gripe_unchanged(path, errno);
    if (status.st_nlink != 1) return NOT_POSSIBLE_HERE;
    const std::string new_path = name_beside(path);
    const int new_file = create_temporary_file(new_path);
    if (new_file == -1) {
        if (!is_refusal(errno)) gripe_unchanged(path, errno);
        return NOT_POSSIBLE_HERE;
    }
    return put_in_place(old_file, new_file, new_path, path, text);
}

/// While a file is being rewritten in place no signal may stop us halfway.
class SignalsHeld {
  public:
    SignalsHeld() {
        sigset_t signals;
        sigemptyset(&signals);
        for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGTSTP}) sigaddset(&signals, number);
        sigprocmask(SIG_BLOCK, &signals, &before_);
    }
    ~SignalsHeld() { sigprocmask(SIG_SETMASK, &before_, nullptr); }
    SignalsHeld(const SignalsHeld&) = delete;
    SignalsHeld& operator=(const SignalsHeld&) = delete;

  private:
    sigset_t before_;
};

/// The part that makes the file longer goes first: when the disk is full the old text is still
/// whole, and cutting the file back undoes everything.
void grow(int file, const std::string& path, std::string_view text, std::size_t old_size) {
    if (text.size() <= old_size) return;
    int error = lseek(file, static_cast<off_t>(old_size), SEEK_SET) == -1
                    ? errno
                    : write_and_sync(file, text.substr(old_size));
    if (error == 0) return;
    if (ftruncate(file, static_cast<off_t>(old_size)) == 0) gripe_unchanged(path, error);
}

/// 0 or an errno.
int overwrite(int file, std::string_view text) {
    if (lseek(file, 0, SEEK_SET) == -1) return errno;
    if (const int error = write_all(file, text)) return error;
    if (ftruncate(file, static_cast<off_t>(text.size())) != 0) return errno;
    return fsync(file) == 0 ? 0 : errno;
}

void rewrite_in_place(const std::string& path, std::string_view text,
                      const std::string& safe_copy) {
    const int file = open(path.c_str(), O_WRONLY | O_NOFOLLOW | O_CLOEXEC);
    struct stat status;
    if (file == -1 || fstat(file, &status) != 0) gripe_unchanged(path, errno);
    const SignalsHeld held;
    grow(file, path, text, static_cast<std::size_t>(status.st_size));
    // From here on the copy is the only whole text until the file is.
    forget_temporary_file(safe_copy);
    int error = overwrite(file, text);
    if (close(file) != 0 && error == 0) error = errno;
    if (error != 0) {
        gripe_about(path, std::strerror(error),
                    filled(FILE_IS_DAMAGED, path.c_str(), safe_copy.c_str()));
    }
}

}  // namespace

void replace_file(const std::string& path, std::string_view text, const std::string& safe_copy) {
    const std::string target = target_of(path);
    // A file that its owner made read-only stays as it is, even where a rename would be allowed.
    const int old_file = open(target.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (old_file == -1) {
        gripe(filled(COULD_NOT_MOVE_1, safe_copy.c_str(), path.c_str(), errno));
    }
    struct stat status;
    if (fstat(old_file, &status) != 0) gripe_unchanged(target, errno);
    if (!S_ISREG(status.st_mode)) {
        gripe_about(target, NOT_A_REGULAR_FILE, filled(FILE_IS_UNCHANGED, target.c_str()));
    }
    if (replace_by_rename(old_file, target, text) != REPLACED) {
        rewrite_in_place(target, text, safe_copy);
    }
    close(old_file);
    remove_temporary_file(safe_copy);
}

int write_all(int descriptor, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = write(descriptor, text.data(), text.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return errno;
        if (written == 0) return EIO;
        text.remove_prefix(static_cast<std::size_t>(written));
    }
    return 0;
}
