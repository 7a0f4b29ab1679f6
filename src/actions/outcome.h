#pragma once

#include <string>

#include "policy/gatebits.h"

namespace gatescope {

// What the operator is told of a confirmed change of the gatebits file that was not made.

/// Whether the change was written. Tells the operator when what they were shown has been changed by
/// somebody else.
bool written_or_told(ChangeResult result, const std::string& gatebits_file);

/// The same for a field of the region block, called `item` in the question; tells also where the
/// field should be when it is not there.
bool field_written_or_told(ChangeResult result, const std::string& gatebits_file,
                           const std::string& item, int line, int field);

}  // namespace gatescope
