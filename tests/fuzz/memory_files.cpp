#include "fuzz/memory_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <vector>

#include "fuzz/disk_calls.h"

namespace gatescope {
namespace {

struct MemoryFile {
    std::string bytes;
    mode_t mode = 0600;
    timespec written = {1, 0};
};

struct OpenFile {
    /// Null when it is closed.
    std::shared_ptr<MemoryFile> file;
    std::size_t at = 0;
};

/// Descriptors from here on are of files in memory; the system's are far below.
constexpr int FIRST_DESCRIPTOR = 1 << 20;

const uid_t USER = geteuid();
const gid_t GROUP = getegid();

std::map<std::string, std::shared_ptr<MemoryFile>, std::less<>> files;
std::vector<OpenFile> open_files;
/// The descriptors of streams, which are used as handles only.
std::map<FILE*, int> streams;

bool is_in_memory(const char* path) {
    return std::string_view(path).starts_with(MEMORY_ROOT);
}

/// Any path without a '.' in its last name is a directory unless it is a file.
bool is_directory(std::string_view path) {
    const std::string_view name = path.substr(path.rfind('/') + 1);
    return path.starts_with(MEMORY_ROOT) && name.find('.') == std::string_view::npos &&
           files.find(path) == files.end();
}

int fail_with(int error) {
    errno = error;
    return -1;
}

/// Null, with errno set, when the descriptor is not open.
OpenFile* open_file(int descriptor) {
    const auto index = static_cast<std::size_t>(descriptor - FIRST_DESCRIPTOR);
    if (index < open_files.size() && open_files[index].file != nullptr) return &open_files[index];
    errno = EBADF;
    return nullptr;
}

int new_descriptor(std::shared_ptr<MemoryFile> file) {
    std::size_t index = 0;
    while (index < open_files.size() && open_files[index].file != nullptr) ++index;
    if (index == open_files.size()) open_files.emplace_back();
    open_files[index] = {std::move(file), 0};
    return FIRST_DESCRIPTOR + static_cast<int>(index);
}

int open_in_memory(const char* path, int flags, mode_t mode) {
    const auto found = files.find(std::string_view(path));
    if (found != files.end()) {
        if ((flags & O_CREAT) != 0 && (flags & O_EXCL) != 0) return fail_with(EEXIST);
        if ((flags & O_TRUNC) != 0) found->second->bytes.clear();
        return new_descriptor(found->second);
    }
    if ((flags & O_CREAT) != 0) {
        const auto file = std::make_shared<MemoryFile>();
        file->mode = mode;
        files.emplace(path, file);
        return new_descriptor(file);
    }
    return is_directory(path) ? new_descriptor(std::make_shared<MemoryFile>()) : fail_with(ENOENT);
}

/// Copies at most `size` bytes from offset `at`, and returns their number.
std::size_t copy_out(const MemoryFile& file, std::size_t at, void* bytes, std::size_t size) {
    const std::size_t got = std::min(size, file.bytes.size() - std::min(at, file.bytes.size()));
    if (got != 0) std::memcpy(bytes, file.bytes.data() + at, got);
    return got;
}

void describe(const MemoryFile& file, struct stat* status) {
    *status = {};
    status->st_mode = S_IFREG | file.mode;
    status->st_nlink = 1;
    status->st_uid = USER;
    status->st_gid = GROUP;
    status->st_size = static_cast<off_t>(file.bytes.size());
    status->st_mtim = file.written;
}

int describe(const char* path, struct stat* status) {
    const auto found = files.find(std::string_view(path));
    if (found != files.end()) {
        describe(*found->second, status);
        return 0;
    }
    if (!is_directory(path)) return fail_with(ENOENT);
    *status = {};
    status->st_mode = S_IFDIR | 0700;
    return 0;
}

}  // namespace

void put_memory_file(const std::string& path, std::string_view bytes) {
    auto& file = files[path];
    if (file == nullptr) file = std::make_shared<MemoryFile>();
    file->bytes = bytes;
    file->written = {1, 0};
}

std::string memory_file(const std::string& path) {
    const auto found = files.find(path);
    return found == files.end() ? "" : found->second->bytes;
}

std::size_t memory_files_below(const std::string& start) {
    return static_cast<std::size_t>(
        std::count_if(files.begin(), files.end(),
                      [&](const auto& file) { return file.first.starts_with(start); }));
}

void close_memory_files() {
    open_files.clear();
}

// The linker redirects calls of f to __wrap_f, and calls of __real_f to f.
extern "C" {

int __real_close(int descriptor);
ssize_t __real_read(int descriptor, void* bytes, std::size_t size);
ssize_t __real_pread(int descriptor, void* bytes, std::size_t size, off_t offset);
off_t __real_lseek(int descriptor, off_t offset, int whence);
int __real_stat(const char* path, struct stat* status);
int __real_lstat(const char* path, struct stat* status);
int __real_fstat(int descriptor, struct stat* status);
ssize_t __real_flistxattr(int descriptor, char* list, std::size_t size);
char* __real_realpath(const char* path, char* resolved);
FILE* __real_fopen(const char* path, const char* mode);
FILE* __real_fdopen(int descriptor, const char* mode);
int __real_fileno(FILE* stream);
int __real_fclose(FILE* stream);

int __wrap_openat(int directory, const char* path, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
    va_end(rest);
    return is_in_memory(path) ? open_in_memory(path, flags, mode)
                              : disk_open(directory, path, flags, mode);
}

int __wrap_open(const char* path, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
    va_end(rest);
    return __wrap_openat(AT_FDCWD, path, flags, mode);
}

int __wrap_close(int descriptor) {
    if (descriptor < FIRST_DESCRIPTOR) return __real_close(descriptor);
    OpenFile* const open = open_file(descriptor);
    if (open == nullptr) return -1;
    open->file = nullptr;
    return 0;
}

ssize_t __wrap_read(int descriptor, void* bytes, std::size_t size) {
    if (descriptor < FIRST_DESCRIPTOR) return __real_read(descriptor, bytes, size);
    OpenFile* const open = open_file(descriptor);
    if (open == nullptr) return -1;
    const std::size_t got = copy_out(*open->file, open->at, bytes, size);
    open->at += got;
    return static_cast<ssize_t>(got);
}

ssize_t __wrap_pread(int descriptor, void* bytes, std::size_t size, off_t offset) {
    if (descriptor < FIRST_DESCRIPTOR) return __real_pread(descriptor, bytes, size, offset);
    const OpenFile* const open = open_file(descriptor);
    if (open == nullptr) return -1;
    return static_cast<ssize_t>(
        copy_out(*open->file, static_cast<std::size_t>(offset), bytes, size));
}

ssize_t __wrap_write(int descriptor, const void* bytes, std::size_t size) {
    if (descriptor < FIRST_DESCRIPTOR) return disk_write(descriptor, bytes, size);
    OpenFile* const open = open_file(descriptor);
    if (open == nullptr) return -1;
    std::string& all = open->file->bytes;
    if (all.size() < open->at + size) all.resize(open->at + size);
    if (size != 0) std::memcpy(&all[open->at], bytes, size);
    open->at += size;
    open->file->written = {1, 0};
    return static_cast<ssize_t>(size);
}

off_t __wrap_lseek(int descriptor, off_t offset, int whence) {
    if (descriptor < FIRST_DESCRIPTOR) return __real_lseek(descriptor, offset, whence);
    OpenFile* const open = open_file(descriptor);
    if (open == nullptr) return -1;
    if (whence != SEEK_SET || offset < 0) return fail_with(EINVAL);
    open->at = static_cast<std::size_t>(offset);
    return offset;
}

int __wrap_fsync(int descriptor) {
    if (descriptor < FIRST_DESCRIPTOR) return disk_fsync(descriptor);
    return open_file(descriptor) == nullptr ? -1 : 0;
}

int __wrap_ftruncate(int descriptor, off_t size) {
    if (descriptor < FIRST_DESCRIPTOR) return disk_ftruncate(descriptor, size);
    OpenFile* const open = open_file(descriptor);
    if (open == nullptr) return -1;
    open->file->bytes.resize(static_cast<std::size_t>(size));
    return 0;
}

int __wrap_stat(const char* path, struct stat* status) {
    return is_in_memory(path) ? describe(path, status) : __real_stat(path, status);
}

int __wrap_lstat(const char* path, struct stat* status) {
    return is_in_memory(path) ? describe(path, status) : __real_lstat(path, status);
}

int __wrap_fstatat(int directory, const char* path, struct stat* status, int flags) {
    return is_in_memory(path) ? describe(path, status) : disk_look(directory, path, status, flags);
}

int __wrap_fstat(int descriptor, struct stat* status) {
    if (descriptor < FIRST_DESCRIPTOR) return __real_fstat(descriptor, status);
    const OpenFile* const open = open_file(descriptor);
    if (open == nullptr) return -1;
    describe(*open->file, status);
    return 0;
}

int __wrap_fchmod(int descriptor, mode_t mode) {
    if (descriptor < FIRST_DESCRIPTOR) return disk_fchmod(descriptor, mode);
    OpenFile* const open = open_file(descriptor);
    if (open == nullptr) return -1;
    open->file->mode = mode;
    return 0;
}

int __wrap_chmod(const char* path, mode_t mode) {
    if (!is_in_memory(path)) return disk_chmod(path, mode);
    const auto found = files.find(std::string_view(path));
    if (found == files.end()) return fail_with(ENOENT);
    found->second->mode = mode;
    return 0;
}

int __wrap_futimens(int descriptor, const timespec times[2]) {
    if (descriptor < FIRST_DESCRIPTOR) return disk_futimens(descriptor, times);
    OpenFile* const open = open_file(descriptor);
    if (open == nullptr) return -1;
    open->file->written = times[1];
    return 0;
}

ssize_t __wrap_flistxattr(int descriptor, char* list, std::size_t size) {
    if (descriptor < FIRST_DESCRIPTOR) return __real_flistxattr(descriptor, list, size);
    return open_file(descriptor) == nullptr ? -1 : 0;
}

int __wrap_unlinkat(int directory, const char* path, int flags) {
    if (!is_in_memory(path)) return disk_unlink(directory, path, flags);
    return files.erase(path) == 1 ? 0 : fail_with(ENOENT);
}

int __wrap_unlink(const char* path) {
    return __wrap_unlinkat(AT_FDCWD, path, 0);
}

int __wrap_renameat(int from_directory, const char* from, int to_directory, const char* to) {
    if (!is_in_memory(from)) return disk_rename(from_directory, from, to_directory, to);
    const auto file = files.extract(from);
    if (file.empty()) return fail_with(ENOENT);
    files[to] = file.mapped();
    return 0;
}

int __wrap_rename(const char* from, const char* to) {
    return __wrap_renameat(AT_FDCWD, from, AT_FDCWD, to);
}

int __wrap_mkostemp(char* path, int flags) {
    if (!is_in_memory(path)) return disk_mkostemp(path, flags);
    std::memcpy(path + std::strlen(path) - 6, "fuzzed", 6);
    return open_in_memory(path, O_RDWR | O_CREAT | O_EXCL, 0600);
}

char* __wrap_realpath(const char* path, char* resolved) {
    if (!is_in_memory(path) || resolved != nullptr) return __real_realpath(path, resolved);
    struct stat status;
    return describe(path, &status) == 0 ? strdup(path) : nullptr;
}

int __wrap_remove(const char* path) {
    return is_in_memory(path) ? unlink(path) : disk_remove(path);
}

FILE* __wrap_fopen(const char* path, const char* mode) {
    // The stream's reads and writes would not be redirected.
    if (is_in_memory(path)) std::abort();
    return __real_fopen(path, mode);
}

FILE* __wrap_fdopen(int descriptor, const char* mode) {
    if (descriptor < FIRST_DESCRIPTOR) return __real_fdopen(descriptor, mode);
    FILE* const stream = fmemopen(nullptr, 1, mode);
    if (stream != nullptr) streams[stream] = descriptor;
    return stream;
}

int __wrap_fileno(FILE* stream) {
    const auto handle = streams.find(stream);
    return handle == streams.end() ? __real_fileno(stream) : handle->second;
}

int __wrap_fclose(FILE* stream) {
    const auto handle = streams.find(stream);
    if (handle != streams.end()) {
        close(handle->second);
        streams.erase(handle);
    }
    return __real_fclose(stream);
}
}

}  // namespace gatescope
