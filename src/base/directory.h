#pragma once

#include <fcntl.h>
#include <sys/stat.h>

#include <chrono>
#include <string>
#include <vector>

#include "base/descriptor.h"
#include "base/file_identity.h"

namespace gatescope {

/// An open directory. Its files are opened, renamed and removed relative to its descriptor, without
/// following symbolic links. So no file outside is reached, even when another process meanwhile
/// replaces a name in it or a part of its path. Calls return 0 or an errno.
class Directory {
  public:
    /// Not open, with errno set, when it cannot be opened. Symbolic links in `path` are followed.
    explicit Directory(const std::string& path);
    explicit operator bool() const { return static_cast<bool>(descriptor_); }
    [[nodiscard]] int descriptor() const { return descriptor_.get(); }
    /// The path of a file in it, for messages.
    [[nodiscard]] std::string path_of(const std::string& name) const { return path_ + "/" + name; }

    /// Takes an exclusive lock until the directory is closed: EWOULDBLOCK when another process
    /// holds it.
    [[nodiscard]] int lock() const;

    /// What lstat says of a name.
    struct Entry {
        /// 0, ENOENT or another errno.
        int error;
        struct stat status;
        [[nodiscard]] bool exists() const { return error == 0; }
        [[nodiscard]] bool is_regular() const { return exists() && S_ISREG(status.st_mode); }
    };
    [[nodiscard]] Entry entry_of(const std::string& name) const;
    /// Whether `name` is a hard link of the open file.
    [[nodiscard]] bool is_name_of(const std::string& name, const Descriptor& file) const;
    /// Checks that another file can be renamed to `name`, and that `name` can get a hard link, for
    /// which `trial` is created and removed. 0, or the errno that prevents it; 0 also if `trial`
    /// exists already.
    [[nodiscard]] int check_replaceable(const std::string& name, const std::string& trial) const;
    /// Appends the names that begin with `prefix`.
    int list(const std::string& prefix, std::vector<std::string>* names) const;

    /// open_regular_file of base/files.h in this directory.
    [[nodiscard]] Descriptor open(const std::string& name, int flags,
                                  std::chrono::steady_clock::time_point until) const;
    [[nodiscard]] int rename(const std::string& from, const std::string& to) const;
    /// Makes a hard link. 0 also when `to` is one already: a network file system may repeat a call
    /// whose reply was lost.
    [[nodiscard]] int link(const std::string& from, const std::string& to) const;
    /// Removes a name. 0 also when there is none.
    int unlink(const std::string& name) const;
    /// Syncs its names to the disk; 0 also on a file system that cannot sync directories.
    [[nodiscard]] int sync() const;

  private:
    std::string path_;
    Descriptor descriptor_;
};

}  // namespace gatescope
