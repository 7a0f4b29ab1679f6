#pragma once

#include <string>

#include "policy/gatebits.h"

namespace gatescope {

// What else a change of the gatebits file does, in the words that follow the question for consent.
// They are made from the file as the operator was shown it, and are empty where there is nothing to
// warn of.

/// A new value of a field in the region block.
struct NewValue {
    /// The field's name in the question.
    std::string item;
    /// The field's operating system, or what else the field is of; and its place in its line.
    const char* os;
    int field;
    /// Empty: the field is cleared.
    std::string value;
};

/// The parent and notify fields that go with a cleared depot, and logging that goes with the last
/// one; or that the other system's depot cannot be looked at from here.
std::string depot_warnings(const Gatebits& gatebits, const NewValue& depot);

/// That the other system's file cannot be looked at from here.
std::string parent_warnings(const Gatebits& gatebits, const NewValue& parent);

/// The command keys that refer to the notify program, and that the other system's program cannot be
/// looked at from here.
std::string notify_warnings(const Gatebits& gatebits, const NewValue& notify);

/// That the restricted, or the special, list matches everybody.
std::string restricted_warnings(const Gatebits& gatebits, const NewValue& list);
std::string special_warnings(const Gatebits& gatebits, const NewValue& list);

/// The reminder to have the gatebits file at `path` checked that goes with every change of a
/// command key.
std::string key_reminder(const std::string& path);

}  // namespace gatescope
