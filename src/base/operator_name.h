#pragma once

#include <optional>
#include <string>

namespace gatescope {

/// The operator's name from the environment, else from the password database, in lower case;
/// nothing when neither has one.
std::optional<std::string> calculated_user();

/// calculated_user without its domain ("DOMAIN\op") or path ("a/b/op").
std::optional<std::string> operator_name();

}  // namespace gatescope
