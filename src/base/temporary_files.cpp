#include "base/temporary_files.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "base/signals_held.h"

namespace {

// A signal handler may only look at lock-free atomics, so the list is an array of pointers to
// paths; a slot that is null is free. The program never has more than a handful at a time.
using Slots = std::array<std::atomic<char*>, 16>;
Slots slots;
/// The files that only a signal takes away.
Slots slots_for_signals;
static_assert(std::atomic<char*>::is_always_lock_free);

void remember(Slots* list, const std::string& path) {
    char* copy = strdup(path.c_str());
    for (auto& slot : *list) {
        char* free_slot = nullptr;
        if (slot.compare_exchange_strong(free_slot, copy)) return;
    }
    std::free(copy);
}

void forget(Slots* list, const std::string& path) {
    for (auto& slot : *list) {
        char* kept = slot.load();
        if (kept != nullptr && path == kept) {
            slot.store(nullptr);
            std::free(kept);
            return;
        }
    }
}

void unlink_all(const Slots& list) {
    for (auto slot = list.rbegin(); slot != list.rend(); ++slot) {
        if (const char* path = slot->load()) unlink(path);
    }
}

}  // namespace

void remember_temporary_file(const std::string& path) {
    remember(&slots, path);
}

void remember_for_signals(const std::string& path) {
    remember(&slots_for_signals, path);
}

void forget_temporary_file(const std::string& path) {
    forget(&slots, path);
    forget(&slots_for_signals, path);
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
    unlink_all(slots);
    // They tell others that work is going on, so they go when its other files have gone.
    unlink_all(slots_for_signals);
}

int create_temporary_file(const std::string& path, mode_t mode) {
    const SignalsHeld held;
    unlink(path.c_str());
    const int descriptor = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
    if (descriptor != -1) remember_temporary_file(path);
    return descriptor;
}

void remove_temporary_file(const std::string& path) {
    unlink_remove(path);
    forget_temporary_file(path);
}

void unlink_remove(const std::string& path) {
    if (std::remove(path.c_str()) != 0 && errno == EACCES) unlink(path.c_str());
}
