#pragma once

#include <string>

#include "history/changes.h"

namespace gatescope {

/// The changes as a list for people, one a line: number, time, operator, action, item, old and new
/// value. Long ones are cut so that a line is no wider than `width` characters. What a terminal
/// would obey stands there as '?'.
std::string list_of(const PastChanges& changes, std::size_t width);

}  // namespace gatescope
