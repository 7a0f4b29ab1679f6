#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "policy/gatebits_file.h"

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
int build_alias_list(const std::string& gatebits_file, Aliases* aliases);

/// Modes of add_change_remove_an_alias.
inline constexpr char ADD_ALIAS = 'A';
inline constexpr char CHANGE_ALIAS = 'C';
inline constexpr char REMOVE_ALIAS = 'R';
inline constexpr char REMOVE_ALIAS_REFERENCES = 'r';
/// The value with which REMOVE_ALIAS removes the references too, and the one with which it does
/// not.
inline constexpr char REFERENCES_TOO[] = "~";
inline constexpr char DEFINITION_ONLY[] = " ";

/// Rewrites the gatebits file with all alias lines at its top, changed as `mode` says, and tells
/// the operator what became of the references. The tables must be what the operator was shown: when
/// the file has since got another definition of `name`, or has no room for one more, nothing is
/// written or told.
///   ADD_ALIAS                the alias `name` with `value` comes last
///   CHANGE_ALIAS             the alias gets `value`; references are counted
///   REMOVE_ALIAS             the alias goes; references are removed or counted, as `value` says
///   REMOVE_ALIAS_REFERENCES  definitions stay, references go; `name` begins with its "~"
/// Any other mode gripes.
ChangeResult add_change_remove_an_alias(const std::string& gatebits_file, char mode,
                                        const std::string& name, const std::string& value,
                                        const Aliases& shown);
