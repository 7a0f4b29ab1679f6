#include <vector>

#include "actions/actions.h"
#include "actions/picks.h"
#include "base/filled.h"
#include "base/process_end.h"
#include "dialog/confirmations.h"
#include "dialog/messages.h"
#include "dialog/prompts.h"
#include "messages/action_texts.h"
#include "messages/confirmation_texts.h"
#include "messages/policy_texts.h"
#include "policy/aliases.h"
#include "policy/validators.h"

namespace {

/// A definition in a list shows this many characters; what is cut there is also cut from the
/// value that is offered for an update.
constexpr std::size_t LISTED_CHARACTERS = 100;

std::string definition(const std::string& name, const std::string& value) {
    return filled(ALIAS_DEFINITION, ALIAS_HEADER, name.c_str(), value.c_str());
}

std::string definition_entry(std::size_t i) {
    const std::string entry = definition(ALIAS_NAME[i], ALIAS[i]);
    return entry.size() <= LISTED_CHARACTERS ? entry
                                             : entry.substr(0, LISTED_CHARACTERS) + CUT_KEY_MARK;
}

std::string reference_entry(std::size_t i) {
    return filled(ALIAS_REFERENCE, ALIAS_NAME[i].c_str());
}

/// A list with one entry an alias; the tables may hold entries without a name.
std::string alias_list(std::string (*entry)(std::size_t i)) {
    std::vector<std::string> entries;
    for (std::size_t i = 0; i < number_of_aliases; ++i) {
        if (!ALIAS_NAME[i].empty()) entries.push_back(entry(i));
    }
    return as_list(entries);
}

/// Loads the tables; tells the operator when there is nothing in them.
bool there_are_aliases() {
    if (build_alias_list() != 0) return true;
    advise_wait(NO_ALIASES);
    return false;
}

/// A picked definition, taken apart again.
struct Picked {
    std::string name;
    std::string value;
};

/// Gripes with `fault` when the pick has no name in it.
Picked picked_definition(const std::string& pick, const char* fault) {
    const auto header_end = pick.find(' ');
    if (header_end == std::string::npos || header_end + 1 == pick.size()) gripe(fault);
    const std::string rest = pick.substr(header_end + 1);
    const auto name_end = rest.find(' ');
    if (name_end == std::string::npos) return {rest, ""};
    return {rest.substr(0, name_end), rest.substr(name_end + 1)};
}

/// Prompts until the answer is acceptable; a rejected one's message takes the place of
/// `question`. A DialogCode.
int prompt_until_ok(const std::string& question, const std::string& def,
                    int (*is_ok)(const std::string& value), std::string* answer) {
    TMSG = question;
    do {
        GATEWARDEN_RESULT_STRING.clear();
        if (prompt(TMSG, def) == CANCELLED) return CANCELLED;
        *answer = GATEWARDEN_RESULT_STRING;
    } while (is_ok(*answer) == 0);
    return ANSWERED;
}

int prompt_for_value(const std::string& name, const std::string& def, std::string* value) {
    return prompt_until_ok(filled(ALIAS_VALUE_PROMPT, name.c_str(), MAX_ALIAS_VALUE), def,
                           alias_value_is_ok, value);
}

int prompt_for_name(std::string* name) {
    return prompt_until_ok(filled(ALIAS_NAME_PROMPT, MAX_ALIAS_NAME), "", alias_name_is_ok, name);
}

}  // namespace

void A_17() {
    if (build_alias_list() >= MAX_ALIASES) return advise(filled(MAXIMUM_OF_ALIASES, MAX_ALIASES));
    std::string name;
    std::string value;
    int consent = DECLINED;
    while (consent == DECLINED) {
        if (prompt_for_name(&name) == CANCELLED) return;
        if (prompt_for_value(name, "", &value) == CANCELLED) return;
        consent = confirm_add(ALIAS_ADDITION, definition(name, value), value);
    }
    if (consent != CONFIRMED) return;
    add_change_remove_an_alias(ADD_ALIAS, name, value);
    add_confirmed_alias(definition(name, value));
}

void A_18() {
    if (!there_are_aliases()) return;
    if (pick_one(REMOVE_DEFINITION_TITLE, alias_list(definition_entry)) == CANCELLED) return;
    const std::string name = picked_definition(GATEWARDEN_RESULT_STRING, INTERNAL_ERROR_A_18).name;
    TMSG = filled(REMOVE_REFERENCES_TOO_QUESTION, filled(ALIAS_REFERENCE, name.c_str()).c_str());
    switch (ask(TMSG, "yes", "yes,no,abort")) {
        case YES:
            add_change_remove_an_alias(REMOVE_ALIAS, name, REFERENCES_TOO);
            break;
        case NO:
            add_change_remove_an_alias(REMOVE_ALIAS, name, DEFINITION_ONLY);
            break;
        default:
            break;
    }
}

void A_19() {
    if (!there_are_aliases()) return;
    if (pick_one(REMOVE_REFERENCES_TITLE, alias_list(reference_entry)) == CANCELLED) return;
    const std::string reference =
        GATEWARDEN_RESULT_STRING.substr(0, GATEWARDEN_RESULT_STRING.find(' '));
    if (reference.empty()) gripe(INTERNAL_ERROR_A_19);
    TMSG = filled(REMOVE_REFERENCES_QUESTION, reference.c_str());
    if (ask(TMSG, "yes", "yes,abort") != YES) return;
    add_change_remove_an_alias(REMOVE_ALIAS_REFERENCES, reference, DEFINITION_ONLY);
}

void A_20() {
    if (!there_are_aliases()) return;
    int consent = DECLINED;
    Picked picked;
    std::string value;
    while (consent == DECLINED) {
        if (pick_one(UPDATE_DEFINITION_TITLE, alias_list(definition_entry)) == CANCELLED) return;
        picked = picked_definition(GATEWARDEN_RESULT_STRING, INTERNAL_ERROR_A_20);
        if (prompt_for_value(picked.name, picked.value, &value) == CANCELLED) return;
        consent = confirm_change(filled(ALIAS_FIELD_NAME, ALIAS_HEADER, picked.name.c_str()),
                                 picked.value, value);
    }
    if (consent != CONFIRMED) return;
    add_change_remove_an_alias(CHANGE_ALIAS, picked.name, value);
    change_confirmed();
}
