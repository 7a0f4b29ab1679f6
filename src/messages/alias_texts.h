#pragma once

// Texts around aliases: faults of alias lines, and what a change did to the references. A
// reference is shown as "~name " with its blank, so no blank stands before the word alias.

/// ALIAS_LOCATER, name, value.
inline constexpr char ALIAS_LINE[] = "%s%s %s";

/// Limit, line.
inline constexpr char TOO_MANY_ALIASES[] =
    "ERROR: read alias exceeds max of %d alias definitions: %s\n";
/// Limit, line.
inline constexpr char ALIAS_NAME_TOO_LONG[] =
    "ERROR: read alias name exceeds %d characters: %s\n";
/// Line.
inline constexpr char ALIAS_NAME_INVALID[] =
    "ERROR: read invalid alias name (%s).  Alias names must be made up of [a..z,A..Z,_,0..9] only.";
/// Line.
inline constexpr char ALIAS_NAME_DUPLICATE[] =
    "ERROR: read alias name (%s) is a duplicate of another alias name.  Alias names must be "
    "unique.\n";
/// Limit, line.
inline constexpr char ALIAS_VALUE_TOO_LONG[] =
    "ERROR: read alias value exceeds %d characters: %s\n";

/// Opening of the report of a removed definition; name.
inline constexpr char DEFINITION_REMOVED[] =
    "The alias definition for ( %s ) was removed..\n\n";
/// Opening, reference.
inline constexpr char NONE_FOUND_TO_REMOVE_TOO[] =
    "%sNo %salias references were found to remove.";
inline constexpr char ONE_ALSO_REMOVED[] = "%s1 %salias reference was found and also removed.";
/// Opening, count, reference.
inline constexpr char SEVERAL_ALSO_REMOVED[] =
    "%s%d %salias references were found and also removed.";
/// Opening, reference.
inline constexpr char ONE_STILL_EXISTS[] = "%sWARNING: 1 %salias reference still exists.";
/// Opening, count, reference.
inline constexpr char SEVERAL_STILL_EXIST[] = "%sWARNING: %d %salias references still exist.";

/// Reference.
inline constexpr char NONE_FOUND_TO_REMOVE[] = "No %salias references were found to remove.";
inline constexpr char ONE_REMOVED[] = "1 %salias reference was found and removed.";
/// Count, reference.
inline constexpr char SEVERAL_REMOVED[] = "%d %salias references were found and removed.";

/// Opening of the report of a changed definition; name.
inline constexpr char DEFINITION_CHANGED[] = "The alias definition for ~%s was changed..\n\n";
/// Opening, reference.
inline constexpr char ONE_EFFECTED[] = "%s1 current %salias reference was effected.";
/// Opening, count, reference.
inline constexpr char SEVERAL_EFFECTED[] = "%s%d current %salias references were effected.";
