#include "base/platform.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <thread>
#include <vector>

#if GATESCOPE_HAS_AFFINITY
#include <sched.h>
#endif
#if GATESCOPE_HAS_FLOCK
#include <sys/file.h>
#endif
#if GATESCOPE_HAS_ATTRIBUTES
#include <sys/xattr.h>
#endif

namespace gatescope {

#if GATESCOPE_HAS_FLOCK

int lock_exclusively(int file) {
    while (flock(file, LOCK_EX | LOCK_NB) != 0) {
        if (errno != EINTR) return errno;
    }
    return 0;
}

#else

int lock_exclusively(int file) {
    struct flock whole = {};
    whole.l_type = F_WRLCK;
    whole.l_whence = SEEK_SET;
#ifdef F_OFD_SETLK
    const bool locked = fcntl(file, F_OFD_SETLK, &whole) == 0;
#else
    // The process loses this lock when it closes any descriptor of the file.
    const bool locked = fcntl(file, F_SETLK, &whole) == 0;
#endif
    if (locked) return 0;
    return errno == EACCES || errno == EAGAIN ? EWOULDBLOCK : errno;
}

#endif

#if GATESCOPE_HAS_LEASES

Lease take_lease(int file) {
    fcntl(file, F_SETSIG, SIGURG);
    if (fcntl(file, F_SETLEASE, F_RDLCK) == 0) return Lease::TAKEN;
    return errno == EAGAIN ? Lease::REFUSED : Lease::UNAVAILABLE;
}

void release_lease(int file) {
    fcntl(file, F_SETLEASE, F_UNLCK);
}

#else

Lease take_lease(int /*file*/) {
    return Lease::UNAVAILABLE;
}

void release_lease(int /*file*/) {}

#endif

#if GATESCOPE_HAS_RENAME_NOREPLACE

int rename_without_replacing(const std::string& from, const std::string& to) {
    const int done = renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE);
    return done == 0 ? 0 : errno;
}

#else

int rename_without_replacing(const std::string& /*from*/, const std::string& /*to*/) {
    return ENOSYS;
}

#endif

#if GATESCOPE_HAS_MKOSTEMP

int make_unique_file(std::string* path) {
    return mkostemp(path->data(), O_CLOEXEC);
}

#else

int make_unique_file(std::string* path) {
    const int file = mkstemp(path->data());
    // Race-free: no other thread starts a child.
    if (file != -1) fcntl(file, F_SETFD, FD_CLOEXEC);
    return file;
}

#endif

#if GATESCOPE_HAS_STATX

bool is_append_only_directory(const std::string& directory) {
    struct statx status;
    return statx(AT_FDCWD, directory.c_str(), 0, STATX_TYPE, &status) == 0 &&
           (status.stx_attributes & STATX_ATTR_APPEND) != 0;
}

#else

bool is_append_only_directory(const std::string& /*directory*/) {
    return false;
}

#endif

#if GATESCOPE_HAS_ATTRIBUTES

namespace {

/// The names of the file's extended attributes; none on a file system without them. 0 or an errno.
int attribute_names(int file, std::vector<std::string>* names) {
    const ssize_t size = flistxattr(file, nullptr, 0);
    if (size < 0) return errno == ENOTSUP ? 0 : errno;
    std::string list(static_cast<std::size_t>(size), '\0');
    const ssize_t got = flistxattr(file, list.data(), list.size());
    if (got < 0) return errno;
    for (std::size_t at = 0; at < static_cast<std::size_t>(got); at += names->back().size() + 1) {
        names->emplace_back(&list[at]);
    }
    return 0;
}

/// 0 or an errno.
int attribute_value(int file, const char* name, std::vector<char>* value) {
    const ssize_t size = fgetxattr(file, name, nullptr, 0);
    if (size < 0) return errno;
    value->resize(static_cast<std::size_t>(size));
    const ssize_t got = fgetxattr(file, name, value->data(), value->size());
    if (got < 0) return errno;
    value->resize(static_cast<std::size_t>(got));
    return 0;
}

/// Sets an attribute only where it differs: security labels exist on every file, but may need
/// privileges to be set.
int carry_over_attribute(int from, int to, const char* name) {
    std::vector<char> value;
    if (const int error = attribute_value(from, name, &value)) return error;
    std::vector<char> current;
    if (attribute_value(to, name, &current) == 0 && current == value) return 0;
    return fsetxattr(to, name, value.data(), value.size(), 0) == 0 ? 0 : errno;
}

}  // namespace

int carry_over_attributes(int from, int to) {
    std::vector<std::string> wanted;
    std::vector<std::string> present;
    if (const int error = attribute_names(from, &wanted)) return error;
    if (const int error = attribute_names(to, &present)) return error;
    // A new file inherits its directory's default access control list; the old one may have none.
    for (const std::string& name : present) {
        if (std::find(wanted.begin(), wanted.end(), name) != wanted.end()) continue;
        if (fremovexattr(to, name.c_str()) != 0) return errno;
    }
    for (const std::string& name : wanted) {
        if (const int error = carry_over_attribute(from, to, name.c_str())) return error;
    }
    return 0;
}

#else

int carry_over_attributes(int /*from*/, int /*to*/) {
    return 0;
}

#endif

#if GATESCOPE_HAS_AFFINITY

int processors_allowed() {
    cpu_set_t allowed;
    CPU_ZERO(&allowed);
    return sched_getaffinity(0, sizeof allowed, &allowed) == 0 ? CPU_COUNT(&allowed) : 0;
}

#else

int processors_allowed() {
    return static_cast<int>(std::thread::hardware_concurrency());
}

#endif

#if GATESCOPE_HAS_PROC

namespace {

/// Writes `number` in decimal to `at`; returns the end.
char* put_number(char* at, pid_t number) {
    char* begin = at;
    for (; number > 0; number /= 10) *at++ = static_cast<char>('0' + number % 10);
    std::reverse(begin, at);
    return at;
}

char* put_text(char* at, const char* text) {
    while (*text != '\0') *at++ = *text++;
    return at;
}

}  // namespace

ssize_t read_children(pid_t process, char* list, std::size_t size) {
    std::array<char, 64> path = {};
    char* end = put_number(put_text(path.data(), "/proc/"), process);
    put_text(put_number(put_text(end, "/task/"), process), "/children");
    const int file = open(path.data(), O_RDONLY | O_CLOEXEC);
    if (file == -1) return 0;
    const ssize_t got = read(file, list, size);
    close(file);
    return got;
}

#else

ssize_t read_children(pid_t /*process*/, char* /*list*/, std::size_t /*size*/) {
    return 0;
}

#endif

}  // namespace gatescope
