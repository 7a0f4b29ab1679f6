#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <vector>

#include "base/exit_status.h"
#include "base/filled.h"
#include "base/signals.h"
#include "base/standard_streams.h"
#include "dialog/process_end.h"
#include "logs/demo_data.h"
#include "main/command_line.h"
#include "main/gatebits_choice.h"
#include "main/main_loop.h"
#include "main/out_of_memory.h"
#include "main/startup.h"
#include "messages/startup_texts.h"
#include "policy/checker.h"
#include "policy/edition.h"
#include "policy/gatebits_file.h"
#include "policy/region.h"

namespace gatescope {
namespace {

int run(const std::vector<std::string>& words) {
    const std::vector<std::string> arguments(words.begin() + (words.empty() ? 0 : 1), words.end());
    clean_start();
    std::srand(static_cast<unsigned>(getpid()));
    verify_set_tempdir();

    run_sole_option(arguments);
    const Options options = parse_arguments(arguments);
    RegionInUse region;
    region.settings.tools.EMERGENCY_CHECKER = emergency_checker(words.empty() ? "" : words.front());
    choose_gatebits_file(options, region);
    const std::string path = region.settings.ENTERPRIZE_PERMISSION_FILE;
    const Gatebits gatebits = read_gatebits(path);
    region.settings = interrogate_the_enterprise(path, gatebits, region.settings.tools);
    region.GATEWARDEN_IS = read_edition(gatebits);
    if (options.data_gen_selected) data_gen(region.settings.logging_dir);
    return status_with_output_written(run_requests(options, region));
}

}  // namespace
}  // namespace gatescope

int main(int argument_count, char** argument_vector) {
    using namespace gatescope;
    if (const int error = open_missing_standard_streams()) {
        note(filled(CANNOT_OPEN_NULL_DEVICE, std::strerror(error)));
        return STATUS_ERROR;
    }
    install_signal_cleanup();
    install_out_of_memory_handlers();
    try {
        return run({argument_vector, argument_vector + argument_count});
    } catch (const std::bad_alloc&) {
        gripe_out_of_memory();
    }
}
