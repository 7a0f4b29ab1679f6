#include "actions/tool_settings.h"

#include <optional>
#include <vector>

#include "actions/actions.h"
#include "actions/outcome.h"
#include "actions/picks.h"
#include "base/filled.h"
#include "dialog/confirmations.h"
#include "dialog/messages.h"
#include "dialog/prompts.h"
#include "logs/log_files.h"
#include "logs/pruning.h"
#include "messages/action_texts.h"
#include "messages/confirmation_texts.h"
#include "policy/checker.h"
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
enum class Setting { LEFT, DECLINED, WRITTEN };

/// Asks for the setting, with `def` to be edited, and writes what is confirmed unless the file no
/// longer has `stored` for it. `*entered` is what was typed.
Setting ask_for_setting(std::size_t index, const std::string& stored, const std::string& def,
                        std::string* entered) {
    const auto typed = prompt(filled(SETTING_PROMPT, GS_VAR_NAME[index]), def);
    if (!typed) return Setting::LEFT;
    *entered = *typed;
    const Change change = {GATESCOPE_VARIABLE, GS_VAR_NAME[index], *typed};
    switch (confirm_add(change, Addition::SETTING)) {
        case CONFIRMED:
            if (!written_or_told(change_a_var(static_cast<int>(index), *typed, stored))) {
                return Setting::LEFT;
            }
            add_confirmed(change);
            interrogate_the_enterprise();
            return Setting::WRITTEN;
        case DECLINED:
            return Setting::DECLINED;
        default:
            return Setting::LEFT;
    }
}

/// The setting as the walks show it: what is in use in place of a checker that is missing, else
/// what the file has.
std::string setting_in_use(std::size_t index, const std::optional<std::string>& stored) {
    const bool replaced = index == UNIX_CHECKER && GS_VAR[index] == EMERGENCY_CHECKER;
    return replaced ? GS_VAR[index] : stored.value_or(GS_VAR[index]);
}

void walk_to_setting(std::size_t index) {
    Setting end = Setting::DECLINED;
    std::string entered;
    // A declined change goes on from the stored value.
    while (end == Setting::DECLINED) {
        const auto stored = stored_variable(index);
        end = ask_for_setting(index, stored.value_or(""), setting_in_use(index, stored), &entered);
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
    const std::string stored = GS_VAR[static_cast<std::size_t>(*index)];
    std::string value = stored;
    Setting end = Setting::DECLINED;
    // What was entered last is what a declined change goes on from.
    while (end == Setting::DECLINED) {
        end = ask_for_setting(static_cast<std::size_t>(*index), stored, value, &value);
    }
}

void ask_all_configure(char mode) {
    if (mode != IMPORTANT_SETTINGS && mode != ALL_SETTINGS) gripe(INTERNAL_ERROR_CONFIGURE);
    const std::size_t settings = mode == IMPORTANT_SETTINGS ? UNIX_CHECKER + 1 : GS_VAR.size();
    for (std::size_t index = 0; index < settings; ++index) walk_to_setting(index);
}
