#include "actions/actions.h"
#include "base/child.h"
#include "base/files.h"
#include "base/filled.h"
#include "dialog/messages.h"
#include "messages/action_texts.h"
#include "messages/identity.h"
#include "messages/policy_texts.h"
#include "policy/checker.h"
#include "policy/file_chooser.h"
#include "policy/gatebits_file.h"
#include "policy/new_gatebits_file.h"
#include "policy/region.h"
#include "policy/tool_variables.h"

// Which gatebits file is in use: check it, switch to another, create one, copy one.

namespace {

/// How far a step of an action got.
enum class Step { DONE, AGAIN, GIVEN_UP };

/// Asks whether to try once more.
Step again_if_wished(const char* question) {
    return ask(question, "yes", "yes,no") == YES ? Step::AGAIN : Step::GIVEN_UP;
}

/// Repeats a step for as long as the operator wants to try again.
template <typename Repeated>
bool done_in_the_end(Repeated step) {
    Step result = Step::AGAIN;
    while (result == Step::AGAIN) result = step();
    return result == Step::DONE;
}

/// What the checker says of the file in use, in words; empty when it could not be run.
std::string verdict_on_new_file() {
    if (perform_cbfile_only_check(CHECK_ERRORS) == 0) return "";
    const char* file = ENTERPRIZE_PERMISSION_FILE.c_str();
    return CURRENT_GATEBITS_FILE_HAS_ERRORS ? filled(LOADED_WITH_ERRORS, file)
                                            : filled(LOADED_WITHOUT_ERRORS, file);
}

Step switch_file() {
    if (select_cb_file(PROMPT_06) == 0) return Step::GIVEN_UP;
    if (!this_file_exists(POSSIBLE_FILE)) return again_if_wished(RETRY_SWITCH);
    ENTERPRIZE_PERMISSION_FILE = POSSIBLE_FILE;
    const std::string verdict = verdict_on_new_file();
    if (verdict.empty()) return Step::GIVEN_UP;
    advise_wait(verdict);
    return Step::DONE;
}

Step use_existing_or_again() {
    switch (ask(NEW_OR_EXISTING, "yes", "yes,no,abort")) {
        case YES:
            return Step::AGAIN;
        case NO:
            ENTERPRIZE_PERMISSION_FILE = POSSIBLE_FILE;
            return Step::DONE;
        default:
            return Step::GIVEN_UP;
    }
}

/// The checker of the file in use goes into the new one, as long as it is there.
std::string text_of_new_file() {
    const std::string& checker = GS_VAR[UNIX_CHECKER];
    return filled(init_file, (checker_exists(checker) ? checker : EMERGENCY_CHECKER).c_str(),
                  GS_VAR[WINDOWS_CHECKER].c_str(), SELF, VERSION);
}

void offer_the_walks(Run& run) {
    switch (ask(POPULATE_NOW, "yes", "yes,no,abort")) {
        case YES:
            return A_29(run);
        case NO:
            return A_28(run);
        default:
            return;
    }
}

void use_file(const std::string& path) {
    ENTERPRIZE_PERMISSION_FILE = path;
    interrogate_the_enterprise();
}

Step create_file(Run& run) {
    if (select_cb_file(PROMPT_05) == 0) return Step::GIVEN_UP;
    if (this_file_exists(POSSIBLE_FILE)) return use_existing_or_again();
    switch (create_gatebits_file(POSSIBLE_FILE, text_of_new_file())) {
        case NewFile::EXISTS:
            return use_existing_or_again();
        case NewFile::NOT_CREATED:
            return again_if_wished(RETRY_LOCATION);
        case NewFile::CREATED:
            break;
    }
    use_file(POSSIBLE_FILE);
    offer_the_walks(run);
    return Step::DONE;
}

Step choose_source() {
    if (select_cb_file(PROMPT_04) == 0) return Step::GIVEN_UP;
    return this_file_exists(POSSIBLE_FILE) ? Step::DONE : again_if_wished(RETRY_SOURCE);
}

Step choose_destination() {
    if (select_cb_file(PROMPT_03) == 0) return Step::GIVEN_UP;
    return this_file_exists(POSSIBLE_FILE) ? again_if_wished(RETRY_DESTINATION) : Step::DONE;
}

/// The whole action but its refusal: it starts over from the source when the destination cannot be
/// created.
Step copy_the_file() {
    if (!done_in_the_end(choose_source)) return Step::GIVEN_UP;
    const std::string source = POSSIBLE_FILE;
    use_file(source);
    NewFile created = NewFile::EXISTS;
    while (created == NewFile::EXISTS) {
        if (!done_in_the_end(choose_destination)) return Step::GIVEN_UP;
        created = create_gatebits_file(POSSIBLE_FILE, bytes_to_copy(source, POSSIBLE_FILE));
        // Somebody may have put a file there since it was looked for.
        if (created == NewFile::EXISTS && again_if_wished(RETRY_DESTINATION) == Step::GIVEN_UP) {
            return Step::GIVEN_UP;
        }
    }
    if (created == NewFile::NOT_CREATED) return again_if_wished(RETRY_LOCATION);
    use_file(POSSIBLE_FILE);
    const std::string verdict = verdict_on_new_file();
    if (verdict.empty()) return Step::GIVEN_UP;
    advise_wait(
        filled(COPIED, source.c_str(), ENTERPRIZE_PERMISSION_FILE.c_str(), verdict.c_str()));
    return Step::DONE;
}

}  // namespace

void A_23(bool during_install) {
    const bool found = find_checker();
    const std::string& checker = GS_VAR[UNIX_CHECKER];
    if (!found) {
        return advise(filled(CHECKER_NOT_FOUND, GS_VAR_NAME[UNIX_CHECKER], checker.c_str(),
                             ENTERPRIZE_NAME.c_str()));
    }
    const std::string command = checker_command(CHECK);
    const int status = run_in_shell(command);
    if (status == 0 || during_install) return;
    ask(filled(CHECK_FAILED, status, command.c_str()), "abort", "abort");
}

int A_25() {
    return done_in_the_end(switch_file) ? 1 : 0;
}

int A_26(Run& run) {
    return done_in_the_end([&] { return create_file(run); }) ? 1 : 0;
}

int A_27() {
    return done_in_the_end(copy_the_file) ? 1 : 0;
}
