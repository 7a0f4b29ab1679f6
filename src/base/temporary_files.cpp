#include "base/temporary_files.h"

#include <unistd.h>

#include <array>
#include <atomic>
#include <cstdlib>
#include <cstring>

namespace {

// A signal handler may only look at lock-free atomics, so the list is an array of pointers to
// paths; a slot that is null is free. The program never has more than a handful at a time.
std::array<std::atomic<char*>, 16> slots;
static_assert(std::atomic<char*>::is_always_lock_free);

}  // namespace

void remember_temporary_file(const std::string& path) {
    char* copy = strdup(path.c_str());
    for (auto& slot : slots) {
        char* free_slot = nullptr;
        if (slot.compare_exchange_strong(free_slot, copy)) return;
    }
    std::free(copy);
}

void forget_temporary_file(const std::string& path) {
    for (auto& slot : slots) {
        char* kept = slot.load();
        if (kept != nullptr && path == kept) {
            slot.store(nullptr);
            std::free(kept);
            return;
        }
    }
}

void remove_temporary_files() {
    for (auto& slot : slots) {
        if (char* path = slot.exchange(nullptr)) {
            unlink(path);
            std::free(path);
        }
    }
}

void unlink_temporary_files() {
    for (auto& slot : slots) {
        if (const char* path = slot.load()) unlink(path);
    }
}
