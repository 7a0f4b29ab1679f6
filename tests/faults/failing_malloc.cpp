// A library to preload. In gatescope and gatescope-history alone it lets the allocation fail whose
// number is in FAIL_ALLOCATION (with a "+" after it, that one and all later ones), and writes the
// number of allocations to the file ALLOCATIONS at the end.

#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace gatescope {

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* old, std::size_t size);
}

namespace {

std::atomic<long> allocations = 0;
/// 0: none.
long failing = 0;
bool fails_all_later = false;
/// False before the constructor, after the destructor, and in other programs.
bool is_counting = false;

bool fails() {
    if (!is_counting) return false;
    const long number = ++allocations;
    if (number != failing && !(fails_all_later && number > failing)) return false;
    errno = ENOMEM;
    return true;
}

__attribute__((constructor)) void begin() {
    const std::string_view program = program_invocation_short_name;
    if (program != "gatescope" && program != "gatescope-history") return;
    if (const char* number = std::getenv("FAIL_ALLOCATION")) {
        char* end = nullptr;
        failing = std::strtol(number, &end, 10);
        fails_all_later = *end == '+';
    }
    is_counting = true;
}

__attribute__((destructor)) void end() {
    const char* path = std::getenv("ALLOCATIONS");
    if (!is_counting || path == nullptr) return;
    is_counting = false;
    const int file = open(path, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (file == -1) return;
    dprintf(file, "%ld\n", allocations.load());
    close(file);
}

}  // namespace

extern "C" {
void* malloc(std::size_t size) {
    return fails() ? nullptr : __libc_malloc(size);
}
void* calloc(std::size_t count, std::size_t size) {
    return fails() ? nullptr : __libc_calloc(count, size);
}
void* realloc(void* old, std::size_t size) {
    return fails() ? nullptr : __libc_realloc(old, size);
}
}

}  // namespace gatescope
