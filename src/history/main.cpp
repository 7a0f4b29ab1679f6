#include <cstring>
#include <new>

#include "base/filled.h"
#include "base/signals.h"
#include "base/standard_streams.h"
#include "dialog/messages.h"
#include "history/program.h"
#include "messages/startup_texts.h"

int main(int argument_count, char** arguments) {
    using namespace gatescope;
    if (const int error = open_missing_standard_streams()) {
        note(filled(CANNOT_OPEN_NULL_DEVICE, std::strerror(error)), "gatescope-history");
        return 2;
    }
    install_signal_cleanup();
    ZUL_PREFER_GUI = ERRORS_ON_STDERR;
    try {
        return run_history_program(argument_count, arguments);
    } catch (const std::bad_alloc&) {
        gripe(NO_MEMORY);
    }
}
