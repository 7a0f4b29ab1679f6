#include <optional>
#include <string>
#include <vector>

#include "actions/actions.h"
#include "actions/field_editors.h"
#include "actions/outcome.h"
#include "actions/picks.h"
#include "base/filled.h"
#include "dialog/confirmations.h"
#include "dialog/messages.h"
#include "dialog/prompts.h"
#include "messages/action_texts.h"
#include "messages/confirmation_texts.h"
#include "messages/policy_texts.h"
#include "policy/aliases.h"
#include "policy/gatebits_file.h"
#include "policy/validators.h"

namespace gatescope {
namespace {

/// Definitions in a list are cut to this many characters; so is the value offered for an update.
constexpr std::size_t LISTED_ALIAS_CHARACTERS = 100;

std::string definition(const std::string& name, const std::string& value) {
    return filled(ALIAS_DEFINITION, ALIAS_HEADER, name.c_str(), value.c_str());
}

std::string definition_entry(const Aliases& aliases, std::size_t i) {
    const std::string entry = definition(aliases.ALIAS_NAME[i], aliases.ALIAS[i]);
    return entry.size() <= LISTED_ALIAS_CHARACTERS
               ? entry
               : entry.substr(0, LISTED_ALIAS_CHARACTERS) + CUT_KEY_MARK;
}

std::string reference_entry(const Aliases& aliases, std::size_t i) {
    return filled(ALIAS_REFERENCE, aliases.ALIAS_NAME[i].c_str());
}

/// A list of all aliases; entries without a name are skipped.
std::string alias_list(const Aliases& aliases,
                       std::string (*entry)(const Aliases& aliases, std::size_t i)) {
    std::vector<std::string> entries;
    for (std::size_t i = 0; i < aliases.number_of_aliases; ++i) {
        if (!aliases.ALIAS_NAME[i].empty()) entries.push_back(entry(aliases, i));
    }
    return as_list(entries);
}

/// Loads the aliases. False, after telling the operator, when there are none.
bool load_aliases(const Gatebits& gatebits, Aliases* aliases) {
    // After the last alias was removed the count may still be 1, but its name is empty.
    if (build_alias_list(gatebits, aliases) != 0 && !aliases->ALIAS_NAME[0].empty()) return true;
    advise_wait(NO_ALIASES);
    return false;
}

/// The parts of a picked definition.
struct Picked {
    std::string name;
    std::string value;
};

/// Gripes with `fault` when the pick has no name.
Picked picked_definition(const std::string& pick, const char* fault) {
    const auto header_end = pick.find(' ');
    if (header_end == std::string::npos || header_end + 1 == pick.size()) gripe(fault);
    const std::string rest = pick.substr(header_end + 1);
    const auto name_end = rest.find(' ');
    if (name_end == std::string::npos) return {rest, ""};
    return {rest.substr(0, name_end), rest.substr(name_end + 1)};
}

// Both prompts set `*last_answer` only after an answer, not when they are cancelled at once.

std::optional<std::string> prompt_for_value(const std::string& name, const std::string& def,
                                            LastAnswer* last_answer) {
    return prompt_until_ok(filled(ALIAS_VALUE_PROMPT, name.c_str(), MAX_ALIAS_VALUE), def,
                           [&](const std::string& value) {
                               *last_answer = {value};
                               return alias_value_is_ok(value);
                           })
        .value;
}

std::optional<std::string> prompt_for_name(const Aliases& others, LastAnswer* last_answer) {
    return prompt_until_ok(filled(ALIAS_NAME_PROMPT, MAX_ALIAS_NAME), "",
                           [&](const std::string& name) {
                               *last_answer = {name};
                               return alias_name_is_ok(name, others);
                           })
        .value;
}

/// The value of an alias, which a list may show cut.
std::string value_of(const std::string& name, const Gatebits& shown) {
    const std::vector<std::string> value = definition_of(name, shown);
    return value.empty() ? "" : value.front();
}

/// Changes an alias unless its definition differs from that in `shown`, and reports the effect on
/// the references.
ChangeResult change_alias(const std::string& gatebits_file, const Gatebits& shown,
                          const AliasChange& wanted, const RecordedChange& record) {
    const auto definition_in = [&](const Gatebits& gatebits) {
        return definition_of(wanted.name, gatebits);
    };
    const auto edit = [&](const Gatebits& now) { return add_change_remove_an_alias(now, wanted); };
    const Changed changed = change(gatebits_file, {shown, definition_in}, edit, record);
    if (changed.result != ChangeResult::WRITTEN) return changed.result;
    const std::string report = report_of_alias_change(changed.before, wanted);
    if (!report.empty()) advise_wait(report);
    return changed.result;
}

}  // namespace

LastAnswer A_17(const std::string& gatebits_file, Aliases& aliases) {
    const Gatebits shown = read_gatebits(gatebits_file);
    if (build_alias_list(shown, &aliases) >= MAX_ALIASES) {
        advise(filled(MAXIMUM_OF_ALIASES, MAX_ALIASES));
        return {};
    }
    LastAnswer last_answer;
    while (the_sun_rises) {
        const auto name = prompt_for_name(aliases, &last_answer);
        if (!name) return last_answer;
        const auto value = prompt_for_value(*name, "", &last_answer);
        if (!value) return last_answer;
        const std::string line = definition(*name, *value);
        const Consent consent = confirm_add({ALIAS_ADDITION, line, *value}, Addition::ALIAS);
        if (consent == Consent::DECLINED) continue;
        if (consent == Consent::CONFIRMED) {
            const auto result = change_alias(gatebits_file, shown, {AliasMode::ADD, *name, *value},
                                             {"A17", ALIAS_ADDITION, std::nullopt, line});
            if (advise_unless_written(result, gatebits_file)) add_confirmed_alias(line);
            return {value, result == ChangeResult::CHANGED_MEANWHILE};
        }
        return {value};
    }
}

LastAnswer A_18(const std::string& gatebits_file, Aliases& aliases) {
    const Gatebits shown = read_gatebits(gatebits_file);
    if (!load_aliases(shown, &aliases)) return {};
    const auto pick = pick_one(REMOVE_DEFINITION_TITLE, alias_list(aliases, definition_entry));
    if (!pick) return {UNANSWERED};
    const std::string name = picked_definition(*pick, INTERNAL_ERROR_A_18).name;
    const std::string reference = filled(ALIAS_REFERENCE, name.c_str());
    const auto remove = [&](AliasMode mode, const char* item) {
        advise_unless_written(change_alias(gatebits_file, shown, {mode, name},
                                           {"A18", item, definition(name, value_of(name, shown))}),
                              gatebits_file);
    };
    switch (ask(filled(REMOVE_REFERENCES_TOO_QUESTION, reference.c_str()))) {
        case Answer::YES:
            remove(AliasMode::REMOVE_ALL, ALIAS_WITH_REFERENCES);
            break;
        case Answer::NO:
            remove(AliasMode::REMOVE, ALIAS_ADDITION);
            break;
        default:
            break;
    }
    return {pick};
}

LastAnswer A_19(const std::string& gatebits_file, Aliases& aliases) {
    const Gatebits shown = read_gatebits(gatebits_file);
    if (!load_aliases(shown, &aliases)) return {};
    const auto pick = pick_one(REMOVE_REFERENCES_TITLE, alias_list(aliases, reference_entry));
    if (!pick) return {UNANSWERED};
    const std::string reference = pick->substr(0, pick->find(' '));
    if (reference.empty()) gripe(INTERNAL_ERROR_A_19);
    if (ask(filled(REMOVE_REFERENCES_QUESTION, reference.c_str()), Answer::YES,
            Buttons::YES_ABORT) == Answer::YES) {
        change_alias(gatebits_file, shown, {AliasMode::REMOVE_REFERENCES, reference},
                     {"A19", ALIAS_REFERENCES, reference});
    }
    return {pick};
}

LastAnswer A_20(const std::string& gatebits_file, Aliases& aliases) {
    const Gatebits shown = read_gatebits(gatebits_file);
    if (!load_aliases(shown, &aliases)) return {};
    while (the_sun_rises) {
        const auto pick = pick_one(UPDATE_DEFINITION_TITLE, alias_list(aliases, definition_entry));
        if (!pick) return {UNANSWERED};
        const Picked picked = picked_definition(*pick, INTERNAL_ERROR_A_20);
        LastAnswer last_answer = {pick};
        const auto value = prompt_for_value(picked.name, picked.value, &last_answer);
        if (!value) return last_answer;
        const Change wanted = {filled(ALIAS_FIELD_NAME, ALIAS_HEADER, picked.name.c_str()),
                               picked.value, *value};
        const Consent consent = confirm_change(wanted);
        if (consent == Consent::DECLINED) continue;
        if (consent == Consent::CONFIRMED) {
            const auto result =
                change_alias(gatebits_file, shown, {AliasMode::CHANGE, picked.name, *value},
                             {"A20", wanted.item, value_of(picked.name, shown), *value});
            if (advise_unless_written(result, gatebits_file)) change_confirmed(wanted);
            return {value, result == ChangeResult::CHANGED_MEANWHILE};
        }
        return {value};
    }
}

}  // namespace gatescope
