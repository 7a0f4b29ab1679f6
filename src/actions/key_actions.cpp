#include <cstddef>
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

namespace gatescope {
namespace {

/// Keys in a list are cut to this many characters.
constexpr std::size_t LISTED_KEY_CHARACTERS = 46;

/// Reports how many keys are not in the list, because they have no line number.
void note_keys_left_out(const std::string& gatebits_file, const Gatebits& gatebits,
                        std::size_t listed) {
    const std::size_t in_file = number_of_keys(gatebits);
    if (in_file == listed) return;
    note(filled(KEYS_NOT_OFFERED, in_file - listed, in_file, gatebits_file.c_str()));
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
    /// The file from which it was read.
    Gatebits gatebits;
    std::string line;
};

/// The key with the index at the start of the pick, read again; gripes with `fault` when there is
/// none.
Key picked_key(const std::string& gatebits_file, const std::string& pick, const char* fault) {
    const auto index = number_at_front(pick);
    if (!index) gripe(fault);
    const Gatebits gatebits = read_gatebits(gatebits_file);
    const std::vector<std::string> keys = command_keys(gatebits);
    const auto place = static_cast<std::size_t>(*index);
    if (place >= keys.size()) gripe(fault);
    return {*index, gatebits, keys[place]};
}

Answer ask_what_to_do_with(const Key& key, const char* noun) {
    std::string shown = cut_for_dialog(key.line);
    double_amp_string(shown);
    return ask(filled(KEY_QUESTION, noun, key.index, shown.c_str()));
}

/// Replaces the key by `text` unless its line has changed since it was shown; `to` is the new value
/// in the history.
ChangeResult write_key(const std::string& gatebits_file, const Key& key, const std::string& text,
                       const std::optional<std::string>& to) {
    const int number = FIRST_KEY_LINE + key.index;
    const auto key_in = [&](const Gatebits& gatebits) {
        const auto line = get_a_line(gatebits, number);
        return line ? std::vector<std::string>{*line} : std::vector<std::string>();
    };
    const auto edit = [&](const Gatebits& now) { return set_a_line(now, number, text); };
    return change(gatebits_file, {key.gatebits, key_in}, edit,
                  {"A21", filled(KEY_FIELD_NAME, key.index), key.line, to})
        .result;
}

/// False, which ends the action, after a cancelled prompt, or when another process has changed the
/// key.
bool edit_key(const std::string& gatebits_file, const Key& key, LastAnswer* last_answer) {
    const auto text = prompt(filled(KEY_PROMPT, key.index), key.line);
    if (!text) return false;
    *last_answer = {text};
    const Change wanted = {filled(KEY_FIELD_NAME, key.index), key.line, *text};
    if (confirm_change(wanted, key_reminder(gatebits_file)) != Consent::CONFIRMED) return true;
    const auto result = write_key(gatebits_file, key, *text, *text);
    last_answer->changed_meanwhile = result == ChangeResult::CHANGED_MEANWHILE;
    if (!advise_unless_written(result, gatebits_file)) return false;
    change_confirmed(wanted);
    return true;
}

bool delete_key(const std::string& gatebits_file, const Key& key, LastAnswer* last_answer) {
    const Change wanted = {filled(KEY_FIELD_NAME, key.index), key.line, ""};
    if (confirm_delete(wanted) != Consent::CONFIRMED) return true;
    const auto result = write_key(gatebits_file, key, DELETION_TOKEN, std::nullopt);
    last_answer->changed_meanwhile = result == ChangeResult::CHANGED_MEANWHILE;
    if (!advise_unless_written(result, gatebits_file)) return false;
    delete_confirmed(wanted);
    return true;
}

}  // namespace

LastAnswer A_21(const std::string& gatebits_file, int edition) {
    const KeyTexts& texts = edition == 0 ? LITE_KEY_TEXTS : FULL_KEY_TEXTS;
    LastAnswer last_answer;
    while (the_sun_rises) {
        const Gatebits gatebits = read_gatebits(gatebits_file);
        const std::vector<std::string> keys = command_keys(gatebits);
        if (keys.empty()) {
            ask(texts.none, Answer::ABORT, Buttons::ABORT);
            return last_answer;
        }
        note_keys_left_out(gatebits_file, gatebits, keys.size());
        const auto pick = pick_one(texts.title, key_list(keys));
        last_answer = {pick.value_or(UNANSWERED)};
        if (!pick) return last_answer;
        const Key key = picked_key(gatebits_file, *pick, INTERNAL_ERROR_A_21);
        const Answer answer = ask_what_to_do_with(key, texts.noun);
        if (answer == Answer::NO && !delete_key(gatebits_file, key, &last_answer))
            return last_answer;
        if (answer == Answer::YES && !edit_key(gatebits_file, key, &last_answer))
            return last_answer;
    }
}

LastAnswer A_22(const std::string& gatebits_file) {
    LastAnswer last_answer;
    while (the_sun_rises) {
        const Gatebits gatebits = read_gatebits(gatebits_file);
        const std::vector<std::string> keys = command_keys(gatebits);
        std::string text = DEFAULT_KEY;
        if (!keys.empty()) {
            note_keys_left_out(gatebits_file, gatebits, keys.size());
            const auto pick = make_selection(KEY_TEMPLATE_TITLE, key_list(keys), SINGLE_CHOICE);
            last_answer = {pick.value_or(UNANSWERED)};
            if (!pick) return last_answer;
            if (!pick->empty()) text = picked_key(gatebits_file, *pick, INTERNAL_ERROR_A_22).line;
        }
        const int index = static_cast<int>(keys.size());
        const auto entered = prompt(filled(NEW_KEY_PROMPT, index), text);
        if (!entered) return last_answer;
        last_answer = {entered};
        const Change wanted = {filled(KEY_FIELD_NAME, index), NEW_KEY_WORD, *entered};
        if (confirm_add(wanted) == Consent::CONFIRMED) {
            change(gatebits_file, {gatebits, no_part},
                   [&](const Gatebits& now) { return set_a_line(now, 0, *entered); },
                   {"A22", wanted.item, std::nullopt, *entered});
            // A new key has always been reported as a change.
            change_confirmed(wanted);
        }
    }
}

}  // namespace gatescope
