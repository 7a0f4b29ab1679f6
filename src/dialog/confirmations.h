#pragma once

#include <string>

namespace gatescope {

// Consent before a change of the gatebits file, and the report after it. Both show item and values
// cut to 80 characters, unless it is said otherwise.

/// What the operator is asked about, and told about when it is done.
struct Change {
    /// What changes, in the operator's words.
    std::string item;
    /// The old value; of an addition the first of the two values shown; of a deletion what goes.
    std::string from;
    /// The new value; of an addition the second of the two values shown; of a deletion nothing.
    std::string to;
};

/// What the questions return.
enum Consent {
    DECLINED = 0,       ///< ask for the value again
    CONFIRMED = 1,      ///< write it
    CHANGE_ABORTED = 2  ///< leave; nothing is to be written
};

/// Asks whether the item may change. `warnings` follow the question, unless the values are the
/// same: then it is that which is asked about, and there is nothing to warn of.
Consent confirm_change(const Change& change, const std::string& warnings = "");

/// How confirm_add words its question.
enum class Addition {
    VALUE,    ///< both values with "=" between them
    SETTING,  ///< an addition or change; both values as one text
    ALIAS     ///< the first value alone, a whole definition, not cut
};

/// Asks whether what the change holds may be added. The item is shown whole.
Consent confirm_add(const Change& change, Addition kind = Addition::VALUE);

/// Asks whether `change.from` may be deleted. The item is shown whole.
Consent confirm_delete(const Change& change);

// Reports. They show nothing unless the environment variable ZUL_GATESCOPE_VERBOSITY is set.

void change_confirmed(const Change& change);
void add_confirmed(const Change& change);
/// The definition is shown whole.
void add_confirmed_alias(const std::string& definition);
void delete_confirmed(const Change& change);

/// A value as dialogs show it: its first 80 characters, and "..." when it has 80 or more. One of
/// exactly 80 gets the dots too, although nothing is missing; scripts know it so.
std::string cut_for_dialog(const std::string& value);

}  // namespace gatescope
