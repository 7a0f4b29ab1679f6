#include "fuzz/disk_calls.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <string>
#include <string_view>

#include "fuzz/fuzz_world.h"

namespace gatescope {
namespace {

/// Empty: changes are not confined.
std::string only_directory;
Trouble trouble;
int changes = 0;
bool has_begun = false;
bool failed_to_remove = false;

enum class Change { MADE, FAILED, TORN };

/// Whether the next change is made; sets errno if not.
Change next_change() {
    if (only_directory.empty() || trouble.after < 0) return Change::MADE;
    const int number = changes++;
    if (number == trouble.after && trouble.meanwhile) trouble.meanwhile();
    if (number < trouble.after || trouble.meanwhile || (has_begun && !trouble.for_good)) {
        return Change::MADE;
    }
    const bool begins = !has_begun;
    has_begun = true;
    errno = trouble.error;
    return begins && trouble.tears ? Change::TORN : Change::FAILED;
}

bool may_change() {
    return next_change() == Change::MADE;
}

/// Whether a path, relative to an open directory, is in the only directory.
bool is_in_only_directory(int directory, std::string_view path) {
    if (directory == AT_FDCWD || path.starts_with("/")) return path.starts_with(only_directory);
    char place[PATH_MAX];
    const std::string name = "/proc/self/fd/" + std::to_string(directory);
    const ssize_t size = readlink(name.c_str(), place, sizeof(place));
    if (size <= 0 || path.find('/') != std::string_view::npos) return false;
    return (std::string(place, static_cast<std::size_t>(size)) + "/").starts_with(only_directory);
}

bool may_change(int directory, const char* path) {
    must(only_directory.empty() || is_in_only_directory(directory, path),
         "only files in the directory are changed");
    return may_change();
}

bool may_remove(int directory, const char* path) {
    if (may_change(directory, path)) return true;
    failed_to_remove = true;
    return false;
}

bool may_look() {
    return !trouble.includes_lookups || may_change();
}

}  // namespace

ChangesOnlyIn::ChangesOnlyIn(const std::string& directory, const Trouble& of_the_run) {
    only_directory = directory + "/";
    trouble = of_the_run;
    changes = 0;
    has_begun = false;
    failed_to_remove = false;
}

ChangesOnlyIn::~ChangesOnlyIn() {
    only_directory.clear();
}

bool ChangesOnlyIn::has_failed() {
    return has_begun;
}

bool ChangesOnlyIn::has_failed_to_remove() {
    return failed_to_remove;
}

// The linker redirects calls of f to __wrap_f, and calls of __real_f to f.
extern "C" {

int __real_openat(int directory, const char* path, int flags, mode_t mode);
ssize_t __real_write(int descriptor, const void* bytes, std::size_t size);
int __real_fsync(int descriptor);
int __real_ftruncate(int descriptor, off_t size);
int __real_fchmod(int descriptor, mode_t mode);
int __real_chmod(const char* path, mode_t mode);
int __real_futimens(int descriptor, const timespec times[2]);
int __real_fstatat(int directory, const char* path, struct stat* status, int flags);
int __real_unlinkat(int directory, const char* path, int flags);
int __real_renameat(int from_directory, const char* from, int to_directory, const char* to);
int __real_mkostemp(char* path, int flags);
int __real_remove(const char* path);
int __real_linkat(int from_directory, const char* from, int to_directory, const char* to,
                  int flags);
int __real_renameat2(int from_directory, const char* from, int to_directory, const char* to,
                     unsigned flags);

// The program does not use the next three for files in memory.

int __wrap_linkat(int from_directory, const char* from, int to_directory, const char* to,
                  int flags) {
    return may_change(to_directory, to)
               ? __real_linkat(from_directory, from, to_directory, to, flags)
               : -1;
}

int __wrap_link(const char* from, const char* to) {
    return __wrap_linkat(AT_FDCWD, from, AT_FDCWD, to, 0);
}

int __wrap_renameat2(int from_directory, const char* from, int to_directory, const char* to,
                     unsigned flags) {
    return may_change(from_directory, from) && may_change(to_directory, to)
               ? __real_renameat2(from_directory, from, to_directory, to, flags)
               : -1;
}
}

int disk_open(int directory, const char* path, int flags, mode_t mode) {
    const bool changes_something = (flags & (O_CREAT | O_TRUNC)) != 0;
    const bool may = changes_something ? may_change(directory, path) : may_look();
    return may ? __real_openat(directory, path, flags, mode) : -1;
}

ssize_t disk_write(int descriptor, const void* bytes, std::size_t size) {
    if (descriptor <= STDERR_FILENO) return __real_write(descriptor, bytes, size);
    switch (next_change()) {
        case Change::MADE:
            return __real_write(descriptor, bytes, size);
        case Change::TORN:
            must(__real_write(descriptor, bytes, size / 2) >= 0, "room for half of a write");
            errno = trouble.error;
            return -1;
        default:
            return -1;
    }
}

int disk_fsync(int descriptor) {
    return may_change() ? __real_fsync(descriptor) : -1;
}

int disk_ftruncate(int descriptor, off_t size) {
    return may_change() ? __real_ftruncate(descriptor, size) : -1;
}

int disk_fchmod(int descriptor, mode_t mode) {
    return may_change() ? __real_fchmod(descriptor, mode) : -1;
}

int disk_chmod(const char* path, mode_t mode) {
    return may_change(AT_FDCWD, path) ? __real_chmod(path, mode) : -1;
}

int disk_futimens(int descriptor, const timespec times[2]) {
    return may_change() ? __real_futimens(descriptor, times) : -1;
}

int disk_look(int directory, const char* path, struct stat* status, int flags) {
    return may_look() ? __real_fstatat(directory, path, status, flags) : -1;
}

int disk_unlink(int directory, const char* path, int flags) {
    return may_remove(directory, path) ? __real_unlinkat(directory, path, flags) : -1;
}

int disk_rename(int from_directory, const char* from, int to_directory, const char* to) {
    must(only_directory.empty() || is_in_only_directory(from_directory, from),
         "only files in the directory are renamed");
    return may_change(to_directory, to) ? __real_renameat(from_directory, from, to_directory, to)
                                        : -1;
}

int disk_mkostemp(char* path, int flags) {
    return may_change(AT_FDCWD, path) ? __real_mkostemp(path, flags) : -1;
}

int disk_remove(const char* path) {
    return may_remove(AT_FDCWD, path) ? __real_remove(path) : -1;
}

}  // namespace gatescope
