#pragma once

#include <fcntl.h>
#include <sys/types.h>

#include <exception>
#include <string>

#include "base/descriptor.h"
#include "base/directory.h"

namespace gatescope {

// Every temporary file of the process is on this list from its creation to its removal, so that
// no end of the process, except SIGKILL, leaves one behind. A relative path begins at the open
// `directory`, which must stay open while the path is on the list.

/// Puts `path` on the list, at most once. Without memory for the entry the file is removed and
/// std::bad_alloc thrown.
void remember_temporary_file(const std::string& path, int directory = AT_FDCWD);

/// Puts `path` on a list of its own: a signal removes the file, clean_exit does not.
void remember_file_removed_on_signal(const std::string& path, int directory = AT_FDCWD);

/// Takes `path` off both lists; the file stays.
void forget_temporary_file(const std::string& path);

/// Removes every file on the list, except those for signals, and empties it.
void remove_temporary_files();

/// For signal handlers: removes every file on both lists, those for signals last; the lists stay.
void unlink_temporary_files();

/// Removes every file on both lists when an exception leaves its block, before the directories that
/// the paths are relative to are closed.
class RemovedOnException {
  public:
    RemovedOnException() = default;
    ~RemovedOnException();
    RemovedOnException(const RemovedOnException&) = delete;
    RemovedOnException& operator=(const RemovedOnException&) = delete;

  private:
    const int before_ = std::uncaught_exceptions();
};

/// Creates `path` for writing, exclusively, after removing a file of that name; a symbolic link is
/// never followed. The file is on the list of temporary files from then on. The descriptor, or -1
/// with errno set: EPERM in an append-only directory, where it could not be removed.
int create_temporary_file(const std::string& path, mode_t mode = 0600);

/// A temporary file in an open directory. It is removed with this object, or at any end of the
/// process, unless it was renamed.
class TemporaryFile {
  public:
    /// Creates it for writing, exclusively. On failure no file is open, and errno is set: EEXIST
    /// where the name exists, EPERM in an append-only directory, where it could not be removed.
    TemporaryFile(const Directory& directory, const std::string& name, mode_t mode);
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    /// Gives it its final name. 0 or an errno.
    [[nodiscard]] int rename_to(const std::string& name);

    Descriptor file;

  private:
    const Directory& directory_;
    std::string name_;
    bool is_there_ = false;
};

/// Removes a temporary file and takes it off the list.
void remove_temporary_file(const std::string& path);

/// Removes a file or empty directory; on EACCES tries unlink once more. Failures are ignored.
void unlink_remove(const std::string& path);

}  // namespace gatescope
