#include "base/temporary_files.h"

#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

#include "base/file_identity.h"
#include "base/signals_held.h"

namespace {

/// A place for a path; free when that is null. A signal handler may only look at lock-free atomics,
/// so places are added to a list but never taken out of it.
struct Place {
    std::atomic<char*> path;
    Place* next;
};
using Places = std::atomic<Place*>;
/// The lists are the process's, because signal handlers read them, and are told nothing but the
/// number of the signal.
Places places;
/// The files that only a signal takes away.
Places places_for_signals;
static_assert(std::atomic<char*>::is_always_lock_free && Places::is_always_lock_free);

bool add(Places* list, char* path) {
    for (Place* place = *list; place != nullptr; place = place->next) {
        char* free_place = nullptr;
        if (place->path.compare_exchange_strong(free_place, path)) return true;
    }
    auto* const place = new (std::nothrow) Place{path, *list};
    if (place != nullptr) *list = place;
    return place != nullptr;
}

void remember(Places* list, const std::string& path) {
    char* const copy = strdup(path.c_str());
    if (copy != nullptr && add(list, copy)) return;
    // Without a place on the list nothing would remove it later.
    std::free(copy);
    unlink(path.c_str());
    throw std::bad_alloc();
}

void forget(const Places& list, const std::string& path) {
    for (Place* place = list; place != nullptr; place = place->next) {
        char* const kept = place->path;
        if (kept != nullptr && path == kept) {
            place->path = nullptr;
            std::free(kept);
            return;
        }
    }
}

void unlink_all(const Places& list) {
    for (const Place* place = list; place != nullptr; place = place->next) {
        if (const char* path = place->path) unlink(path);
    }
}

}  // namespace

void remember_temporary_file(const std::string& path) {
    remember(&places, path);
}

void remember_for_signals(const std::string& path) {
    remember(&places_for_signals, path);
}

void forget_temporary_file(const std::string& path) {
    forget(places, path);
    forget(places_for_signals, path);
}

void remove_temporary_files() {
    for (Place* place = places; place != nullptr; place = place->next) {
        if (char* path = place->path.exchange(nullptr)) {
            unlink(path);
            std::free(path);
        }
    }
}

void unlink_temporary_files() {
    unlink_all(places);
    // These tell others that work is going on, so they go after all other files of that work.
    unlink_all(places_for_signals);
}

int create_temporary_file(const std::string& path, mode_t mode) {
    const SignalsHeld held;
    if (would_stay_at(path)) {
        errno = EPERM;
        return -1;
    }
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
