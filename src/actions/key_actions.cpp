#include <algorithm>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "actions/actions.h"
#include "actions/field_editors.h"
#include "actions/outcome.h"
#include "actions/picks.h"
#include "base/filled.h"
#include "base/standard_streams.h"
#include "base/text.h"
#include "dialog/confirmations.h"
#include "dialog/messages.h"
#include "dialog/prompts.h"
#include "messages/action_texts.h"
#include "policy/change_warnings.h"
#include "policy/gatebits_file.h"

namespace {

/// A key in a list shows this many of its characters.
constexpr std::size_t LISTED_KEY_CHARACTERS = 46;

/// The command keys of the gatebits file; a key's place is its index, counted from 0.
std::vector<std::string> command_keys(const std::string& gatebits_file) {
    std::vector<std::string> keys;
    std::string line;
    while (get_a_line(gatebits_file, FIRST_KEY_LINE + static_cast<int>(keys.size()), &line)) {
        keys.push_back(line);
    }
    return keys;
}

/// Says how many keys of the file a list of these leaves out: those that no line number reaches.
void note_keys_left_out(const std::string& gatebits_file, const std::vector<std::string>& keys) {
    const std::vector<std::string> lines = read_gatebits_lines(gatebits_file);
    const auto in_file = std::count_if(lines.begin(), lines.end(), is_significant) -
                         static_cast<std::ptrdiff_t>(FIRST_KEY_LINE - 1);
    const auto left_out = in_file - static_cast<std::ptrdiff_t>(keys.size());
    if (left_out > 0) note(filled(KEYS_NOT_OFFERED, left_out, in_file, gatebits_file.c_str()));
}

std::string key_list(const std::vector<std::string>& keys) {
    std::vector<std::string> entries;
    entries.reserve(keys.size());
    for (const std::string& key : keys) {
        entries.push_back(filled(KEY_ENTRY, static_cast<int>(entries.size()),
                                 key.substr(0, LISTED_KEY_CHARACTERS).c_str()));
    }
    return as_list(entries);
}

struct Key {
    int index;
    std::string line;
};

/// The key that the pick begins with the index of, as it is now; gripes with `fault` when there is
/// none.
Key picked_key(const std::string& gatebits_file, const std::string& pick, const char* fault) {
    const int last_index = std::numeric_limits<int>::max() - FIRST_KEY_LINE;
    const auto index = number_at_front(pick);
    Key key = {index.value_or(0), ""};
    if (!index || *index > last_index ||
        !get_a_line(gatebits_file, FIRST_KEY_LINE + *index, &key.line)) {
        gripe(fault);
    }
    return key;
}

Answer ask_what_to_do_with(const Key& key, const char* noun) {
    std::string shown = cut_for_dialog(key.line);
    double_amp_string(shown);
    return ask(filled(KEY_QUESTION, noun, key.index, shown.c_str()), "yes", "yes,no,abort");
}

/// Whether the action goes on with its list: it does not after a cancelled prompt, nor when
/// somebody else has changed the key.
bool edit_key(const std::string& gatebits_file, const Key& key, LastAnswer* last_answer) {
    const auto text = prompt(filled(KEY_PROMPT, key.index), key.line);
    if (!text) return false;
    *last_answer = text;
    const Change change = {filled(KEY_FIELD_NAME, key.index), key.line, *text};
    if (confirm_change(change, key_reminder(gatebits_file)) != CONFIRMED) return true;
    const auto result = set_a_line(gatebits_file, FIRST_KEY_LINE + key.index, *text, key.line);
    *last_answer = {text, result};
    if (!written_or_told(result, gatebits_file)) return false;
    change_confirmed(change);
    return true;
}

bool delete_key(const std::string& gatebits_file, const Key& key, LastAnswer* last_answer) {
    const Change change = {filled(KEY_FIELD_NAME, key.index), key.line, ""};
    if (confirm_delete(change) != CONFIRMED) return true;
    const auto result =
        set_a_line(gatebits_file, FIRST_KEY_LINE + key.index, DELETION_TOKEN, key.line);
    *last_answer = {*last_answer, result};
    if (!written_or_told(result, gatebits_file)) return false;
    delete_confirmed(change);
    return true;
}

}  // namespace

LastAnswer A_21(const std::string& gatebits_file, int edition) {
    const KeyTexts& texts = edition == 0 ? LITE_KEY_TEXTS : FULL_KEY_TEXTS;
    LastAnswer last_answer;
    while (the_sun_rises) {
        const std::vector<std::string> keys = command_keys(gatebits_file);
        if (keys.empty()) {
            ask(texts.none, "abort", "abort");
            return last_answer;
        }
        note_keys_left_out(gatebits_file, keys);
        const auto pick = pick_one(texts.title, key_list(keys));
        last_answer = pick.value_or(UNANSWERED);
        if (!pick) return last_answer;
        const Key key = picked_key(gatebits_file, *pick, INTERNAL_ERROR_A_21);
        const Answer answer = ask_what_to_do_with(key, texts.noun);
        if (answer == NO && !delete_key(gatebits_file, key, &last_answer)) return last_answer;
        if (answer == YES && !edit_key(gatebits_file, key, &last_answer)) return last_answer;
    }
}

LastAnswer A_22(const std::string& gatebits_file) {
    LastAnswer last_answer;
    while (the_sun_rises) {
        const std::vector<std::string> keys = command_keys(gatebits_file);
        std::string text = DEFAULT_KEY;
        if (!keys.empty()) {
            note_keys_left_out(gatebits_file, keys);
            const auto pick = make_selection(KEY_TEMPLATE_TITLE, key_list(keys), SINGLE_CHOICE);
            last_answer = pick.value_or(UNANSWERED);
            if (!pick) return last_answer;
            if (!pick->empty()) text = picked_key(gatebits_file, *pick, INTERNAL_ERROR_A_22).line;
        }
        const int index = static_cast<int>(keys.size());
        const auto entered = prompt(filled(NEW_KEY_PROMPT, index), text);
        if (!entered) return last_answer;
        last_answer = entered;
        const Change change = {filled(KEY_FIELD_NAME, index), NEW_KEY_WORD, *entered};
        if (confirm_add(change) == CONFIRMED) {
            set_a_line(gatebits_file, 0, *entered);
            // A new key has always been reported as a change.
            change_confirmed(change);
        }
    }
}
