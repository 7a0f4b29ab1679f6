#include "actions/field_table.h"

#include "actions/bits_field.h"
#include "actions/picks.h"
#include "base/filled.h"
#include "dialog/prompts.h"
#include "messages/action_texts.h"
#include "messages/confirmation_texts.h"
#include "messages/identity.h"

namespace gatescope {
namespace {

// Typed values.

// Adapters for validators that take fewer arguments than region_notify_is_ok.

template <Validity (*is_ok)(const std::string& value, const std::string& os)>
Validity of_path(const std::string& value, const std::string& os, const Gatebits&) {
    return is_ok(value, os);
}
template <Validity (*is_ok)(const std::string& value)>
Validity of_text(const std::string& value, const std::string& /*os*/, const Gatebits&) {
    return is_ok(value);
}

Entered typed_value(const Gatebits& gatebits, const FieldEditor& editor,
                    const std::string& question, const std::string& current) {
    return prompt_until_ok(question, current, [&](const std::string& value) {
        return editor.kind->is_ok(value, editor.subject, gatebits);
    });
}

/// A cleared depot clears the fields that need it.
std::vector<FieldValue> changes_with_depot(const Gatebits& gatebits, const FieldEditor& depot,
                                           const std::string& value) {
    if (!value.empty()) return {};
    std::vector<FieldValue> changes = {{PARENT_LINE, depot.field, ""},
                                       {NOTIFY_LINE, depot.field, ""}};
    if (get_a_field(gatebits, DEPOT_LINE, other_field(depot.field)) == "") {
        changes.push_back({DEPOT_LINE, LOGGING_FIELD, LOGGING_WHEN_EMPTY});
    }
    return changes;
}

constexpr FieldKind DEPOT = {
    .question =
        [](const FieldEditor& editor, const std::string&, const std::string&) {
            return filled(DEPOT_PROMPT, editor.subject, editor.example);
        },
    .ask_for = typed_value,
    .is_ok = of_path<region_depot_is_ok>,
    .field_name =
        [](const FieldEditor& editor) { return filled(DEPOT_FIELD_NAME, editor.subject); },
    .further_changes = changes_with_depot,
    .changes_settings = true,
};

constexpr FieldKind PARENT = {
    .question =
        [](const FieldEditor& editor, const std::string&, const std::string& back_to) {
            return filled(PARENT_PROMPT, back_to.c_str(), editor.subject, editor.example);
        },
    .ask_for = typed_value,
    .is_ok = of_path<region_parent_is_ok>,
    .names_a_path = true,
    .field_name =
        [](const FieldEditor& editor) { return filled(PARENT_FIELD_NAME, editor.subject); },
    .depot_entry = PARENT_ENTRY,
    .back_to = BACK_TO_PARENT,
};

constexpr FieldKind NOTIFY = {
    .question =
        [](const FieldEditor& editor, const std::string&, const std::string& back_to) {
            return filled(NOTIFY_PROMPT, back_to.c_str(), editor.subject, editor.example);
        },
    .ask_for = typed_value,
    .is_ok = region_notify_is_ok,
    .names_a_path = true,
    .field_name =
        [](const FieldEditor& editor) { return filled(NOTIFY_FIELD_NAME, editor.subject); },
    .depot_entry = NOTIFY_ENTRY,
    .back_to = BACK_TO_NOTIFY,
};

constexpr FieldKind LIST = {
    .question =
        [](const FieldEditor& editor, const std::string&, const std::string&) {
            return filled(LIST_PROMPT, editor.subject, editor.example);
        },
    .ask_for = typed_value,
    .is_ok = of_text<region_list_is_ok>,
    .field_name = [](const FieldEditor& editor) { return filled(LIST_FIELD_NAME, editor.subject); },
};

constexpr FieldKind MOTD = {
    .question = [](const FieldEditor& editor, const std::string&,
                   const std::string&) { return filled(MOTD_PROMPT, editor.example); },
    .ask_for = typed_value,
    .is_ok = of_text<region_MOTD_is_ok>,
    .field_name = [](const FieldEditor&) { return std::string(MOTD_FIELD_NAME); },
};

constexpr FieldKind MOTD_LIST = {
    .question = [](const FieldEditor& editor, const std::string&,
                   const std::string&) { return filled(MOTD_LIST_PROMPT, editor.example); },
    .ask_for = typed_value,
    .is_ok = of_text<region_MOTDL_is_ok>,
    .field_name = [](const FieldEditor&) { return std::string(MOTD_LIST_FIELD_NAME); },
};

// Picked letters.

Entered picked_letter(const Gatebits&, const FieldEditor& editor, const std::string& title,
                      const std::string&) {
    const auto pick = pick_one(title, editor.example);
    if (!pick) return {};
    return {pick->substr(0, 1), *pick};
}

const char* or_when_empty(const std::string& value, const char* when_empty) {
    return value.empty() ? when_empty : value.c_str();
}

constexpr FieldKind LOGGING_LETTER = {
    .question =
        [](const FieldEditor&, const std::string& current, const std::string&) {
            return filled(LOGGING_TITLE, or_when_empty(current, LOGGING_WHEN_EMPTY));
        },
    .ask_for = picked_letter,
    .field_name = [](const FieldEditor&) { return std::string(LOGGING_FIELD_NAME); },
};

constexpr FieldKind PER_VOB = {
    .question =
        [](const FieldEditor&, const std::string& current, const std::string&) {
            return filled(PER_VOB_TITLE, or_when_empty(current, PER_VOB_WHEN_EMPTY));
        },
    .ask_for = picked_letter,
    .field_name = [](const FieldEditor&) { return std::string(PER_VOB_FIELD_NAME); },
};

// Picked bits.

Entered picked_bits(const Gatebits&, const FieldEditor&, const std::string& title,
                    const std::string& current) {
    const auto picks = make_selection(title, bit_entries(bit_state(current)), MULTIPLE_CHOICE);
    if (!picks) return {};
    return {state_with_only(*picks), *picks};
}

constexpr FieldKind BITS = {
    .part_shown = [](const std::string& stored) { return stored.substr(0, NUMBER_OF_BITS); },
    .question = [](const FieldEditor&, const std::string& current,
                   const std::string&) { return filled(BITS_TITLE, bit_state(current).c_str()); },
    .ask_for = picked_bits,
    .field_name = [](const FieldEditor&) { return std::string(BITS_FIELD_NAME); },
};

constexpr FieldEditor EDITORS[] = {
    {4, &DEPOT, DEPOT_LINE, WINDOWS_FIELD, WINDOWS_OS, WINDOWS_DEPOT_EXAMPLE, depot_warnings},
    {5, &DEPOT, DEPOT_LINE, UNIX_FIELD, UNIX_OS, UNIX_DEPOT_EXAMPLE, depot_warnings},
    {6, &PARENT, PARENT_LINE, WINDOWS_FIELD, WINDOWS_OS, WINDOWS_PARENT_EXAMPLE, parent_warnings},
    {7, &PARENT, PARENT_LINE, UNIX_FIELD, UNIX_OS, UNIX_PARENT_EXAMPLE, parent_warnings},
    {8, &LOGGING_LETTER, DEPOT_LINE, LOGGING_FIELD, "", LOGGING_CHOICES, nullptr},
    {9, &NOTIFY, NOTIFY_LINE, WINDOWS_FIELD, WINDOWS_OS, WINDOWS_NOTIFY_EXAMPLE, notify_warnings},
    {10, &NOTIFY, NOTIFY_LINE, UNIX_FIELD, UNIX_OS, UNIX_NOTIFY_EXAMPLE, notify_warnings},
    {11, &LIST, RESTRICTED_LINE, 2, RESTRICTED_LIST, EXAMPLE_RESTRICTION_LIST, restricted_warnings},
    {12, &LIST, SPECIAL_LINE, 2, SPECIAL_LIST, EXAMPLE_RESTRICTION_LIST, special_warnings},
    {13, &MOTD, MOTD_LINE, 2, "", MOTD_EXAMPLE, nullptr},
    {14, &MOTD_LIST, MOTD_LINE, 3, "", EXAMPLE_RESTRICTION_LIST, nullptr},
    {15, &PER_VOB, BITS_LINE, 1, "", PER_VOB_CHOICES, nullptr},
    {16, &BITS, BITS_LINE, 2, "", "", nullptr},
};

}  // namespace

std::span<const FieldEditor> field_editors() {
    return EDITORS;
}

}  // namespace gatescope
