#pragma once

#include <span>
#include <string>
#include <vector>

#include "actions/picks.h"
#include "policy/change_warnings.h"
#include "policy/gatebits.h"
#include "policy/validators.h"

namespace gatescope {

// The thirteen fields that can be edited, as data: what the one editor loop needs to know of each.

struct FieldEditor;

/// What the editors of one kind have in common.
struct FieldKind {
    /// What the editor shows, and hands to the confirmation, of what stands in the field; null when
    /// it is all of it.
    std::string (*part_shown)(const std::string& stored) = nullptr;
    /// The prompt or title; `back_to` is the way back from the depot, or empty.
    std::string (*question)(const FieldEditor& editor, const std::string& current,
                            const std::string& back_to);
    /// Gets the new value from the operator.
    Entered (*ask_for)(const Gatebits& gatebits, const FieldEditor& editor,
                       const std::string& question, const std::string& current);
    /// Typed values: whether the value may stand in the field of that file.
    Validity (*is_ok)(const std::string& value, const std::string& os,
                      const Gatebits& gatebits) = nullptr;
    /// Whether the value is the path of a file outside the gatebits file.
    bool names_a_path = false;
    /// The field's name in confirmations.
    std::string (*field_name)(const FieldEditor& editor);
    /// What a field that needs a depot is called when the depot is asked for first, and the words
    /// that lead back from there; null for fields that need none.
    const char* depot_entry = nullptr;
    const char* back_to = nullptr;
    /// Fields that change with the value, in the same write; null when there are none.
    std::vector<FieldValue> (*further_changes)(const Gatebits& gatebits, const FieldEditor& editor,
                                               const std::string& value) = nullptr;
    /// Whether the region's settings depend on the field.
    bool changes_settings = false;
};

struct FieldEditor {
    /// The action's number.
    int action;
    const FieldKind* kind;
    RegionLine line;
    int field;
    /// The field's operating system, or the list's name.
    const char* subject;
    /// The example in a prompt, or the entries of a list.
    const char* example;
    /// What the field's confirmation warns of; null where there is nothing.
    std::string (*warnings)(const Gatebits& gatebits, const NewValue& value);
};

/// In the order of the actions.
std::span<const FieldEditor> field_editors();

}  // namespace gatescope
