#include "actions/outcome.h"

#include "base/filled.h"
#include "dialog/messages.h"
#include "messages/action_texts.h"

namespace gatescope {

bool advise_unless_written(ChangeResult result, const std::string& gatebits_file) {
    if (result == ChangeResult::CHANGED_MEANWHILE) {
        advise_wait(filled(CHANGED_BY_ANOTHER, gatebits_file.c_str()));
    }
    return result == ChangeResult::WRITTEN;
}

bool advise_unless_field_written(ChangeResult result, const std::string& gatebits_file,
                                 const std::string& item, int line, int field) {
    // Without the dots at the end of an item.
    const std::string name = item.substr(0, item.find("..."));
    const char* file = gatebits_file.c_str();
    if (result == ChangeResult::NO_SUCH_LINE) {
        advise_wait(filled(NO_LINE_FOR_FIELD, name.c_str(), field, line, file));
    }
    if (result == ChangeResult::NO_SUCH_FIELD) {
        advise_wait(filled(NO_FIELD_IN_LINE, name.c_str(), field, line, file));
    }
    return advise_unless_written(result, gatebits_file);
}

}  // namespace gatescope
