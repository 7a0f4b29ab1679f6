#include "base/search_path.h"

#include <unistd.h>

#include <cstdlib>
#include <string_view>

#include "messages/environment.h"

namespace gatescope {
namespace {

/// The default of shells without PATH.
constexpr char USUAL_PATH[] = "/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin";

}  // namespace

bool is_on_search_path(const std::string& program, int mode) {
    const char* path = std::getenv(ENV_PATH);
    std::string_view rest = path != nullptr ? path : USUAL_PATH;
    while (true) {
        const auto colon = rest.find(':');
        // An empty element is the working directory.
        const std::string_view element = rest.substr(0, colon);
        const std::string directory(element.empty() ? "." : element);
        if (access((directory + "/" + program).c_str(), mode) == 0) return true;
        if (colon == std::string_view::npos) return false;
        rest.remove_prefix(colon + 1);
    }
}

}  // namespace gatescope
