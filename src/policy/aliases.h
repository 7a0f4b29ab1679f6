#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "policy/gatebits.h"

namespace gatescope {

// Aliases: named pieces of text, each defined by one line of the gatebits file and referred to
// from lists and command keys by "~" and its name.

/// How many there may be, and how many bytes a name and a value may have.
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
    /// Entries in use. A file without any alias leaves the count of the file before it, with empty
    /// names, so a reader of the tables passes over entries with an empty name.
    std::uint8_t number_of_aliases = 0;
};

/// Fills the tables anew from the gatebits file and returns number_of_aliases. The first alias line
/// with a fault is shown to the operator and ends the reading; what was read before it stays.
int build_alias_list(const Gatebits& gatebits, Aliases* aliases);

/// What add_change_remove_an_alias does.
enum class AliasMode {
    ADD,                ///< the alias comes last
    CHANGE,             ///< it gets the value; references are counted
    REMOVE,             ///< the definition goes; references are counted
    REMOVE_ALL,         ///< the definition goes, and the references too
    REMOVE_REFERENCES,  ///< definitions stay, references go
};

/// A change of an alias.
struct AliasChange {
    AliasMode mode;
    /// Of REMOVE_REFERENCES the reference: "~" and the name.
    std::string name;
    /// Of ADD and CHANGE only.
    std::string value = {};
};

/// The definition of the alias in the gatebits file, on which a change of it rests: its value, or
/// nothing when it is not defined before the first alias line with a fault.
std::vector<std::string> definition_of(const std::string& name, const Gatebits& gatebits);

/// The gatebits file with all alias lines at its top, changed. The result is CHANGED_MEANWHILE when
/// there is no room for one more alias.
Rewrite add_change_remove_an_alias(const Gatebits& gatebits, const AliasChange& change);

/// What the operator is told of a change that was made to the gatebits file as it stood `before`;
/// empty when nothing.
std::string report_of_alias_change(const Gatebits& before, const AliasChange& change);

}  // namespace gatescope
