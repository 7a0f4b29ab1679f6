#pragma once

#include <optional>
#include <string>

#include "queries/options.h"

namespace gatescope {

// The parameters of the queries. A value is a text: a command, a user, the decimal number of a
// bit or key, or "*" for all of them.

enum class Parameter { COMMAND, USER, BIT, KEY };

/// The value that the command line gave, else the operator's answer, asked for again while it is
/// empty or unfit, in the wording of the edition; nothing when the operator cancels.
std::optional<std::string> value_of(Parameter parameter, const Options& options, int edition);

/// What log records of that value hold; empty for "*", which leaves every record in.
std::string filter_for(Parameter parameter, const std::string& value);

}  // namespace gatescope
