// Preloaded into gatescope or gatescope-history, and into them alone, this lets the allocation fail whose number stands in
// FAIL_ALLOCATION, or with a "+" after the number that one and all after it; and writes at the end
// into the file ALLOCATIONS how many there were.

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
/// 0 until main begins, and in every other program.
long failing = 0;
bool all_after = false;
bool counting = false;

bool fails() {
    if (!counting) return false;
    const long number = ++allocations;
    if (number != failing && !(all_after && number > failing)) return false;
    errno = ENOMEM;
    return true;
}

__attribute__((constructor)) void begin() {
    const std::string_view program = program_invocation_short_name;
    if (program != "gatescope" && program != "gatescope-history") return;
    if (const char* number = std::getenv("FAIL_ALLOCATION")) {
        char* end = nullptr;
        failing = std::strtol(number, &end, 10);
        all_after = *end == '+';
    }
    counting = true;
}

__attribute__((destructor)) void end() {
    const char* path = std::getenv("ALLOCATIONS");
    if (!counting || path == nullptr) return;
    counting = false;
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
