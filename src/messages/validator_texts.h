#pragma once

namespace gatescope {

// Messages about rejected values. All begin with "RETRY:"; the dialog turns a backslash and an n,
// as two characters, into a line break. Doubled and misspelled words stay.

/// Item, limit in bytes.
inline constexpr char VALUE_TOO_LONG[] = "RETRY: %s value exceeds %d character max";
/// Item, kind ("directory" or "file"), value.
inline constexpr char WINDOWS_PATH_POISONED[] =
    "RETRY: %s may not contain commas (,) semi-colons (;) or slash (/) characters\\nInvalid %s "
    "'%s' disallowed";
inline constexpr char UNIX_PATH_POISONED[] =
    "RETRY: %s may not contain commas (,) semi-colons (;) or slash (\\) characters\\nInvalid %s "
    "'%s' disallowed";
/// Item.
inline constexpr char VALUE_HAS_COMMA_OR_SEMI[] =
    "RETRY: %s value may not contain commas (,) or semi-colons (;)";
/// Item, the character, item, value.
inline constexpr char PATH_ENDS_IN_SEPARATOR[] =
    "RETRY: %s may not end in the (%c) character\\nInvalid %s '%s' disallowed";

/// Value.
inline constexpr char DEPOT_DOES_NOT_EXIST[] =
    "RETRY: the input directory (%s) does not exist and is disallowed";
inline constexpr char DEPOT_IS_A_FILE[] =
    "RETRY: the input directory (%s) is actually a FILE and is disallowed";
inline constexpr char PARENT_DOES_NOT_EXIST[] =
    "RETRY: the input parent gatebits file (%s) does not exist and is disallowed";
inline constexpr char PARENT_IS_A_DIRECTORY[] =
    "RETRY: the input parent gatebits file (%s) is actually a DIRECTORY and is disallowed";
inline constexpr char NOTIFY_DOES_NOT_EXIST[] =
    "RETRY: the input notify program (%s) does not exist in the depot and is disallowed";
inline constexpr char NOTIFY_IS_A_DIRECTORY[] =
    "RETRY: the input notify program (%s) in the depot, but is actually a DIRECTORY and is "
    "disallowed";

inline constexpr char MOTD_HAS_SEMI[] = "RETRY: MOTD values may not contain semi-colons (;)";
inline constexpr char MOTD_LIST_HAS_SEMI[] =
    "RETRY: MOTD Restriction List values may not contain semi-colons (;)";

inline constexpr char ALIAS_VALUE_EMPTY[] = "RETRY: alias value is empty";
inline constexpr char ALIAS_NAME_EMPTY[] = "RETRY: alias name is empty";
inline constexpr char ALIAS_NAME_CHARACTERS[] =
    "RETRY: alias names must only contain [a..z,A..Z,0..9,_]";
/// Name.
inline constexpr char ALIAS_NAME_EXISTS[] =
    "RETRY: alias name %s already exist.  You should edit that one or input another alias name";

/// Names of the items, in the order of the validators. "depot alue" stays misspelled.
inline constexpr char DEPOT_SIZE_ITEM[] = "depot alue";
inline constexpr char DEPOT_ITEM[] = "depot";
inline constexpr char PARENT_SIZE_ITEM[] = "parent gatebits file value";
inline constexpr char PARENT_ITEM[] = "parent gatebits file";
inline constexpr char PARENT_END_ITEM[] = "parent gatebits_file";
inline constexpr char NOTIFY_SIZE_ITEM[] = "notify program value";
inline constexpr char NOTIFY_ITEM[] = "notify program";
inline constexpr char LIST_SIZE_ITEM[] = "list value";
inline constexpr char LIST_ITEM[] = "list";
inline constexpr char MOTD_SIZE_ITEM[] = "MOTD value";
inline constexpr char MOTD_LIST_SIZE_ITEM[] = "MOTD Restriction List value";
inline constexpr char ALIAS_VALUE_ITEM[] = "alias value";
inline constexpr char ALIAS_ITEM[] = "alias";
inline constexpr char ALIAS_NAME_ITEM[] = "alias name";
inline constexpr char DIRECTORY_KIND[] = "directory";
inline constexpr char FILE_KIND[] = "file";

}  // namespace gatescope
