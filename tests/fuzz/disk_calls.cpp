#include "fuzz/disk_calls.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "fuzz/fuzz_world.h"

namespace {

/// Empty: there is none.
std::string only_directory;
Trouble trouble;
int changes = 0;
bool has_begun = false;
bool failed_to_remove = false;

enum class Change { MADE, FAILED, TORN };

/// What becomes of the next change; errno says why it is not made.
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

bool may_change(const char* path) {
    must(only_directory.empty() || std::string_view(path).starts_with(only_directory),
         "what is changed is in the world's directory");
    return may_change();
}

bool may_remove(const char* path) {
    if (may_change(path)) return true;
    failed_to_remove = true;
    return false;
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

// The linker sends every call of f to __wrap_f, and every call of __real_f to f.
extern "C" {

int __real_open(const char* path, int flags, mode_t mode);
ssize_t __real_write(int descriptor, const void* bytes, std::size_t size);
int __real_fsync(int descriptor);
int __real_ftruncate(int descriptor, off_t size);
int __real_fchmod(int descriptor, mode_t mode);
int __real_chmod(const char* path, mode_t mode);
int __real_futimens(int descriptor, const timespec times[2]);
int __real_unlink(const char* path);
int __real_rename(const char* from, const char* to);
int __real_mkostemp(char* path, int flags);
int __real_remove(const char* path);
int __real_fallocate(int descriptor, int mode, off_t offset, off_t size);
int __real_link(const char* from, const char* to);
int __real_renameat2(int from_directory, const char* from, int to_directory, const char* to,
                     unsigned flags);

// These are of no concern to files in memory.

int __wrap_fallocate(int descriptor, int mode, off_t offset, off_t size) {
    return may_change() ? __real_fallocate(descriptor, mode, offset, size) : -1;
}

int __wrap_link(const char* from, const char* to) {
    return may_change(to) ? __real_link(from, to) : -1;
}

int __wrap_renameat2(int from_directory, const char* from, int to_directory, const char* to,
                     unsigned flags) {
    return may_change(from) && may_change(to)
               ? __real_renameat2(from_directory, from, to_directory, to, flags)
               : -1;
}
}

int disk_open(const char* path, int flags, mode_t mode) {
    const bool changes_something = (flags & (O_CREAT | O_TRUNC)) != 0;
    return !changes_something || may_change(path) ? __real_open(path, flags, mode) : -1;
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
    return may_change(path) ? __real_chmod(path, mode) : -1;
}

int disk_futimens(int descriptor, const timespec times[2]) {
    return may_change() ? __real_futimens(descriptor, times) : -1;
}

int disk_unlink(const char* path) {
    return may_remove(path) ? __real_unlink(path) : -1;
}

int disk_rename(const char* from, const char* to) {
    return may_change(to) ? __real_rename(from, to) : -1;
}

int disk_mkostemp(char* path, int flags) {
    return may_change(path) ? __real_mkostemp(path, flags) : -1;
}

int disk_remove(const char* path) {
    return may_remove(path) ? __real_remove(path) : -1;
}
