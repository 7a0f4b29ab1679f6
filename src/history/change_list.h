#pragma once

#include <string>

#include "history/changes.h"

namespace gatescope {

/// The changes as a table, one a line: number, time, operator, action, item, old and new value.
/// Items and values are cut so that a line has at most `width` characters, as far as 16 characters
/// for both values allow. Control characters and bytes that are not UTF-8 are shown as '?'.
std::string list_of(const ChangeRecords& changes, std::size_t width);

}  // namespace gatescope
