#include "actions/depot_first.h"

#include <sys/stat.h>

#include "base/filled.h"
#include "messages/action_texts.h"
#include "messages/identity.h"

namespace gatescope {
namespace {

/// The question whether to define the depot first; empty when it is defined.
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

std::string depot_of(const Gatebits& gatebits, const std::string& os) {
    return field_or_empty(gatebits, DEPOT_LINE, os == WINDOWS_OS ? WINDOWS_FIELD : UNIX_FIELD);
}

std::string question_for_missing_depot(const Gatebits& gatebits, const std::string& entry,
                                       const std::string& os) {
    return question_about(depot_of(gatebits, os), entry.c_str(), os);
}

}  // namespace gatescope
