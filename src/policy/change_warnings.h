#pragma once

#include <string>

#include "policy/gatebits.h"

namespace gatescope {

// Warnings of side effects of a change, which follow the question for confirmation. They depend on
// the gatebits file as the operator was shown it, and are empty if there is no such effect.

/// A new value of a field in the region block.
struct NewValue {
    /// The name of the field in the question.
    std::string item;
    /// The operating system of the field, or the name of its line; and its number in the line.
    const char* os;
    int field;
    /// Empty if the field is cleared.
    std::string value;
};

/// Warns of the parent and notify fields that are cleared with a depot, and of logging that is
/// switched off with the last one; or that a depot of the other system was not verified.
std::string depot_warnings(const Gatebits& gatebits, const NewValue& depot);

/// Warns that a file of the other system was not verified.
std::string parent_warnings(const Gatebits& gatebits, const NewValue& parent);

/// Warns of the command keys that refer to the notify program, and that a program of the other
/// system was not verified.
std::string notify_warnings(const Gatebits& gatebits, const NewValue& notify);

/// Warn that the restricted or the special list matches all users.
std::string restricted_warnings(const Gatebits& gatebits, const NewValue& list);
std::string special_warnings(const Gatebits& gatebits, const NewValue& list);

/// The reminder, with every change of a command key, to check the gatebits file at `path`.
std::string key_reminder(const std::string& path);

}  // namespace gatescope
