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
#include "messages/action_texts.h"
#include "messages/confirmation_texts.h"
#include "policy/gatebits_file.h"
#include "policy/region.h"
#include "policy/tool_variables.h"
#include "pruning/pruning.h"

namespace gatescope {
namespace {

std::string setting_list(const ToolSettings& tools) {
    std::vector<std::string> entries;
    for (std::size_t i = 0; i < GS_VAR_NAME.size(); ++i) {
        // The "#!" that makes the line a comment is not shown.
        entries.push_back(filled(SETTING_ENTRY, static_cast<int>(i), GS_VAR_NAME[i] + 2,
                                 tools.GS_VAR[i].c_str()));
    }
    return as_list(entries);
}

/// The next step after the question for a setting.
enum class Next { ASK_AGAIN, GO_ON };

/// Asks for the setting with `def` as the default, and writes the confirmed value unless the
/// setting differs from that in `shown`. `*entered` is the typed value.
Next ask_for_setting(std::size_t index, const Gatebits& shown, const std::string& def,
                     std::string* entered, RegionSettings* region) {
    const auto typed = prompt(filled(SETTING_PROMPT, GS_VAR_NAME[index]), def);
    if (!typed) return Next::GO_ON;
    *entered = *typed;
    const Change wanted = {GATESCOPE_VARIABLE, GS_VAR_NAME[index], *typed};
    const Consent consent = confirm_add(wanted, Addition::SETTING);
    if (consent == Consent::DECLINED) return Next::ASK_AGAIN;
    if (consent != Consent::CONFIRMED) return Next::GO_ON;
    const std::string path = region->ENTERPRIZE_PERMISSION_FILE;
    const auto setting_in = [&](const Gatebits& gatebits) {
        return std::vector<std::string>{stored_variable(gatebits, index).value_or("")};
    };
    auto stored = stored_variable(shown, index);
    if (stored) stored->insert(0, GS_VAR_NAME[index]);
    const auto edit = [&](const Gatebits& now) {
        return change_a_var(now, region->tools, index, *typed);
    };
    const Changed changed = change(path, {shown, setting_in}, edit,
                                   {"A24", wanted.item, stored, GS_VAR_NAME[index] + *typed});
    if (!advise_unless_written(changed.result, path)) return Next::GO_ON;
    add_confirmed(wanted);
    *region = interrogate_the_enterprise(path, changed.now, region->tools);
    return Next::GO_ON;
}

/// The default of a walk's question: the emergency checker when it replaces a missing checker, else
/// the value in the file.
std::string setting_in_use(const ToolSettings& tools, std::size_t index,
                           const std::optional<std::string>& stored) {
    const std::string& value = tools.GS_VAR[index];
    const bool replaced = index == UNIX_CHECKER && value == tools.EMERGENCY_CHECKER;
    return replaced ? value : stored.value_or(value);
}

void walk_to_setting(std::size_t index, RegionSettings* region) {
    Next next = Next::ASK_AGAIN;
    std::string entered;
    // After a declined change the default is the stored value again.
    while (next == Next::ASK_AGAIN) {
        const Gatebits gatebits = read_gatebits(region->ENTERPRIZE_PERMISSION_FILE);
        const auto stored = stored_variable(gatebits, index);
        next = ask_for_setting(index, gatebits, setting_in_use(region->tools, index, stored),
                               &entered, region);
    }
}

}  // namespace

void A_24(RegionSettings& region) {
    const Gatebits gatebits = read_gatebits(region.ENTERPRIZE_PERMISSION_FILE);
    build_var_list(gatebits, &region.tools);
    const auto pick = pick_one(SETTING_TITLE, setting_list(region.tools));
    if (!pick) return;
    const auto index = number_at_front(*pick);
    if (!index || static_cast<std::size_t>(*index) >= GS_VAR_NAME.size())
        gripe(INTERNAL_ERROR_A_24);
    std::string value = region.tools.GS_VAR[static_cast<std::size_t>(*index)];
    Next next = Next::ASK_AGAIN;
    // After a declined change the default is the entered value.
    while (next == Next::ASK_AGAIN) {
        next = ask_for_setting(static_cast<std::size_t>(*index), gatebits, value, &value, &region);
    }
}

void ask_all_configure(SettingsAsked mode, RegionSettings* region) {
    const std::size_t settings =
        mode == SettingsAsked::IMPORTANT ? UNIX_CHECKER + 1 : GS_VAR_NAME.size();
    for (std::size_t index = 0; index < settings; ++index) walk_to_setting(index, region);
}

}  // namespace gatescope
