#pragma once

#include <string>

namespace gatescope {

// Questions before a change of the gatebits file, and reports after it. Both cut item and values by
// cut_for_dialog unless stated otherwise.

/// A change as questions and reports show it.
struct Change {
    /// The name of what changes.
    std::string item;
    /// The old value; for an addition the first of two values, for a deletion the removed value.
    std::string from;
    /// The new value; for an addition the second of two values, for a deletion empty.
    std::string to;
};

/// The answers of the questions.
enum class Consent {
    DECLINED = 0,   ///< ask for the value again
    CONFIRMED = 1,  ///< write it
    ABORTED = 2     ///< leave; nothing is to be written
};

/// Asks whether the item may change. `warnings` follow the question. When both values are the same,
/// asks whether to go on, without warnings.
Consent confirm_change(const Change& change, const std::string& warnings = "");

/// The wording of confirm_add.
enum class Addition {
    VALUE,    ///< both values with "=" between them
    SETTING,  ///< addition or change; both values as one text
    ALIAS     ///< only the first value, the whole definition, not cut
};

/// Asks whether the values may be added. The item is not cut.
Consent confirm_add(const Change& change, Addition kind = Addition::VALUE);

/// Asks whether `change.from` may be deleted. The item is not cut.
Consent confirm_delete(const Change& change);

// Reports, shown only when the environment variable ZUL_GATESCOPE_VERBOSITY is set.

void change_confirmed(const Change& change);
void add_confirmed(const Change& change);
/// The definition is not cut.
void add_confirmed_alias(const std::string& definition);
void delete_confirmed(const Change& change);

/// The first 80 characters of a value, followed by "..." when it has 80 or more. Scripts rely on
/// the dots after exactly 80.
std::string cut_for_dialog(const std::string& value);

}  // namespace gatescope
