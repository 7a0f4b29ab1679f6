#pragma once

#include <span>
#include <string>
#include <vector>

#include "policy/gatebits_file.h"

// The thirteen fields that can be edited, as data: what the one editor loop needs to know of each.

struct FieldEditor;

/// What the editors of one kind have in common.
struct FieldKind {
    /// The field's value as the editor shows it and hands it to the confirmation.
    std::string (*current)(const FieldEditor& editor);
    /// The prompt or title; `back_to` is the way back from the depot, or empty.
    std::string (*question)(const FieldEditor& editor, const std::string& current,
                            const std::string& back_to);
    /// Gets the new value from the operator, who reads TMSG. A DialogCode.
    int (*ask_for)(const FieldEditor& editor, const std::string& current, std::string* value);
    /// Typed values: whether the value may stand in the field.
    int (*is_ok)(const std::string& value, const std::string& os) = nullptr;
    /// The field's name in confirmations.
    std::string (*field_name)(const FieldEditor& editor);
    /// What the field cannot do without a depot for, and the words that lead back from there;
    /// null for fields that can.
    const char* depot_entry = nullptr;
    const char* back_to = nullptr;
    /// All that changes with the value, in one write; null when it is the field alone.
    std::vector<FieldChange> (*changes)(const FieldEditor& editor,
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
};

/// In the order of the actions.
std::span<const FieldEditor> field_editors();
