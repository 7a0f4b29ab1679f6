#include "base/run_identity.h"

#include "base/filled.h"
#include "messages/identity.h"

namespace gatescope {

std::string GLOBAL_PID_STRING;
std::string TEMP_DIR;

std::string make_tfile(const char* tag, const char* part2, const char* part3) {
    const auto text = [](const char* part) { return part != nullptr ? part : ""; };
    return filled("%s%c%s_%s_%s.txt", TEMP_DIR.c_str(), DIR_DELIMETER, text(tag), text(part2),
                  text(part3));
}

std::string t_file_name() {
    return make_tfile("t_file", SELF, GLOBAL_PID_STRING.c_str());
}

}  // namespace gatescope
