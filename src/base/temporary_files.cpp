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
#include "base/signals_blocked.h"

namespace gatescope {
namespace {

/// An entry for a path; free when that is null. A signal handler may only read lock-free atomics,
/// so entries are added to a list but never removed from it.
struct Place {
    std::atomic<char*> path;
    std::atomic<int> directory;
    Place* next;
};
using Places = std::atomic<Place*>;
/// The lists are global, because signal handlers read them and receive nothing but the signal's
/// number.
Places places;
/// Files that are removed on a signal only.
Places places_for_signals;
static_assert(std::atomic<char*>::is_always_lock_free && Places::is_always_lock_free &&
              std::atomic<int>::is_always_lock_free);

bool add(Places* list, char* path, int directory) {
    for (Place* place = *list; place != nullptr; place = place->next) {
        if (place->path != nullptr) continue;
        // In this order: a handler reads the directory only of an entry with a path.
        place->directory = directory;
        place->path = path;
        return true;
    }
    auto* const place = new (std::nothrow) Place{path, directory, *list};
    if (place != nullptr) *list = place;
    return place != nullptr;
}

void remember(Places* list, const std::string& path, int directory) {
    char* const copy = strdup(path.c_str());
    if (copy != nullptr && add(list, copy, directory)) return;
    // A file that is not on the list would never be removed.
    std::free(copy);
    unlinkat(directory, path.c_str(), 0);
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
        if (const char* path = place->path) unlinkat(place->directory, path, 0);
    }
}

}  // namespace

void remember_temporary_file(const std::string& path, int directory) {
    remember(&places, path, directory);
}

void remember_file_removed_on_signal(const std::string& path, int directory) {
    remember(&places_for_signals, path, directory);
}

void forget_temporary_file(const std::string& path) {
    forget(places, path);
    forget(places_for_signals, path);
}

void remove_temporary_files() {
    for (Place* place = places; place != nullptr; place = place->next) {
        if (char* path = place->path.exchange(nullptr)) {
            unlinkat(place->directory, path, 0);
            std::free(path);
        }
    }
}

void unlink_temporary_files() {
    unlink_all(places);
    // Last, because they tell other processes that the work on the other files is not done.
    unlink_all(places_for_signals);
}

RemovedOnException::~RemovedOnException() {
    if (std::uncaught_exceptions() > before_) unlink_temporary_files();
}

int create_temporary_file(const std::string& path, mode_t mode) {
    const SignalsBlocked blocked;
    if (is_in_append_only_directory(path)) {
        errno = EPERM;
        return -1;
    }
    unlink(path.c_str());
    const int descriptor = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
    if (descriptor != -1) remember_temporary_file(path);
    return descriptor;
}

TemporaryFile::TemporaryFile(const Directory& directory, const std::string& name, mode_t mode)
    : directory_(directory), name_(name) {
    const SignalsBlocked blocked;
    if (is_in_append_only_directory(directory.path_of(name))) {
        errno = EPERM;
        return;
    }
    constexpr int FLAGS = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC;
    file = Descriptor(openat(directory.descriptor(), name.c_str(), FLAGS, mode));
    is_there_ = static_cast<bool>(file);
    if (is_there_) remember_temporary_file(name, directory.descriptor());
}

TemporaryFile::~TemporaryFile() {
    if (!is_there_) return;
    directory_.unlink(name_);
    forget_temporary_file(name_);
}

int TemporaryFile::rename_to(const std::string& name) {
    const int error = directory_.rename(name_, name);
    if (error != 0) return error;
    is_there_ = false;
    forget_temporary_file(name_);
    return 0;
}

void remove_temporary_file(const std::string& path) {
    unlink_remove(path);
    forget_temporary_file(path);
}

void unlink_remove(const std::string& path) {
    if (std::remove(path.c_str()) != 0 && errno == EACCES) unlink(path.c_str());
}

}  // namespace gatescope
