#include "actions/field_editors.h"

#include <algorithm>
#include <vector>

#include "actions/actions.h"
#include "actions/depot_first.h"
#include "actions/picks.h"
#include "dialog/confirmations.h"
#include "dialog/messages.h"
#include "dialog/prompts.h"
#include "main/filled.h"
#include "main/process_end.h"
#include "main/text.h"
#include "messages/action_texts.h"
#include "messages/bit_names.h"
#include "messages/confirmation_texts.h"
#include "messages/identity.h"
#include "policy/gatebits_file.h"
#include "policy/region.h"
#include "policy/validators.h"

const bool the_sun_rises = true;

namespace {

struct Editor;

/// What editors of one kind have in common.
struct Kind {
    /// The field's value as the editor shows it and hands it to the confirmation.
    std::string (*current)(const Editor& editor);
    /// The prompt or title; `back_to` is the way back from the depot, or empty.
    std::string (*question)(const Editor& editor, const std::string& current,
                            const std::string& back_to);
    /// Gets the new value from the operator, who reads TMSG. A DialogCode.
    int (*ask_for)(const Editor& editor, const std::string& current, std::string* value);
    /// Typed values: whether the value may stand in the field.
    int (*is_ok)(const std::string& value, const std::string& os) = nullptr;
    /// The field's name in confirmations.
    std::string (*field_name)(const Editor& editor);
    /// What the field cannot do without a depot for, and the words that lead back from there;
    /// null for fields that can.
    const char* depot_entry = nullptr;
    const char* back_to = nullptr;
    /// All that changes with the value, in one write; null when it is the field alone.
    std::vector<FieldChange> (*changes)(const Editor& editor, const std::string& value) = nullptr;
    /// Whether the region's settings depend on the field.
    bool changes_settings = false;
};

struct Editor {
    int action;
    const Kind* kind;
    RegionLine line;
    int field;
    /// The field's operating system, or the list's name.
    const char* subject;
    /// The example in a prompt, or the entries of a list.
    const char* example;
};

std::string field_as_read(const Editor& editor) {
    return field_or_empty(editor.line, editor.field);
}

// Typed values.

/// The validator's message takes the prompt's place until a value passes; what is already there
/// to be edited stays the field's value.
int typed_value(const Editor& editor, const std::string& current, std::string* value) {
    do {
        if (prompt(TMSG, current) == CANCELLED) return CANCELLED;
        *value = GATEWARDEN_RESULT_STRING;
    } while (editor.kind->is_ok(*value, editor.subject) == 0);
    return ANSWERED;
}

/// A cleared depot takes with it what stands on it.
std::vector<FieldChange> changes_with_depot(const Editor& depot, const std::string& value) {
    std::vector<FieldChange> changes = {{depot.line, depot.field, value}};
    if (!value.empty()) return changes;
    changes.push_back({PARENT_LINE, depot.field, ""});
    changes.push_back({NOTIFY_LINE, depot.field, ""});
    std::string other_depot;
    const int other_field = depot.field == 1 ? 2 : 1;
    if (get_a_field(DEPOT_LINE, other_field, &other_depot) == 1 && other_depot.empty()) {
        changes.push_back({DEPOT_LINE, 3, LOGGING_WHEN_EMPTY});
    }
    return changes;
}

constexpr Kind DEPOT = {
    .current = field_as_read,
    .question =
        [](const Editor& editor, const std::string&, const std::string&) {
            return filled(DEPOT_PROMPT, editor.subject, editor.example);
        },
    .ask_for = typed_value,
    .is_ok = region_depot_is_ok,
    .field_name = [](const Editor& editor) { return filled(DEPOT_FIELD_NAME, editor.subject); },
    .changes = changes_with_depot,
    .changes_settings = true,
};

constexpr Kind PARENT = {
    .current = field_as_read,
    .question =
        [](const Editor& editor, const std::string&, const std::string& back_to) {
            return filled(PARENT_PROMPT, back_to.c_str(), editor.subject, editor.example);
        },
    .ask_for = typed_value,
    .is_ok = region_parent_is_ok,
    .field_name = [](const Editor& editor) { return filled(PARENT_FIELD_NAME, editor.subject); },
    .depot_entry = PARENT_ENTRY,
    .back_to = BACK_TO_PARENT,
};

constexpr Kind NOTIFY = {
    .current = field_as_read,
    .question =
        [](const Editor& editor, const std::string&, const std::string& back_to) {
            return filled(NOTIFY_PROMPT, back_to.c_str(), editor.subject, editor.example);
        },
    .ask_for = typed_value,
    .is_ok = region_notify_is_ok,
    .field_name = [](const Editor& editor) { return filled(NOTIFY_FIELD_NAME, editor.subject); },
    .depot_entry = NOTIFY_ENTRY,
    .back_to = BACK_TO_NOTIFY,
};

constexpr Kind LIST = {
    .current = field_as_read,
    .question =
        [](const Editor& editor, const std::string&, const std::string&) {
            return filled(LIST_PROMPT, editor.subject, editor.example);
        },
    .ask_for = typed_value,
    .is_ok = [](const std::string& value, const std::string&) { return region_list_is_ok(value); },
    .field_name = [](const Editor& editor) { return filled(LIST_FIELD_NAME, editor.subject); },
};

constexpr Kind MOTD = {
    .current = field_as_read,
    .question = [](const Editor& editor, const std::string&,
                   const std::string&) { return filled(MOTD_PROMPT, editor.example); },
    .ask_for = typed_value,
    .is_ok = [](const std::string& value, const std::string&) { return region_MOTD_is_ok(value); },
    .field_name = [](const Editor&) { return std::string(MOTD_FIELD_NAME); },
};

constexpr Kind MOTD_LIST = {
    .current = field_as_read,
    .question = [](const Editor& editor, const std::string&,
                   const std::string&) { return filled(MOTD_LIST_PROMPT, editor.example); },
    .ask_for = typed_value,
    .is_ok = [](const std::string& value, const std::string&) { return region_MOTDL_is_ok(value); },
    .field_name = [](const Editor&) { return std::string(MOTD_LIST_FIELD_NAME); },
};

// Picked letters.

int picked_letter(const Editor& editor, const std::string&, std::string* value) {
    if (pick_one(TMSG, editor.example) == CANCELLED) return CANCELLED;
    *value = GATEWARDEN_RESULT_STRING.substr(0, 1);
    return ANSWERED;
}

const char* or_when_empty(const std::string& value, const char* when_empty) {
    return value.empty() ? when_empty : value.c_str();
}

constexpr Kind LOGGING_LETTER = {
    .current = field_as_read,
    .question =
        [](const Editor&, const std::string& current, const std::string&) {
            return filled(LOGGING_TITLE, or_when_empty(current, LOGGING_WHEN_EMPTY));
        },
    .ask_for = picked_letter,
    .field_name = [](const Editor&) { return std::string(LOGGING_FIELD_NAME); },
};

constexpr Kind PER_VOB = {
    .current = field_as_read,
    .question =
        [](const Editor&, const std::string& current, const std::string&) {
            return filled(PER_VOB_TITLE, or_when_empty(current, PER_VOB_WHEN_EMPTY));
        },
    .ask_for = picked_letter,
    .field_name = [](const Editor&) { return std::string(PER_VOB_FIELD_NAME); },
};

// Picked bits.

constexpr std::size_t NUMBER_OF_BITS = GATEWARDEN_BITS_DESC.size();

std::string bits_as_read(const Editor& editor) {
    return field_as_read(editor).substr(0, NUMBER_OF_BITS);
}

/// Exactly one '0' or '1' a bit; what is neither, or missing, is '0'.
std::string bit_state(std::string bits) {
    bits.resize(NUMBER_OF_BITS, '0');
    std::replace_if(
        bits.begin(), bits.end(), [](char bit) { return bit != '1'; }, '0');
    return bits;
}

std::string bit_entries(const std::string& state) {
    std::vector<std::string> entries;
    for (std::size_t bit = 0; bit < NUMBER_OF_BITS; ++bit) {
        entries.push_back(
            filled(BIT_ENTRY, static_cast<int>(bit), state[bit], GATEWARDEN_BITS_DESC[bit]));
    }
    return as_list(entries);
}

/// The bits of the picked entries, which are separated by commas; all others are off.
std::string state_with_only(const std::string& picks) {
    std::string state(NUMBER_OF_BITS, '0');
    // A delimiter behind the last pick keeps it from being dropped.
    const std::string terminated = picks + ",";
    for (const char* pick = STRTOK(terminated.c_str(), ","); pick != nullptr;
         pick = STRTOK(nullptr, ",")) {
        const auto bit = number_at_front(pick);
        if (bit && static_cast<std::size_t>(*bit) < NUMBER_OF_BITS) {
            state[static_cast<std::size_t>(*bit)] = '1';
        }
    }
    return state;
}

int picked_bits(const Editor&, const std::string& current, std::string* value) {
    const std::string entries = bit_entries(bit_state(current));
    if (show_list(TMSG, entries, MULTIPLE_CHOICE) == CANCELLED) return CANCELLED;
    *value = state_with_only(GATEWARDEN_RESULT_STRING);
    return ANSWERED;
}

constexpr Kind BITS = {
    .current = bits_as_read,
    .question = [](const Editor&, const std::string& current,
                   const std::string&) { return filled(BITS_TITLE, bit_state(current).c_str()); },
    .ask_for = picked_bits,
    .field_name = [](const Editor&) { return std::string(BITS_FIELD_NAME); },
};

constexpr Editor EDITORS[] = {
    {4, &DEPOT, DEPOT_LINE, 1, WINDOWS_OS, WINDOWS_DEPOT_EXAMPLE},
    {5, &DEPOT, DEPOT_LINE, 2, UNIX_OS, UNIX_DEPOT_EXAMPLE},
    {6, &PARENT, PARENT_LINE, 1, WINDOWS_OS, WINDOWS_PARENT_EXAMPLE},
    {7, &PARENT, PARENT_LINE, 2, UNIX_OS, UNIX_PARENT_EXAMPLE},
    {8, &LOGGING_LETTER, DEPOT_LINE, 3, "", LOGGING_CHOICES},
    {9, &NOTIFY, NOTIFY_LINE, 1, WINDOWS_OS, WINDOWS_NOTIFY_EXAMPLE},
    {10, &NOTIFY, NOTIFY_LINE, 2, UNIX_OS, UNIX_NOTIFY_EXAMPLE},
    {11, &LIST, RESTRICTED_LINE, 2, RESTRICTED_LIST, EXAMPLE_RESTRICTION_LIST},
    {12, &LIST, SPECIAL_LINE, 2, SPECIAL_LIST, EXAMPLE_RESTRICTION_LIST},
    {13, &MOTD, MOTD_LINE, 2, "", MOTD_EXAMPLE},
    {14, &MOTD_LIST, MOTD_LINE, 3, "", EXAMPLE_RESTRICTION_LIST},
    {15, &PER_VOB, BITS_LINE, 1, "", PER_VOB_CHOICES},
    {16, &BITS, BITS_LINE, 2, "", ""},
};

void write_and_report(const Editor& editor, const std::string& value) {
    if (editor.kind->changes != nullptr) {
        set_fields(editor.kind->changes(editor, value));
    } else {
        set_a_field(editor.line, editor.field, value);
    }
    change_confirmed();
    if (editor.kind->changes_settings) interrogate_the_enterprise();
}

/// The loop of all editors: read, ask, confirm, write, report.
int edit(const Editor& editor) {
    const Kind& kind = *editor.kind;
    std::string back_to;
    if (kind.depot_entry != nullptr) {
        const int depot = make_depot_first_if_needed(kind.depot_entry, editor.subject);
        if (depot == NO_DEPOT) return LEFT;
        if (depot == DEPOT_NOW_DEFINED) back_to = kind.back_to;
    }
    while (the_sun_rises) {
        const std::string current = kind.current(editor);
        GATEWARDEN_RESULT_STRING.clear();
        TMSG = kind.question(editor, current, back_to);
        back_to.clear();
        std::string value;
        if (kind.ask_for(editor, current, &value) == CANCELLED) return LEFT;
        const int consent = confirm_change(kind.field_name(editor), current, value);
        if (consent == CHANGE_ABORTED) return LEFT;
        if (consent == DECLINED) continue;
        write_and_report(editor, value);
        return WRITTEN;
    }
    return NEVER_ENTERED;
}

}  // namespace

int edit_field(int n) {
    for (const Editor& editor : EDITORS) {
        if (editor.action == n) return edit(editor);
    }
    gripe_uncoded("edit_field");
}

int view_change_depot(const std::string& os) {
    return edit_field(os == WINDOWS_OS ? 4 : 5);
}

int A_4() {
    return view_change_depot(WINDOWS_OS);
}
int A_5() {
    return view_change_depot(UNIX_OS);
}
void A_6() {
    edit_field(6);
}
void A_7() {
    edit_field(7);
}
void A_8() {
    edit_field(8);
}
void A_9() {
    edit_field(9);
}
void A_10() {
    edit_field(10);
}
void A_11() {
    edit_field(11);
}
void A_12() {
    edit_field(12);
}
void A_13() {
    edit_field(13);
}
void A_14() {
    edit_field(14);
}
void A_15() {
    edit_field(15);
}
void A_16() {
    edit_field(16);
}
