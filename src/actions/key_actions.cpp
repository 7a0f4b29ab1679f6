#include <optional>
#include <string>
#include <vector>

#include "actions/actions.h"
#include "actions/field_editors.h"
#include "actions/picks.h"
#include "base/filled.h"
#include "base/text.h"
#include "dialog/confirmations.h"
#include "dialog/messages.h"
#include "dialog/prompts.h"
#include "messages/action_texts.h"
#include "policy/change_warnings.h"
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
int picked_index(const std::string& pick, const std::vector<std::string>& keys, const char* fault) {
    const auto index = number_at_front(pick);
    if (!index || static_cast<std::size_t>(*index) >= keys.size()) gripe(fault);
    return *index;
}

Answer ask_what_to_do_with(int index, const std::string& key, const char* noun) {
    std::string shown = cut_for_dialog(key);
    double_amp_string(shown);
    return ask(filled(KEY_QUESTION, noun, index, shown.c_str()), "yes", "yes,no,abort");
}

/// What was entered; nothing when the prompt was cancelled, which leaves the action.
std::optional<std::string> edit_key(int index, const std::string& key) {
    const auto text = prompt(filled(KEY_PROMPT, index), key);
    if (!text) return std::nullopt;
    const Change change = {filled(KEY_FIELD_NAME, index), key, *text};
    if (confirm_change(change, key_reminder()) == CONFIRMED) {
        set_a_line(FIRST_KEY_LINE + index, *text);
        change_confirmed(change);
    }
    return text;
}

void delete_key(int index, const std::string& key) {
    const Change change = {filled(KEY_FIELD_NAME, index), key, ""};
    if (confirm_delete(change) != CONFIRMED) return;
    set_a_line(FIRST_KEY_LINE + index, DELETION_TOKEN);
    delete_confirmed(change);
}

/// The picked key, or the default where none was picked; gripes when the pick is no key.
std::string key_template(const std::string& pick, const std::vector<std::string>& keys) {
    if (pick.empty()) return DEFAULT_KEY;
    return keys[static_cast<std::size_t>(picked_index(pick, keys, INTERNAL_ERROR_A_22))];
}

}  // namespace

LastAnswer A_21() {
    const KeyTexts& texts = GATEWARDEN_IS == 0 ? LITE_KEY_TEXTS : FULL_KEY_TEXTS;
    LastAnswer last_answer;
    while (the_sun_rises) {
        const std::vector<std::string> keys = command_keys();
        if (keys.empty()) {
            ask(texts.none, "abort", "abort");
            return last_answer;
        }
        const auto pick = pick_one(texts.title, key_list(keys));
        last_answer = pick.value_or(UNANSWERED);
        if (!pick) return last_answer;
        const int index = picked_index(*pick, keys, INTERNAL_ERROR_A_21);
        const std::string& key = keys[static_cast<std::size_t>(index)];
        const Answer answer = ask_what_to_do_with(index, key, texts.noun);
        if (answer == NO) delete_key(index, key);
        if (answer != YES) continue;
        const auto text = edit_key(index, key);
        if (!text) return last_answer;
        last_answer = text;
    }
}

LastAnswer A_22() {
    LastAnswer last_answer;
    while (the_sun_rises) {
        const std::vector<std::string> keys = command_keys();
        std::string text = DEFAULT_KEY;
        if (!keys.empty()) {
            const auto pick = make_selection(KEY_TEMPLATE_TITLE, key_list(keys), SINGLE_CHOICE);
            last_answer = pick.value_or(UNANSWERED);
            if (!pick) return last_answer;
            text = key_template(*pick, keys);
        }
        const int index = static_cast<int>(keys.size());
        const auto entered = prompt(filled(NEW_KEY_PROMPT, index), text);
        if (!entered) return last_answer;
        last_answer = entered;
        const Change change = {filled(KEY_FIELD_NAME, index), NEW_KEY_WORD, *entered};
        if (confirm_add(change) == CONFIRMED) {
            set_a_line(0, *entered);
            // A new key has always been reported as a change.
            change_confirmed(change);
        }
    }
}
