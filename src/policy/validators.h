#pragma once

#include <string>
#include <utility>

#include "policy/aliases.h"
#include "policy/gatebits.h"

namespace gatescope {

// Checks of the values that the operator enters for fields. Lengths are in bytes. `os` is the name
// of the field's operating system; only the form of the other system's paths is checked.

/// The result of a validator: accepted, or the message of the first failed check.
class Validity {
  public:
    Validity() = default;
    Validity(std::string message) : message_(std::move(message)) {}

    [[nodiscard]] bool accepted() const { return message_.empty(); }
    /// The message of the failed check; empty if the value is accepted.
    [[nodiscard]] const std::string& message() const { return message_; }

  private:
    std::string message_;
};

// Single checks. `item` is the name of the value in the message.

/// Accepts values of at most `maximum` bytes.
Validity item_value_exceeds_max_character_size(const char* item, const std::string& value,
                                               int maximum);
/// Accepts paths without commas, semicolons and the other system's directory separator. `kind` is
/// DIRECTORY_KIND or FILE_KIND.
Validity value_contains_file_dir_OS_posion(const std::string& value, const char* item,
                                           const char* kind, const std::string& os);
/// Accepts values without commas and semicolons.
Validity value_has_comma_or_semi(const std::string& value, const char* item);
/// Accepts paths that do not end in a directory separator of their system.
Validity value_ends_in_OS_dir_char(const std::string& value, const char* item,
                                   const std::string& os);

// Validators. Only those of aliases reject an empty value.

Validity region_depot_is_ok(const std::string& value, const std::string& os);
Validity region_parent_is_ok(const std::string& value, const std::string& os);
/// The program must exist in the UNIX depot of the gatebits file.
Validity region_notify_is_ok(const std::string& value, const std::string& os,
                             const Gatebits& gatebits);
Validity region_list_is_ok(const std::string& value);
Validity region_MOTD_is_ok(const std::string& value);
Validity region_MOTDL_is_ok(const std::string& value);
Validity alias_value_is_ok(const std::string& value);
/// Accepts valid names for a new alias that none of the `others` has.
Validity alias_name_is_ok(const std::string& name, const Aliases& others);

}  // namespace gatescope
