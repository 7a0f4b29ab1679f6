#include "main/gatebits_choice.h"

#include <fcntl.h>

#include <cstdlib>
#include <string>

#include "actions/actions.h"
#include "actions/requests.h"
#include "base/descriptor.h"
#include "base/exit_status.h"
#include "base/filled.h"
#include "dialog/messages.h"
#include "dialog/process_end.h"
#include "messages/command_line_texts.h"
#include "messages/environment.h"

namespace gatescope {
namespace {

/// Takes the gatebits file named by the environment; false when there is none or it cannot be
/// opened.
bool take_file_from_environment(const char* named, std::string* file) {
    if (named == nullptr) return false;
    *file = named;
    return static_cast<bool>(Descriptor(open(named, O_RDONLY | O_NONBLOCK | O_CLOEXEC)));
}

/// The reason why there is no gatebits file yet, and the question whether to create one.
std::string gatebits_question(const Options& options, const char* from_environment) {
    if (options.selected_file) return filled(WARN_01, options.selected_file->c_str(), WARN_00);
    if (from_environment != nullptr) {
        return filled(WARN_02, from_environment, ENV_GATEBITS_FILE, WARN_00);
    }
    return filled(WARN_03, ENV_GATEBITS_FILE, WARN_00);
}

void make_new_gatebits_file(const Options& options, RegionInUse& region) {
    if (refuse_during_install(*request_numbered(RequestKind::ACTION, 26), options) ||
        !A_26(options, region)) {
        clean_exit(STATUS_MISSING_PREREQUISITE);
    }
}

void open_existing_gatebits_file(const Options& options, RegionInUse& region) {
    if (refuse_during_install(*request_numbered(RequestKind::ACTION, 25), options) ||
        !A_25(region.settings)) {
        clean_exit(STATUS_MISSING_PREREQUISITE);
    }
}

}  // namespace

void choose_gatebits_file(const Options& options, RegionInUse& region) {
    std::string& file = region.settings.ENTERPRIZE_PERMISSION_FILE;
    file = options.selected_file.value_or("");
    if (options.file_selected) return;
    const char* named = options.selected_file ? nullptr : std::getenv(ENV_GATEBITS_FILE);
    if (take_file_from_environment(named, &file)) return;
    const Answer answer = ask(gatebits_question(options, named));
    file.clear();
    if (answer == Answer::YES) {
        make_new_gatebits_file(options, region);
    } else if (answer == Answer::NO) {
        open_existing_gatebits_file(options, region);
    } else {
        clean_exit(STATUS_MISSING_PREREQUISITE);
    }
    // Start-up goes on after any answer.
    if (file.empty()) ask(RETRY_GATEBITS_FILE);
}

}  // namespace gatescope
