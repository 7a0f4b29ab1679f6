#include <span>

#include "actions/actions.h"
#include "actions/requests.h"
#include "actions/tool_settings.h"

namespace gatescope {
namespace {

// The actions of each walk after the tool's settings. They are run as from the menus, so guarded
// actions are guarded here too.
constexpr int IMPORTANT_FIELDS[] = {4, 5, 6, 7, 16, 23};
constexpr int ALL_FIELDS[] = {4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 22, 23};

/// A step that is cancelled leads to the next one.
void walk(const Options& options, RegionInUse& region, SettingsAsked settings,
          std::span<const int> actions) {
    ask_all_configure(settings, &region.settings);
    for (const int number : actions) {
        request_numbered(RequestKind::ACTION, number)->execute(options, region);
    }
}

}  // namespace

void A_28(const Options& options, RegionInUse& region) {
    walk(options, region, SettingsAsked::IMPORTANT, IMPORTANT_FIELDS);
}

void A_29(const Options& options, RegionInUse& region) {
    walk(options, region, SettingsAsked::ALL, ALL_FIELDS);
}

}  // namespace gatescope
