#include "main/out_of_memory.h"

#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <exception>
#include <new>

#include "base/temporary_files.h"
#include "dialog/messages.h"
#include "messages/startup_texts.h"

namespace gatescope {
namespace {

/// Allocates no memory.
[[noreturn]] void end_with_text() {
    unlink_temporary_files();
    [[maybe_unused]] const ssize_t size = write(STDERR_FILENO, NO_MEMORY, sizeof NO_MEMORY - 1);
    _exit(error_status());
}

/// For the terminate handler, which cannot tell why an exception that left a library's noexcept
/// function was thrown. Global, because handlers take no arguments.
std::atomic<bool> allocation_failed = false;

void handle_failed_allocation() {
    allocation_failed = true;
    throw std::bad_alloc();
}

[[noreturn]] void handle_terminate() {
    if (allocation_failed) end_with_text();
    std::abort();
}

}  // namespace

void install_out_of_memory_handlers() {
    std::set_new_handler(handle_failed_allocation);
    std::set_terminate(handle_terminate);
}

void gripe_out_of_memory() {
    // Unwinding has freed memory. Unlike clean_exit this also removes the files for signals.
    unlink_temporary_files();
    gripe(NO_MEMORY);
}

}  // namespace gatescope
