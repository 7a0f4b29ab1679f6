#pragma once

#include <string>

// Whether what the operator entered may stand in its field. Lengths are in bytes. An `os` is the
// name of the field's column; paths of the other system are checked by their form only.

// Building blocks: 1 when the value fails the test, and then TMSG says why; else 0.

int item_value_exceeds_max_character_size_set_TMSG(const char* item, const std::string& value,
                                                   int maximum);
/// The other system's directory separator, and what ends a field or a list item, poison a path.
int value_contains_file_dir_OS_posion_set_TMSG(const std::string& value, const char* item,
                                               const char* kind, const std::string& os);
int value_has_comma_or_semi_set_TMSG(const std::string& value, const char* item);
int value_ends_in_OS_dir_char_set_TMSG(const std::string& value, const char* item,
                                       const std::string& os);

// Validators: 1 to accept; 0 to reject, and then TMSG holds the message of the first check that
// failed. Only the two of aliases reject an empty value.

int region_depot_is_ok(const std::string& value, const std::string& os);
int region_parent_is_ok(const std::string& value, const std::string& os);
/// The program is looked for in the UNIX depot that the gatebits file names now.
int region_notify_is_ok(const std::string& value, const std::string& os);
int region_list_is_ok(const std::string& value);
int region_MOTD_is_ok(const std::string& value);
int region_MOTDL_is_ok(const std::string& value);
int alias_value_is_ok(const std::string& value);
/// Needs fresh alias tables (build_alias_list).
int alias_name_is_ok(const std::string& name);
