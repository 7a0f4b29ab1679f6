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

/// Needs no memory.
[[noreturn]] void end_with_the_text_alone() {
    unlink_temporary_files();
    [[maybe_unused]] const ssize_t said = write(STDERR_FILENO, NO_MEMORY, sizeof NO_MEMORY - 1);
    _exit(status_of_an_error());
}

/// An exception that meets a library's noexcept function ends in the terminate handler, which
/// cannot see what was thrown; so a lack of memory is remembered here. It is the process's, as its
/// memory is.
std::atomic<bool> has_lacked_memory = false;

void lack_memory() {
    has_lacked_memory = true;
    throw std::bad_alloc();
}

[[noreturn]] void terminated() {
    if (has_lacked_memory) end_with_the_text_alone();
    std::abort();
}

}  // namespace

void end_in_order_without_memory() {
    std::set_new_handler(lack_memory);
    std::set_terminate(terminated);
}

void end_without_memory() {
    // Unwinding has freed memory by now. The files that tell others of work going on are removed
    // too, as when a signal ends the program.
    unlink_temporary_files();
    gripe(NO_MEMORY);
}

}  // namespace gatescope
