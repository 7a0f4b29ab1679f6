#include "base/replace_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>

#include "base/file_identity.h"
#include "base/paths.h"
#include "base/platform.h"
#include "base/signals_blocked.h"
#include "base/temporary_files.h"
#include "base/whole_file.h"

namespace gatescope {
namespace {

/// The outcome of replacing the file by a rename.
struct Attempt {
    /// Whether the directory and the file allow it.
    bool possible;
    std::optional<Failure> why_not = std::nullopt;
};
constexpr bool POSSIBLE = true;
constexpr bool NOT_POSSIBLE_HERE = false;
constexpr auto UNCHANGED = Failure::State::UNCHANGED;

/// Creates the new file in the same directory, so that it can be renamed, under a hidden and unique
/// name. The descriptor, or -1 with errno set.
int create_beside(const std::string& path, std::string* new_path) {
    const SignalsBlocked blocked;
    if (is_in_append_only_directory(path)) {
        errno = EPERM;
        return -1;
    }
    *new_path = beside(path, ".gatescope_XXXXXX");
    const int descriptor = make_unique_file(new_path);
    if (descriptor != -1) remember_temporary_file(*new_path);
    return descriptor;
}

/// Whether the directory, not the disk, is the reason. A file that is a mount point is busy or on
/// another device.
bool is_refusal(int error) {
    return error == EACCES || error == EPERM || error == EROFS || error == EBUSY || error == EXDEV;
}

/// Writes the new file and renames it. After a failure the old file is unchanged.
Attempt put_in_place(int old_file, int new_file, const std::string& new_path,
                     const std::string& path, std::string_view text) {
    if (carry_over_identity(old_file, new_file) != 0) {
        close(new_file);
        return {NOT_POSSIBLE_HERE};
    }
    if (const int error = write_sync_close(new_file, text)) {
        return {POSSIBLE, Failure{UNCHANGED, error, path}};
    }
    if (rename(new_path.c_str(), path.c_str()) != 0) {
        if (is_refusal(errno)) return {NOT_POSSIBLE_HERE};
        return {POSSIBLE, Failure{UNCHANGED, errno, path}};
    }
    forget_temporary_file(new_path);
    if (const int error = sync_directory_of(path)) {
        return {POSSIBLE, Failure{Failure::State::NEW, error, path}};
    }
    return {POSSIBLE};
}

Attempt replace_by_rename(int old_file, const std::string& path, std::string_view text) {
    struct stat status;
    if (fstat(old_file, &status) != 0) return {POSSIBLE, Failure{UNCHANGED, errno, path}};
    if (status.st_nlink > 1) return {NOT_POSSIBLE_HERE};
    std::string new_path;
    const int new_file = create_beside(path, &new_path);
    if (new_file == -1) {
        if (is_refusal(errno)) return {NOT_POSSIBLE_HERE};
        return {POSSIBLE, Failure{UNCHANGED, errno, path}};
    }
    const Attempt attempt = put_in_place(old_file, new_file, new_path, path, text);
    if (!attempt.possible) remove_temporary_file(new_path);
    return attempt;
}

/// Extends the file to the new text's size by blank lines, which its readers ignore: a full disk
/// shows before old text is overwritten. 0, or an errno, and the file is then unchanged.
int make_room(int file, std::size_t old_size, std::size_t new_size) {
    if (new_size <= old_size) return 0;
    const auto end = static_cast<off_t>(old_size);
    if (lseek(file, end, SEEK_SET) == -1) return errno;
    const int error = write_and_sync(file, std::string(new_size - old_size, '\n'));
    // Where truncating fails too, the file is the old text with blank lines after it.
    if (error != 0 && ftruncate(file, end) != 0) return error;
    return error;
}

/// Overwrites the old text in one write, padded with blank lines to its size, so that a reader
/// never finds a mixture of the two; then truncates the padding. 0 or an errno.
int overwrite(int file, std::string_view padded, std::size_t size) {
    if (lseek(file, 0, SEEK_SET) == -1) return errno;
    if (const int error = write_all(file, padded)) return error;
    if (ftruncate(file, static_cast<off_t>(size)) != 0) return errno;
    return fsync(file) == 0 ? 0 : errno;
}

struct InPlace {
    int error;
    bool begun;
};

/// Signals are blocked until it is done.
InPlace try_in_place(int file, std::string_view text, const std::string& safe_copy) {
    const SignalsBlocked blocked;
    struct stat status;
    if (fstat(file, &status) != 0) return {errno, false};
    const auto old_size = static_cast<std::size_t>(status.st_size);
    // Allocated before the file is touched, since it may fail.
    std::string padded(text);
    padded.resize(std::max(text.size(), old_size), '\n');
    if (const int error = sync_directory_of(safe_copy)) return {error, false};
    if (const int error = make_room(file, old_size, text.size())) return {error, false};
    // The copy is the only complete text until the file is rewritten.
    forget_temporary_file(safe_copy);
    const int error = overwrite(file, padded, text.size());
    if (error == 0) remove_temporary_file(safe_copy);
    return {error, true};
}

std::optional<Failure> rewrite_in_place(int file, const std::string& path, std::string_view text,
                                        const std::string& safe_copy) {
    const InPlace result = try_in_place(file, text, safe_copy);
    if (result.error == 0) return std::nullopt;
    if (!result.begun) return Failure{UNCHANGED, result.error, path};
    return Failure{Failure::State::DAMAGED, result.error, path};
}

}  // namespace

std::optional<Failure> replace_file(const std::string& path, std::string_view text,
                                    const std::string& safe_copy, const Descriptor& open_file) {
    const std::string target = resolved_path(path);
    Descriptor opened;
    if (!open_file || !is_name_of(target, open_file.get())) {
        // A read-only file is not replaced, even where a rename would be allowed.
        opened = Descriptor(open(target.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
        if (!opened) return Failure{Failure::State::REFUSED, errno, target};
    }
    const int old_file = opened ? opened.get() : open_file.get();
    struct stat status;
    if (fstat(old_file, &status) != 0) return Failure{UNCHANGED, errno, target};
    if (!S_ISREG(status.st_mode)) return Failure{Failure::State::NOT_REGULAR, 0, target};
    // Root can open a read-only file for writing.
    if ((status.st_mode & 0222) == 0) return Failure{Failure::State::REFUSED, EACCES, target};
    const Attempt attempt = replace_by_rename(old_file, target, text);
    const auto why_not =
        attempt.possible ? attempt.why_not : rewrite_in_place(old_file, target, text, safe_copy);
    if (!why_not) remove_temporary_file(safe_copy);
    return why_not;
}

}  // namespace gatescope
