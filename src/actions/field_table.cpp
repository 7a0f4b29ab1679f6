#include "actions/field_table.h"

#include "actions/bits_field.h"
#include "actions/picks.h"
#include "base/filled.h"
#include "base/process_end.h"
#include "dialog/prompts.h"
#include "messages/action_texts.h"
#include "messages/confirmation_texts.h"
#include "messages/identity.h"
#include "policy/validators.h"

namespace {

std::string field_as_read(const FieldEditor& editor) {
    return field_or_empty(editor.line, editor.field);
}

// Typed values.

/// The validator's message takes the prompt's place until a value passes; what is already there
/// to be edited stays the field's value.
int typed_value(const FieldEditor& editor, const std::string& current, std::string* value) {
    do {
        if (prompt(TMSG, current) == CANCELLED) return CANCELLED;
        *value = GATEWARDEN_RESULT_STRING;
    } while (editor.kind->is_ok(*value, editor.subject) == 0);
    return ANSWERED;
}

/// A cleared depot takes with it what stands on it.
std::vector<FieldChange> changes_with_depot(const FieldEditor& depot, const std::string& value) {
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

constexpr FieldKind DEPOT = {
    .current = field_as_read,
    .question =
        [](const FieldEditor& editor, const std::string&, const std::string&) {
            return filled(DEPOT_PROMPT, editor.subject, editor.example);
        },
    .ask_for = typed_value,
    .is_ok = region_depot_is_ok,
    .field_name =
        [](const FieldEditor& editor) { return filled(DEPOT_FIELD_NAME, editor.subject); },
    .changes = changes_with_depot,
    .changes_settings = true,
};

constexpr FieldKind PARENT = {
    .current = field_as_read,
    .question =
        [](const FieldEditor& editor, const std::string&, const std::string& back_to) {
            return filled(PARENT_PROMPT, back_to.c_str(), editor.subject, editor.example);
        },
    .ask_for = typed_value,
    .is_ok = region_parent_is_ok,
    .field_name =
        [](const FieldEditor& editor) { return filled(PARENT_FIELD_NAME, editor.subject); },
    .depot_entry = PARENT_ENTRY,
    .back_to = BACK_TO_PARENT,
};

constexpr FieldKind NOTIFY = {
    .current = field_as_read,
    .question =
        [](const FieldEditor& editor, const std::string&, const std::string& back_to) {
            return filled(NOTIFY_PROMPT, back_to.c_str(), editor.subject, editor.example);
        },
    .ask_for = typed_value,
    .is_ok = region_notify_is_ok,
    .field_name =
        [](const FieldEditor& editor) { return filled(NOTIFY_FIELD_NAME, editor.subject); },
    .depot_entry = NOTIFY_ENTRY,
    .back_to = BACK_TO_NOTIFY,
};

constexpr FieldKind LIST = {
    .current = field_as_read,
    .question =
        [](const FieldEditor& editor, const std::string&, const std::string&) {
            return filled(LIST_PROMPT, editor.subject, editor.example);
        },
    .ask_for = typed_value,
    .is_ok = [](const std::string& value, const std::string&) { return region_list_is_ok(value); },
    .field_name = [](const FieldEditor& editor) { return filled(LIST_FIELD_NAME, editor.subject); },
};

constexpr FieldKind MOTD = {
    .current = field_as_read,
    .question = [](const FieldEditor& editor, const std::string&,
                   const std::string&) { return filled(MOTD_PROMPT, editor.example); },
    .ask_for = typed_value,
    .is_ok = [](const std::string& value, const std::string&) { return region_MOTD_is_ok(value); },
    .field_name = [](const FieldEditor&) { return std::string(MOTD_FIELD_NAME); },
};

constexpr FieldKind MOTD_LIST = {
    .current = field_as_read,
    .question = [](const FieldEditor& editor, const std::string&,
                   const std::string&) { return filled(MOTD_LIST_PROMPT, editor.example); },
    .ask_for = typed_value,
    .is_ok = [](const std::string& value, const std::string&) { return region_MOTDL_is_ok(value); },
    .field_name = [](const FieldEditor&) { return std::string(MOTD_LIST_FIELD_NAME); },
};

// Picked letters.

int picked_letter(const FieldEditor& editor, const std::string&, std::string* value) {
    if (pick_one(TMSG, editor.example) == CANCELLED) return CANCELLED;
    *value = GATEWARDEN_RESULT_STRING.substr(0, 1);
    return ANSWERED;
}

const char* or_when_empty(const std::string& value, const char* when_empty) {
    return value.empty() ? when_empty : value.c_str();
}

constexpr FieldKind LOGGING_LETTER = {
    .current = field_as_read,
    .question =
        [](const FieldEditor&, const std::string& current, const std::string&) {
            return filled(LOGGING_TITLE, or_when_empty(current, LOGGING_WHEN_EMPTY));
        },
    .ask_for = picked_letter,
    .field_name = [](const FieldEditor&) { return std::string(LOGGING_FIELD_NAME); },
};

constexpr FieldKind PER_VOB = {
    .current = field_as_read,
    .question =
        [](const FieldEditor&, const std::string& current, const std::string&) {
            return filled(PER_VOB_TITLE, or_when_empty(current, PER_VOB_WHEN_EMPTY));
        },
    .ask_for = picked_letter,
    .field_name = [](const FieldEditor&) { return std::string(PER_VOB_FIELD_NAME); },
};

// Picked bits.

std::string bits_as_read(const FieldEditor& editor) {
    return field_as_read(editor).substr(0, NUMBER_OF_BITS);
}

int picked_bits(const FieldEditor&, const std::string& current, std::string* value) {
    const std::string entries = bit_entries(bit_state(current));
    if (show_list(TMSG, entries, MULTIPLE_CHOICE) == CANCELLED) return CANCELLED;
    *value = state_with_only(GATEWARDEN_RESULT_STRING);
    return ANSWERED;
}

constexpr FieldKind BITS = {
    .current = bits_as_read,
    .question = [](const FieldEditor&, const std::string& current,
                   const std::string&) { return filled(BITS_TITLE, bit_state(current).c_str()); },
    .ask_for = picked_bits,
    .field_name = [](const FieldEditor&) { return std::string(BITS_FIELD_NAME); },
};

constexpr FieldEditor EDITORS[] = {
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

}  // namespace

std::span<const FieldEditor> field_editors() {
    return EDITORS;
}
