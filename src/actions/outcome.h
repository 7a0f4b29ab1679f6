#pragma once

#include <string>

#include "policy/gatebits.h"

namespace gatescope {

// Messages about confirmed changes of the gatebits file that were not made.

/// Whether the change was written. Advises the operator when another process had changed what they
/// were shown.
bool advise_unless_written(ChangeResult result, const std::string& gatebits_file);

/// The same for a field of the region block, named `item` in the question; advises also when the
/// field does not exist.
bool advise_unless_field_written(ChangeResult result, const std::string& gatebits_file,
                                 const std::string& item, int line, int field);

}  // namespace gatescope
