#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "policy/gatebits.h"

namespace gatescope {

// Aliases: named pieces of text, each defined by one line of the gatebits file. Lists and command
// keys refer to them by "~" and the name.

/// Maximum number of aliases, and of bytes of a name and a value.
inline constexpr int MAX_ALIASES = 80;
inline constexpr int MAX_ALIAS_NAME = 50;
inline constexpr int MAX_ALIAS_VALUE = 256;
inline constexpr char VALID_ALIAS_NAME_CHAR[] =
    "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_0123456789";

/// The aliases of a gatebits file.
struct Aliases {
    /// Names and values, in the order of the file.
    std::array<std::string, MAX_ALIASES> ALIAS_NAME;
    std::array<std::string, MAX_ALIASES> ALIAS;
    /// Entries in use. A file without aliases does not reset the count of the file before it, so
    /// readers of the tables skip entries with an empty name.
    std::uint8_t number_of_aliases = 0;
};

/// Fills the tables from the gatebits file and returns number_of_aliases. The first faulty alias
/// line is reported to the operator and ends the reading; the aliases before it are kept.
int build_alias_list(const Gatebits& gatebits, Aliases* aliases);

/// What add_change_remove_an_alias does.
enum class AliasMode {
    ADD,                ///< appends an alias
    CHANGE,             ///< changes the value; references are counted
    REMOVE,             ///< removes the definition; references are counted
    REMOVE_ALL,         ///< removes the definition and the references
    REMOVE_REFERENCES,  ///< removes the references only
};

/// A change of an alias.
struct AliasChange {
    AliasMode mode;
    /// For REMOVE_REFERENCES the reference: "~" and the name.
    std::string name;
    /// For ADD and CHANGE only.
    std::string value = {};
};

/// The value of the alias in the gatebits file, which a change depends on; empty if it is not
/// defined before the first faulty alias line.
std::vector<std::string> definition_of(const std::string& name, const Gatebits& gatebits);

/// The gatebits file with the change made and all alias lines at its top. The result is
/// CHANGED_MEANWHILE if an alias more would exceed MAX_ALIASES.
Rewrite add_change_remove_an_alias(const Gatebits& gatebits, const AliasChange& change);

/// The message to the operator after a change of the gatebits file `before`; may be empty.
std::string report_of_alias_change(const Gatebits& before, const AliasChange& change);

}  // namespace gatescope
