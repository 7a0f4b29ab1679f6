#pragma once

#include <string>
#include <utility>

#include "policy/aliases.h"
#include "policy/gatebits.h"

namespace gatescope {

// Whether what the operator entered may stand in its field. Lengths are in bytes. An `os` is the
// name of the field's column; paths of the other system are checked by their form only.

/// What a validator says: the value is accepted, or the message of the first check that it failed.
class Validity {
  public:
    Validity() = default;
    Validity(std::string message) : message_(std::move(message)) {}

    [[nodiscard]] bool accepted() const { return message_.empty(); }
    /// Why not; empty when it is accepted.
    [[nodiscard]] const std::string& message() const { return message_; }

  private:
    std::string message_;
};

// Building blocks. `item` is what the message calls the value.

/// Whether the value has no more than `maximum` bytes.
Validity item_value_exceeds_max_character_size(const char* item, const std::string& value,
                                               int maximum);
/// Whether a path is free of the other system's directory separator and of what ends a field or a
/// list item. `kind` is DIRECTORY_KIND or FILE_KIND.
Validity value_contains_file_dir_OS_posion(const std::string& value, const char* item,
                                           const char* kind, const std::string& os);
/// Whether a value is free of what ends a field or a list item.
Validity value_has_comma_or_semi(const std::string& value, const char* item);
/// Whether a path ends in anything but a directory separator of its system.
Validity value_ends_in_OS_dir_char(const std::string& value, const char* item,
                                   const std::string& os);

// Validators. Only the two of aliases reject an empty value.

Validity region_depot_is_ok(const std::string& value, const std::string& os);
Validity region_parent_is_ok(const std::string& value, const std::string& os);
/// The program is looked for in the UNIX depot that the gatebits file names.
Validity region_notify_is_ok(const std::string& value, const std::string& os,
                             const Gatebits& gatebits);
Validity region_list_is_ok(const std::string& value);
Validity region_MOTD_is_ok(const std::string& value);
Validity region_MOTDL_is_ok(const std::string& value);
Validity alias_value_is_ok(const std::string& value);
/// Whether the name may be that of a new alias beside the `others`.
Validity alias_name_is_ok(const std::string& name, const Aliases& others);

}  // namespace gatescope
