#pragma once

#include <string>
#include <vector>

#include "scenes/region.h"

namespace gatescope {

// What scenes of the configuration actions have in common.

/// `text` with its only `from` replaced; a text that does not hold it exactly once fails the
/// scene.
std::string with_replaced(const std::string& text, const std::string& from, const std::string& to);

/// The question before a change, with the warnings that follow its values.
Dialog asked_to_change(const std::string& item, const std::string& from, const std::string& to,
                       const std::string& warnings = "");
/// Its report.
Dialog reported_change(const std::string& item, const std::string& from, const std::string& to);

/// The box of an action whose change did the file no good.
Dialog told_to_reenter();

/// Option words of the checker's calls, in order; each call has to be about the gatebits file.
std::vector<std::string> checks_of(const Region& region, const Result& result);

}  // namespace gatescope
