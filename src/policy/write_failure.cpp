#include "policy/write_failure.h"

#include <cstring>

#include "base/filled.h"
#include "dialog/messages.h"
#include "messages/startup_texts.h"

namespace gatescope {
namespace {

std::string state_of(const Failure& failure, const std::string& safe_copy) {
    const char* file = failure.file.c_str();
    switch (failure.state) {
        case Failure::State::NEW:
            return filled(FILE_IS_NEW, file);
        case Failure::State::DAMAGED:
            return filled(FILE_IS_DAMAGED, file, safe_copy.c_str());
        default:
            return filled(FILE_IS_UNCHANGED, file);
    }
}

[[noreturn]] void gripe_not_written(const std::string& file, const std::string& reason,
                                    const std::string& state) {
    gripe(filled(COULD_NOT_REPLACE, file.c_str(), reason.c_str(), state.c_str()));
}

}  // namespace

void gripe_unchanged(const std::string& path, const std::string& reason) {
    gripe_not_written(path, reason, filled(FILE_IS_UNCHANGED, path.c_str()));
}

void gripe_not_replaced(const Failure& failure, const std::string& path,
                        const std::string& safe_copy) {
    if (failure.state == Failure::State::REFUSED) {
        gripe(filled(COULD_NOT_MOVE_1, safe_copy.c_str(), path.c_str(), failure.error),
              failure.error);
    }
    const bool is_regular = failure.state != Failure::State::NOT_REGULAR;
    gripe_not_written(failure.file, is_regular ? std::strerror(failure.error) : IS_NO_REGULAR_FILE,
                      state_of(failure, safe_copy));
}

}  // namespace gatescope
