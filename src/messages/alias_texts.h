#pragma once

namespace gatescope {

// Texts of aliases: faults of alias lines, and what a change did to the references. A reference is
// shown as "~name " with its blank, so no blank precedes the word alias.

/// Limit, line.
inline constexpr char TOO_MANY_ALIASES[] =
    "ERROR: read alias exceeds max of %d alias definitions: %s\n";
/// Limit, line.
inline constexpr char ALIAS_NAME_TOO_LONG[] = "ERROR: read alias name exceeds %d characters: %s\n";
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

/// First lines of the reports of a removed and of a changed definition; name.
inline constexpr char DEFINITION_REMOVED[] = "The alias definition for ( %s ) was removed..\n\n";
inline constexpr char DEFINITION_CHANGED[] = "The alias definition for ~%s was changed..\n\n";

/// The report on the references, by their number; no report when the tail is null.
struct ReferenceTexts {
    const char* lead;
    const char* adjective;
    const char* none;
    const char* one;
    const char* several;
};
/// Lead, "No" or number, adjective, reference, tail.
inline constexpr char REFERENCE_SENTENCE[] = "%s%s %s%s%s";

inline constexpr ReferenceTexts REFERENCES_ALSO_REMOVED = {
    "", "", "alias references were found to remove.", "alias reference was found and also removed.",
    "alias references were found and also removed."};
inline constexpr ReferenceTexts REFERENCES_STILL_EXIST = {
    "WARNING: ", "", nullptr, "alias reference still exists.", "alias references still exist."};
inline constexpr ReferenceTexts REFERENCES_REMOVED = {
    "", "", "alias references were found to remove.", "alias reference was found and removed.",
    "alias references were found and removed."};
inline constexpr ReferenceTexts REFERENCES_EFFECTED = {
    "", "current ", nullptr, "alias reference was effected.", "alias references were effected."};

}  // namespace gatescope
