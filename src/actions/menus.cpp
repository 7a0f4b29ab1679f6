#include "actions/menus.h"

#include <vector>

#include "actions/requests.h"
#include "base/filled.h"
#include "dialog/prompts.h"
#include "messages/menu_labels.h"

namespace gatescope {
namespace {

const char* label_of(const Request& request, int edition) {
    return request.lite_label != nullptr && edition == 0 ? request.lite_label : request.label;
}

/// The labels of the requests that `column` shows.
std::string entries(Shown Request::*column, int edition, bool during_install) {
    std::vector<std::string> labels;
    for (const Request& request : all_requests()) {
        const Shown shown = request.*column;
        if (shown == Shown::NO || (shown == Shown::TO_INSTALLER_ONLY && !during_install)) continue;
        if (shown == Shown::AFTER_SEPARATOR) labels.emplace_back(SEPERATOR);
        labels.emplace_back(label_of(request, edition));
    }
    return as_list(labels);
}

}  // namespace

std::string main_menu_entries(int edition) {
    return entries(&Request::in_main_menu, edition, false);
}

std::string submenu_entries(bool during_install) {
    constexpr int ANY_EDITION = 1;
    return entries(&Request::in_submenu, ANY_EDITION, during_install);
}

std::string main_menu_title(const std::string& region) {
    return filled(MAIN_MENU_TITLE, region.c_str());
}

std::string submenu_title(const std::string& region, bool during_install) {
    return filled(during_install ? INSTALL_MENU_TITLE : SUBMENU_TITLE, region.c_str());
}

bool is_separator(const std::string& pick) {
    return pick.compare(0, 5, std::string(SEPERATOR, 5)) == 0;
}

}  // namespace gatescope
