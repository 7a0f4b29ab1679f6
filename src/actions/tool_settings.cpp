#include "actions/tool_settings.h"

#include <vector>

#include "actions/actions.h"
#include "actions/picks.h"
#include "base/filled.h"
#include "dialog/confirmations.h"
#include "dialog/messages.h"
#include "dialog/prompts.h"
#include "logs/log_files.h"
#include "logs/pruning.h"
#include "messages/action_texts.h"
#include "messages/confirmation_texts.h"
#include "policy/region.h"
#include "policy/tool_variables.h"

namespace {

std::string setting_list() {
    std::vector<std::string> entries;
    for (std::size_t i = 0; i < GS_VAR_NAME.size(); ++i) {
        // The "#!" that makes the line a comment is not shown.
        entries.push_back(
            filled(SETTING_ENTRY, static_cast<int>(i), GS_VAR_NAME[i] + 2, GS_VAR[i].c_str()));
    }
    return as_list(entries);
}

/// What became of one question for a setting.
enum class Setting { CANCELLED, DECLINED, DONE };

/// Asks for the setting, with `def` to be edited, and writes what is confirmed. `*entered` is
/// what was typed.
Setting ask_for_setting(std::size_t index, const std::string& def, std::string* entered) {
    const auto typed = prompt(filled(SETTING_PROMPT, GS_VAR_NAME[index]), def);
    if (!typed) return Setting::CANCELLED;
    *entered = *typed;
    const Change change = {GATESCOPE_VARIABLE, GS_VAR_NAME[index], *typed};
    switch (confirm_add(change, Addition::SETTING)) {
        case CONFIRMED:
            change_a_var(static_cast<int>(index), *typed);
            add_confirmed(change);
            interrogate_the_enterprise();
            return Setting::DONE;
        case DECLINED:
            return Setting::DECLINED;
        default:
            return Setting::CANCELLED;
    }
}

}  // namespace

void A_1(bool display) {
    prune_logging_files({logging_dir, ENTERPRIZE_NAME, display}, QUERY_DAYS);
}

void A_24() {
    build_var_list();
    const auto pick = pick_one(SETTING_TITLE, setting_list());
    if (!pick) return;
    const auto index = number_at_front(*pick);
    if (!index || static_cast<std::size_t>(*index) >= GS_VAR.size()) gripe(INTERNAL_ERROR_A_24);
    std::string value = GS_VAR[static_cast<std::size_t>(*index)];
    // What was entered last is what a declined change goes on from.
    while (ask_for_setting(static_cast<std::size_t>(*index), value, &value) == Setting::DECLINED) {
    }
}

void ask_all_configure(char mode) {
    if (mode != IMPORTANT_SETTINGS && mode != ALL_SETTINGS) gripe(INTERNAL_ERROR_CONFIGURE);
    const std::size_t settings = mode == IMPORTANT_SETTINGS ? UNIX_CHECKER + 1 : GS_VAR.size();
    std::string entered;
    for (std::size_t index = 0; index < settings; ++index) {
        // A declined change goes on from the stored value.
        while (ask_for_setting(index, GS_VAR[index], &entered) == Setting::DECLINED) {
        }
    }
}
