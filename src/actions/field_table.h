#pragma once

#include <span>
#include <string>
#include <vector>

#include "actions/picks.h"
#include "policy/change_warnings.h"
#include "policy/gatebits.h"
#include "policy/validators.h"

namespace gatescope {

// The table of the thirteen fields that can be edited.

struct FieldEditor;

/// A kind of editor.
struct FieldKind {
    /// The part of the field's value that the editor and the confirmation show; null for all of it.
    std::string (*part_shown)(const std::string& stored) = nullptr;
    /// The prompt or title; it begins with `back_to` after the depot was defined.
    std::string (*question)(const FieldEditor& editor, const std::string& current,
                            const std::string& back_to);
    /// Gets the new value from the operator.
    Entered (*ask_for)(const Gatebits& gatebits, const FieldEditor& editor,
                       const std::string& question, const std::string& current);
    /// The validator of typed values; null for picked ones.
    Validity (*is_ok)(const std::string& value, const std::string& os,
                      const Gatebits& gatebits) = nullptr;
    /// Whether the value is the path of a file outside the gatebits file.
    bool names_a_path = false;
    /// The field's name in confirmations.
    std::string (*field_name)(const FieldEditor& editor);
    /// The field's name in the question for a missing depot, and the text that leads back from
    /// there; null for fields that need no depot.
    const char* depot_entry = nullptr;
    const char* back_to = nullptr;
    /// Other fields that change with the value, in the same write; null for none.
    std::vector<FieldValue> (*further_changes)(const Gatebits& gatebits, const FieldEditor& editor,
                                               const std::string& value) = nullptr;
    /// Whether the region's settings depend on the field.
    bool changes_settings = false;
};

struct FieldEditor {
    /// The action's number.
    int action;
    const FieldKind* kind;
    int line;
    int field;
    /// The field's operating system, or the list's name.
    const char* subject;
    /// The example in a prompt, or the entries of a list.
    const char* example;
    /// The warnings of the confirmation; null for none.
    std::string (*warnings)(const Gatebits& gatebits, const NewValue& value);
};

/// In the order of the actions.
std::span<const FieldEditor> field_editors();

}  // namespace gatescope
