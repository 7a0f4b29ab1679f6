#include "actions/depot_first.h"

#include <sys/stat.h>

#include "actions/field_editors.h"
#include "base/filled.h"
#include "base/process_end.h"
#include "dialog/messages.h"
#include "messages/action_texts.h"
#include "messages/identity.h"
#include "policy/gatebits_file.h"

namespace {

std::string depot_of(const std::string& os) {
    return field_or_empty(DEPOT_LINE, os == WINDOWS_OS ? 1 : 2);
}

/// What to ask before the depot is defined; empty when it need not be.
std::string question_about(const std::string& depot, const char* entry, const std::string& os) {
    const char* name = os.c_str();
    if (depot.empty()) return filled(DEPOT_IS_NOT_DEFINED, name, name, entry, name);
    if (os != THIS_OS) return "";
    struct stat status;
    if (stat(depot.c_str(), &status) != 0) {
        return filled(DEPOT_IS_NOT_THERE, name, name, entry, name, depot.c_str(), name);
    }
    if (S_ISDIR(status.st_mode)) return "";
    return filled(DEPOT_IS_NO_DIRECTORY, name, name, entry, name, depot.c_str(), name);
}

}  // namespace

int make_depot_first_if_needed(const std::string& entry, const std::string& os) {
    const std::string question = question_about(depot_of(os), entry.c_str(), os);
    if (question.empty()) return DEPOT_IS_THERE;
    TMSG = question;
    if (ask(TMSG, "yes", "yes,no") != YES) return NO_DEPOT;
    if (view_change_depot(os) == LEFT) return NO_DEPOT;
    return depot_of(os).empty() ? NO_DEPOT : DEPOT_NOW_DEFINED;
}
