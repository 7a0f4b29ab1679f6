#pragma once

#include <optional>
#include <string>

#include "queries/options.h"

namespace gatescope {

// The parameters of the queries. A value is a command, a user, the decimal number of a bit or key,
// or "*" for all of them.

enum class Parameter { COMMAND, USER, BIT, KEY };

/// The value of the command line, else the operator's answer, asked for again while it is empty or
/// invalid, in the wording of the edition; nothing if the operator cancels.
std::optional<std::string> value_of(Parameter parameter, const Options& options, int edition);

/// The filter that log records of this value contain; empty for "*", which every record passes.
std::string filter_for(Parameter parameter, const std::string& value);

}  // namespace gatescope
