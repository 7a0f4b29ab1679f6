#pragma once

#include <fcntl.h>
#include <sys/stat.h>

#include <chrono>
#include <string>
#include <vector>

#include "base/descriptor.h"
#include "base/file_identity.h"

namespace gatescope {

/// A directory that is held open. What is in it is reached by its name there, and no symbolic link
/// under such a name is followed: so nothing outside is reached, whatever others do meanwhile to
/// the names, or to the way to the directory. The calls return 0 or an errno.
class Directory {
  public:
    /// Not open, with errno set, when it cannot be opened. Links may lead to it.
    explicit Directory(const std::string& path);
    explicit operator bool() const { return static_cast<bool>(descriptor_); }
    [[nodiscard]] int descriptor() const { return descriptor_.get(); }
    /// For messages.
    [[nodiscard]] std::string path_of(const std::string& name) const { return path_ + "/" + name; }

    /// Keeps others that lock it out for as long as it is open: EWOULDBLOCK when one of them has
    /// locked it.
    [[nodiscard]] int lock() const;

    /// What stands under a name.
    struct Entry {
        /// 0, ENOENT, or why it cannot be examined.
        int error;
        struct stat status;
        [[nodiscard]] bool exists() const { return error == 0; }
        [[nodiscard]] bool is_regular() const { return exists() && S_ISREG(status.st_mode); }
    };
    [[nodiscard]] Entry look(const std::string& name) const;
    /// Whether the name is one of the open file's.
    [[nodiscard]] bool is_name_of(const std::string& name, const Descriptor& file) const;
    /// The names that begin with `prefix`.
    int list(const std::string& prefix, std::vector<std::string>* names) const;

    /// open_regular_file of base/files.h.
    [[nodiscard]] Descriptor open(const std::string& name, int flags,
                                  std::chrono::steady_clock::time_point until) const;
    [[nodiscard]] int rename(const std::string& from, const std::string& to) const;
    /// That the new name is one of the file's already is no failure: a network file system may
    /// repeat a call whose answer was lost.
    [[nodiscard]] int link(const std::string& from, const std::string& to) const;
    /// That there is no such name is no failure.
    int unlink(const std::string& name) const;
    /// Brings its names to the disk; a file system that cannot sync directories counts as done.
    [[nodiscard]] int sync() const;

  private:
    std::string path_;
    Descriptor descriptor_;
};

}  // namespace gatescope
