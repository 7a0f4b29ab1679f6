#pragma once

#include <optional>
#include <string>

namespace gatescope {

/// The operator's name as the environment, or else the password database, has it, lower-cased;
/// nothing when there is none.
std::optional<std::string> calculated_user();

/// The name that the program goes by: what comes after a domain ("DOMAIN\op") or a path ("a/b/op")
/// in what calculated_user has found; nothing when that is nothing.
std::optional<std::string> operator_name();

}  // namespace gatescope
