#pragma once

#include <string>
#include <vector>

#include "scenes/region.h"

namespace gatescope {

// Shared by the scenes of the configuration actions.

/// `text` with its only `from` replaced. Fails the scene unless `from` occurs exactly once.
std::string with_replaced(const std::string& text, const std::string& from, const std::string& to);

/// The question before a change; `warnings` follow the two values.
Dialog asked_to_change(const std::string& item, const std::string& from, const std::string& to,
                       const std::string& warnings = "");
/// The report after it.
Dialog reported_change(const std::string& item, const std::string& from, const std::string& to);

/// The box after a change that left the file with errors.
Dialog told_to_reenter();

/// Option words of the checker's calls, in order. Each call must name the gatebits file.
std::vector<std::string> checks_of(const Region& region, const Result& result);

}  // namespace gatescope
