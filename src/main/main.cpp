#include <unistd.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "dialog/process_end.h"
#include "logs/demo_data.h"
#include "main/command_line.h"
#include "main/gatebits_choice.h"
#include "main/main_loop.h"
#include "main/startup.h"
#include "messages/identity.h"
#include "policy/checker.h"
#include "policy/edition.h"
#include "policy/gatebits_file.h"
#include "policy/region.h"

namespace gatescope {
namespace {

int run(int word_count, char** first_word) {
    const std::vector<std::string> words(first_word, first_word + word_count);
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

int main(int argument_count, char** arguments) {
    return gatescope::run_program(gatescope::SELF, gatescope::run, argument_count, arguments);
}
