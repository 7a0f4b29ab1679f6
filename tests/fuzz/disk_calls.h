#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <cstddef>
#include <ctime>
#include <functional>
#include <string>

namespace gatescope {

// The calls of the C library by which the program changes what is on the disk. They come here by
// way of the linker (see CMakeLists.txt), unless they are about files in memory, so that targets
// that work on a real directory can keep them in there, and let them fail.

/// What becomes of the program's changes.
struct Trouble {
    /// So many changes are made before it begins; it never does when this is negative.
    int after = -1;
    /// What somebody else does at that moment; then no change fails.
    std::function<void()> meanwhile = {};
    /// Whether no change is made any more from then on, as if the process had been killed there, or
    /// else just one fails.
    bool for_good = true;
    /// Whether a write that it begins with is made by half.
    bool tears = false;
    /// Whether opening a file and looking at a name in an open directory count as changes, and fail
    /// like them.
    bool of_looks_too = false;
    /// The errno of what fails.
    int error = 0;
};

/// For as long as it lives, changes outside of `directory` are a finding, and those in it get into
/// `trouble`.
class ChangesOnlyIn {
  public:
    explicit ChangesOnlyIn(const std::string& directory, const Trouble& trouble = {});
    ~ChangesOnlyIn();
    ChangesOnlyIn(const ChangesOnlyIn&) = delete;
    ChangesOnlyIn& operator=(const ChangesOnlyIn&) = delete;

    /// Whether a change has failed, and whether one that was to remove a file has.
    [[nodiscard]] static bool has_failed();
    [[nodiscard]] static bool has_failed_to_remove();
};

// A relative path begins at the open `directory`.
int disk_open(int directory, const char* path, int flags, mode_t mode);
ssize_t disk_write(int descriptor, const void* bytes, std::size_t size);
int disk_fsync(int descriptor);
int disk_ftruncate(int descriptor, off_t size);
int disk_fchmod(int descriptor, mode_t mode);
int disk_chmod(const char* path, mode_t mode);
int disk_futimens(int descriptor, const timespec times[2]);
int disk_look(int directory, const char* path, struct stat* status, int flags);
int disk_unlink(int directory, const char* path, int flags);
int disk_rename(int from_directory, const char* from, int to_directory, const char* to);
int disk_mkostemp(char* path, int flags);
int disk_remove(const char* path);

}  // namespace gatescope
