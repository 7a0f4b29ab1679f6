#include "actions/actions.h"
#include "base/child.h"
#include "base/files.h"
#include "base/filled.h"
#include "dialog/messages.h"
#include "messages/action_texts.h"
#include "messages/confirmation_texts.h"
#include "messages/identity.h"
#include "messages/policy_texts.h"
#include "policy/checker.h"
#include "policy/file_chooser.h"
#include "policy/gatebits_file.h"
#include "policy/new_gatebits_file.h"
#include "policy/region.h"
#include "policy/tool_variables.h"

namespace gatescope {

// The gatebits file in use: check it, switch to another, create one, copy one.

namespace {

/// The outcome of a step of an action.
enum class Step { DONE, RETRY, GIVEN_UP };

Step ask_to_retry(const char* question) {
    return ask(question, Answer::YES, Buttons::YES_NO) == Answer::YES ? Step::RETRY
                                                                      : Step::GIVEN_UP;
}

/// Repeats a step while it returns RETRY. Whether it was done.
template <typename Repeated>
bool run_until_done(Repeated step) {
    Step result = Step::RETRY;
    while (result == Step::RETRY) result = step();
    return result == Step::DONE;
}

/// A report of the check of the file in use; empty when the checker could not be run.
std::string verdict_on_new_file(RegionSettings* region) {
    const auto check = perform_cbfile_only_check(CheckMode::ERRORS, region);
    if (!check) return "";
    const char* file = region->ENTERPRIZE_PERMISSION_FILE.c_str();
    return check->CURRENT_GATEBITS_FILE_HAS_ERRORS ? filled(LOADED_WITH_ERRORS, file)
                                                   : filled(LOADED_WITHOUT_ERRORS, file);
}

Step switch_file(RegionSettings* region) {
    const auto chosen = select_cb_file(region->ENTERPRIZE_PERMISSION_FILE, PROMPT_06);
    if (!chosen) return Step::GIVEN_UP;
    if (!this_file_exists(*chosen)) return ask_to_retry(RETRY_SWITCH);
    region->ENTERPRIZE_PERMISSION_FILE = *chosen;
    const std::string verdict = verdict_on_new_file(region);
    if (verdict.empty()) return Step::GIVEN_UP;
    advise_wait(verdict);
    return Step::DONE;
}

Step ask_to_use_existing(const std::string& path, RegionSettings* region) {
    switch (ask(NEW_OR_EXISTING)) {
        case Answer::YES:
            return Step::RETRY;
        case Answer::NO:
            region->ENTERPRIZE_PERMISSION_FILE = path;
            return Step::DONE;
        default:
            return Step::GIVEN_UP;
    }
}

/// The new file gets the checkers of the file in use, or the emergency checker when this system's
/// does not exist.
std::string text_of_new_file(const ToolSettings& in_use) {
    const std::string& checker = in_use.GS_VAR[UNIX_CHECKER];
    ToolSettings tools;
    tools.GS_VAR[UNIX_CHECKER] =
        c_text(checker_exists(checker) ? checker : in_use.EMERGENCY_CHECKER);
    tools.GS_VAR[WINDOWS_CHECKER] = c_text(in_use.GS_VAR[WINDOWS_CHECKER]);
    tools.GS_VAR[UNIX_BROWSER] = NEW_UNIX_BROWSER;
    tools.GS_VAR[WINDOWS_BROWSER] = NEW_WINDOWS_BROWSER;
    std::string text;
    for (const std::string& line : tool_variable_lines(tools)) text += line + "\n";
    return text + filled(init_file, SELF, VERSION);
}

void offer_walks(const Options& options, RegionInUse& region) {
    switch (ask(POPULATE_NOW)) {
        case Answer::YES:
            return A_29(options, region);
        case Answer::NO:
            return A_28(options, region);
        default:
            return;
    }
}

void use_file(const std::string& path, RegionSettings* region) {
    *region = interrogate_the_enterprise(path, read_gatebits(path), region->tools);
}

Step create_file(const Options& options, RegionInUse& region) {
    const auto chosen = select_cb_file(region.settings.ENTERPRIZE_PERMISSION_FILE, PROMPT_05);
    if (!chosen) return Step::GIVEN_UP;
    if (this_file_exists(*chosen)) return ask_to_use_existing(*chosen, &region.settings);
    switch (create_gatebits_file(*chosen, text_of_new_file(region.settings.tools),
                                 {"A26", NEW_FILE, std::nullopt, *chosen})) {
        case NewFile::EXISTS:
            return ask_to_use_existing(*chosen, &region.settings);
        case NewFile::NOT_CREATED:
            return ask_to_retry(RETRY_LOCATION);
        case NewFile::CREATED:
            break;
    }
    use_file(*chosen, &region.settings);
    offer_walks(options, region);
    return Step::DONE;
}

// Both store the choice in `*path`.

Step choose_source(const std::string& file_in_use, std::string* path) {
    const auto chosen = select_cb_file(file_in_use, PROMPT_04);
    if (!chosen) return Step::GIVEN_UP;
    *path = *chosen;
    return this_file_exists(*path) ? Step::DONE : ask_to_retry(RETRY_SOURCE);
}

Step choose_destination(const std::string& file_in_use, std::string* path) {
    const auto chosen = select_cb_file(file_in_use, PROMPT_03);
    if (!chosen) return Step::GIVEN_UP;
    *path = *chosen;
    return this_file_exists(*path) ? ask_to_retry(RETRY_DESTINATION) : Step::DONE;
}

/// Starts over from the source when the destination cannot be created.
Step copy_the_file(RegionSettings* region) {
    std::string source;
    std::string destination;
    const std::string& file_in_use = region->ENTERPRIZE_PERMISSION_FILE;
    if (!run_until_done([&] { return choose_source(file_in_use, &source); })) {
        return Step::GIVEN_UP;
    }
    use_file(source, region);
    NewFile created = NewFile::EXISTS;
    while (created == NewFile::EXISTS) {
        if (!run_until_done([&] { return choose_destination(file_in_use, &destination); })) {
            return Step::GIVEN_UP;
        }
        created = create_gatebits_file(
            destination, bytes_to_copy(source, destination),
            {"A27", filled(COPY_OF_FILE, source.c_str()), std::nullopt, destination});
        // Another process may have created the file meanwhile.
        if (created == NewFile::EXISTS && ask_to_retry(RETRY_DESTINATION) == Step::GIVEN_UP) {
            return Step::GIVEN_UP;
        }
    }
    if (created == NewFile::NOT_CREATED) return ask_to_retry(RETRY_LOCATION);
    use_file(destination, region);
    const std::string verdict = verdict_on_new_file(region);
    if (verdict.empty()) return Step::GIVEN_UP;
    advise_wait(filled(COPIED, source.c_str(), destination.c_str(), verdict.c_str()));
    return Step::DONE;
}

}  // namespace

void A_23(RegionSettings& region, bool during_install) {
    const bool found = find_checker(&region.tools);
    const std::string& checker = region.tools.GS_VAR[UNIX_CHECKER];
    if (!found) {
        return advise(filled(CHECKER_NOT_FOUND, GS_VAR_NAME[UNIX_CHECKER], checker.c_str(),
                             region.ENTERPRIZE_NAME.c_str()));
    }
    const std::string command = checker_command(checker, region.ENTERPRIZE_PERMISSION_FILE, CHECK);
    const int status = run_in_shell(command);
    if (status == 0 || during_install) return;
    ask(filled(CHECK_FAILED, status, command.c_str()), Answer::ABORT, Buttons::ABORT);
}

bool A_25(RegionSettings& region) {
    return run_until_done([&] { return switch_file(&region); });
}

bool A_26(const Options& options, RegionInUse& region) {
    return run_until_done([&] { return create_file(options, region); });
}

bool A_27(RegionSettings& region) {
    return run_until_done([&] { return copy_the_file(&region); });
}

}  // namespace gatescope
