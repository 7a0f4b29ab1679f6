#include <vector>

#include "actions/actions.h"
#include "actions/field_editors.h"
#include "actions/picks.h"
#include "base/filled.h"
#include "base/process_end.h"
#include "base/text.h"
#include "dialog/confirmations.h"
#include "dialog/messages.h"
#include "dialog/prompts.h"
#include "messages/action_texts.h"
#include "policy/edition.h"
#include "policy/gatebits_file.h"

namespace {

/// A key in a list shows this many of its characters.
constexpr std::size_t LISTED_CHARACTERS = 46;

/// The command keys of the gatebits file; a key's place is its index, counted from 0.
std::vector<std::string> command_keys() {
    std::vector<std::string> keys;
    std::string line;
    while (get_a_line(FIRST_KEY_LINE + static_cast<int>(keys.size()), &line) == 1) {
        keys.push_back(line);
    }
    return keys;
}

std::string key_list(const std::vector<std::string>& keys) {
    std::vector<std::string> entries;
    entries.reserve(keys.size());
    for (const std::string& key : keys) {
        entries.push_back(filled(KEY_ENTRY, static_cast<int>(entries.size()),
                                 key.substr(0, LISTED_CHARACTERS).c_str()));
    }
    return as_list(entries);
}

/// The index that the pick begins with; gripes with `fault` when there is no such key.
int picked_index(const std::vector<std::string>& keys, const char* fault) {
    const auto index = number_at_front(GATEWARDEN_RESULT_STRING);
    if (!index || static_cast<std::size_t>(*index) >= keys.size()) gripe(fault);
    return *index;
}

int ask_what_to_do_with(int index, const std::string& key, const char* noun) {
    std::string shown = cut_for_dialog(key);
    double_amp_string(shown);
    TMSG = filled(KEY_QUESTION, noun, index, shown.c_str());
    return ask(TMSG, "yes", "yes,no,abort");
}

/// A DialogCode: a cancelled prompt leaves the action.
int edit_key(int index, const std::string& key) {
    TMSG = filled(KEY_PROMPT, index);
    if (prompt(TMSG, key) == CANCELLED) return CANCELLED;
    const std::string text = GATEWARDEN_RESULT_STRING;
    if (confirm_change(filled(KEY_FIELD_NAME, index), key, text) == CONFIRMED) {
        set_a_line(FIRST_KEY_LINE + index, text);
        change_confirmed();
    }
    return ANSWERED;
}

void delete_key(int index, const std::string& key) {
    if (confirm_delete(filled(KEY_FIELD_NAME, index), key) != CONFIRMED) return;
    set_a_line(FIRST_KEY_LINE + index, DELETION_TOKEN);
    delete_confirmed();
}

/// The picked key, or the default where none was picked; gripes when the pick is no key.
std::string key_template(const std::vector<std::string>& keys) {
    if (GATEWARDEN_RESULT_STRING.empty()) return DEFAULT_KEY;
    return keys[static_cast<std::size_t>(picked_index(keys, INTERNAL_ERROR_A_22))];
}

}  // namespace

void A_21() {
    const KeyTexts& texts = GATEWARDEN_IS == 0 ? LITE_KEY_TEXTS : FULL_KEY_TEXTS;
    while (the_sun_rises) {
        const std::vector<std::string> keys = command_keys();
        if (keys.empty()) {
            ask(texts.none, "abort", "abort");
            return;
        }
        if (pick_one(texts.title, key_list(keys)) == CANCELLED) return;
        const int index = picked_index(keys, INTERNAL_ERROR_A_21);
        const std::string& key = keys[static_cast<std::size_t>(index)];
        const int answer = ask_what_to_do_with(index, key, texts.noun);
        if (answer == YES && edit_key(index, key) == CANCELLED) return;
        if (answer == NO) delete_key(index, key);
    }
}

void A_22() {
    while (the_sun_rises) {
        const std::vector<std::string> keys = command_keys();
        std::string text = DEFAULT_KEY;
        if (!keys.empty()) {
            if (show_list(KEY_TEMPLATE_TITLE, key_list(keys), SINGLE_CHOICE) == CANCELLED) return;
            text = key_template(keys);
        }
        const int index = static_cast<int>(keys.size());
        TMSG = filled(NEW_KEY_PROMPT, index);
        if (prompt(TMSG, text) == CANCELLED) return;
        text = GATEWARDEN_RESULT_STRING;
        if (confirm_add(filled(KEY_FIELD_NAME, index), NEW_KEY_WORD, text) == CONFIRMED) {
            set_a_line(0, text);
            // A new key has always been reported as a change.
            change_confirmed();
        }
    }
}
