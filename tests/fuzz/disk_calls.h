#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <cstddef>
#include <ctime>
#include <functional>
#include <string>

namespace gatescope {

// The calls of the C library by which the program changes files on a disk. The linker redirects
// them here (see CMakeLists.txt), so that targets that work in a real directory can confine them to
// it, and let them fail.

/// When and how the program's changes fail.
struct Trouble {
    /// The number of changes that succeed before it begins; negative: it never begins.
    int after = -1;
    /// A change of another process at that time; then no change fails.
    std::function<void()> meanwhile = {};
    /// Whether all changes fail from then on, as if the process was killed, or only one.
    bool for_good = true;
    /// Whether the first failing change, if it is a write, writes half of its bytes.
    bool tears = false;
    /// Whether opening a file and stat in an open directory count as changes, and fail too.
    bool includes_lookups = false;
    /// The errno of failing changes.
    int error = 0;
};

/// During its lifetime changes outside of `directory` are a finding, and changes in it fail as
/// `trouble` says.
class ChangesOnlyIn {
  public:
    explicit ChangesOnlyIn(const std::string& directory, const Trouble& trouble = {});
    ~ChangesOnlyIn();
    ChangesOnlyIn(const ChangesOnlyIn&) = delete;
    ChangesOnlyIn& operator=(const ChangesOnlyIn&) = delete;

    /// Whether a change has failed, and whether the removal of a file has.
    [[nodiscard]] static bool has_failed();
    [[nodiscard]] static bool has_failed_to_remove();
};

// Relative paths are relative to the open `directory`.
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
