#pragma once

namespace gatescope {

// Texts of the questions before a change and of the reports after it. The dialog turns a backslash
// and an n, as two characters, into a line break.

/// Follows a value that was cut.
inline constexpr char CUT_MARK[] = "...";
/// Follows a cut command key in a list of keys.
inline constexpr char CUT_KEY_MARK[] = " ...";

inline constexpr char SAME_VALUE[] =
    "Current value and requested value are the same.  Perform Change anyway?";
/// Item, old value, new value.
inline constexpr char CONFIRM_CHANGE_OF[] =
    "Confirm change of: %s\n\nchange from:  %s\n                 to:  %s";
inline constexpr char CHANGED[] =
    "Successfully changed %s\n\nchange from:  %s\n                 to:  %s";
/// Alias line.
inline constexpr char CONFIRM_ADDITION_OF_ALIAS[] = "Confirm addition of: Alias\n\n    %s";
inline constexpr char ADDED_ALIAS[] = "Successfully added Alias\n\n    %s";
/// "/change" or "", item, first value, "" or "=", second value.
inline constexpr char CONFIRM_ADDITION_OF[] = "Confirm addition%s of: %s\n\n    %s%s%s";
/// Item, first value, second value.
inline constexpr char ADDED[] = "Successfully added %s\n\n    %s=%s";
/// Item, value.
inline constexpr char CONFIRM_DELETION_OF[] = "Confirm deletion of: %s\n\n    %s";
inline constexpr char DELETED[] = "Successfully deleted %s\n\n    %s";

/// Names of items.
inline constexpr char RESTRICTED_LIST[] = "Region Restricted Access List";
inline constexpr char SPECIAL_LIST[] = "Region Special Access List";
inline constexpr char GATESCOPE_VARIABLE[] = "Gatescope Variable";
inline constexpr char ALIAS_ADDITION[] = "Alias";

/// Names of items in the history only. Source of the copy.
inline constexpr char ALIAS_WITH_REFERENCES[] = "Alias with References";
inline constexpr char ALIAS_REFERENCES[] = "Alias References";
inline constexpr char NEW_FILE[] = "Gatebits File";
inline constexpr char COPY_OF_FILE[] = "Copy of %s";
/// Number of an action, as the menus show it.
inline constexpr char ACTION_NUMBER[] = "A%02d";

/// Depot, OS, value that will be cleared.
inline constexpr char CLEARS_PARENT[] =
    "\n\nWarning:  Clearing the (%s) will also clear the (%s Parent Gatebits File) currently set "
    "to "
    "'%s'...";
inline constexpr char CLEARS_NOTIFY[] =
    "\n\nWarning:  Clearing the (%s) will also clear the (%s Region Notify Program) currently set "
    "to '%s'...";
/// Logging letter; empty when the field is.
inline constexpr char CLEARS_LOGGING[] =
    "\n\nWarning:  This would result in both UNIX and Windows depots being cleared and so 'Region "
    "Logging' would also get set from '%s' to 'O'ff...";
/// The other OS, this OS.
inline constexpr char DEPOT_NOT_VERIFIED[] =
    "\n\nWarning:  Actual directory verification of the '%s Policy Depot' not performed from the "
    "%s "
    "OS...";
inline constexpr char PARENT_NOT_VERIFIED[] =
    "\n\nWarning:  Actual file verification of the '%s Parent Gatebits file' not performed from "
    "the "
    "%s OS...";
inline constexpr char NOTIFY_NOT_VERIFIED[] =
    "\n\nWarning:  Actual file verification of the '%s Notify Program' not performed from the %s "
    "OS...";

/// Singular and plural words of the two warnings below.
struct KeyWords {
    const char* are;
    const char* plural;
    const char* that_refer;
    const char* those_keys;
};
inline constexpr KeyWords ONE_KEY = {"is", "", "key that currently refers", "that key"};
inline constexpr KeyWords SEVERAL_KEYS = {"are", "s", "keys that currently refer", "those keys"};
/// KeyWords' are, number of keys, plural, those_keys.
inline constexpr char KEYS_WILL_REFER[] =
    "\n\nWarning:  There %s currently %d policy key%s that will refer to the 'Region Notify "
    "Program' that you are adding.  References from %s to this program will be active...\\n";
/// KeyWords' are, number of keys, that_refer, those_keys.
inline constexpr char KEYS_REFERENCES_IGNORED[] =
    "\n\nWarning:  There %s %d policy %s to the 'Region Notify Program' that you are removing.  "
    "References from %s to this program will be ignored...\\n";
/// Key number, key line.
inline constexpr char LISTED_KEY[] = "\n     (%03d) %s";
inline constexpr char KEYS_LEFT_OUT[] = "\n      :";

inline constexpr char WILDCARD_PATTERNS[] = "(*), <*>, [*], {*}, %*%, '*', @*@";
/// WILDCARD_PATTERNS.
inline constexpr char EXTREMELY_RESTRICTIVE[] =
    "\n\nWarning:  The definition is EXTREMELY RESTRICTIVE as it contains one or more\\n"
    "                 of the wildcard patterns %s ...";
inline constexpr char EXTREMELY_PERMISSIVE[] =
    "\n\nWarning:  The definition is EXTREMELY PERMISSIVE as it contains one or more\\n"
    "                 of the wildcard patterns %s ...";
/// Gatebits file.
inline constexpr char VERIFY_REMINDER[] = "\n\nReminder:  Use gatewarden %s -check to verify...";

}  // namespace gatescope
