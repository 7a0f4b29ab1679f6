#pragma once

#include <fcntl.h>
#include <sys/types.h>

#include <exception>
#include <string>

#include "base/descriptor.h"
#include "base/directory.h"

namespace gatescope {

// Every temporary file of the process is on this list from its creation to its removal, so that
// no way out of the process, a signal included, leaves one behind. A relative path begins at the
// open `directory`, which stays open for as long as the path is on the list.

/// Puts `path` on the list. A path may be on it once only. Without the memory for that the file is
/// removed, and std::bad_alloc thrown.
void remember_temporary_file(const std::string& path, int directory = AT_FDCWD);

/// Puts `path` on the list for signals only: an end by clean_exit leaves the file where it is.
void remember_for_signals(const std::string& path, int directory = AT_FDCWD);

/// Takes `path` off the list; the file itself is left alone.
void forget_temporary_file(const std::string& path);

/// Removes every file on the list, but those for signals only, and empties it.
void remove_temporary_files();

/// For signal handlers: removes every file on the list, and leaves the list as it is. Those for
/// signals only go last.
void unlink_temporary_files();

/// Removes every file on the list when an exception leaves the block that this stands in: before
/// the directories are closed that the paths begin at.
class RemovedOnException {
  public:
    RemovedOnException() = default;
    ~RemovedOnException();
    RemovedOnException(const RemovedOnException&) = delete;
    RemovedOnException& operator=(const RemovedOnException&) = delete;

  private:
    const int before_ = std::uncaught_exceptions();
};

/// Creates `path` for writing, exclusively, after removing what stood under that name; a link is
/// never followed. The file is on the list of temporary files from then on. The descriptor, or -1
/// with errno set: EPERM in a directory out of which no file can be removed again.
int create_temporary_file(const std::string& path, mode_t mode = 0600);

/// A temporary file in a directory that is held open. It goes with this object, or with any end of
/// the process, unless it was given another name.
class TemporaryFile {
  public:
    /// Makes it for writing, exclusively. Nothing is open, with errno set, when that fails: EEXIST
    /// where something stands under the name, EPERM in a directory out of which no file can be
    /// removed again.
    TemporaryFile(const Directory& directory, const std::string& name, mode_t mode);
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    /// Gives it its lasting name. 0 or an errno.
    [[nodiscard]] int rename_to(const std::string& name);

    Descriptor file;

  private:
    const Directory& directory_;
    std::string name_;
    bool is_there_ = false;
};

/// Removes a temporary file and takes it off the list.
void remove_temporary_file(const std::string& path);

/// Removes a file; tries once more in another way when permission is lacking. Failures are
/// ignored.
void unlink_remove(const std::string& path);

}  // namespace gatescope
