#pragma once

#include <string>

#include "policy/aliases.h"
#include "policy/gatebits.h"
#include "policy/tool_variables.h"

namespace gatescope {

/// The gatebits file in use, and the region's settings as that has them. Whoever holds them loads
/// them again when another file is in use or a setting in it has changed.
struct RegionSettings {
    /// Path of the gatebits file in use. Set by the choice of the file at start-up and by the
    /// actions that switch, create and copy gatebits files.
    std::string ENTERPRIZE_PERMISSION_FILE;
    /// The region's name; a single blank when the file has none.
    std::string ENTERPRIZE_NAME;
    /// The UNIX policy depot; a single blank when empty.
    std::string SYSTEM_VARS__SYSTEM_POLICY_DIR;
    /// Directory of the region's log files, without a delimiter at its end.
    std::string logging_dir;
    /// Directory where report pages are written, without a delimiter at its end.
    std::string results_dir;
    ToolSettings tools = {};
};

/// The region that a run works on.
struct RegionInUse {
    /// Set by start-up, and by whoever changes one of them or puts another file in use.
    RegionSettings settings = {};
    /// The edition, as read_edition found it at start-up.
    int GATEWARDEN_IS = 1;
    /// As the last action on aliases found them; their count is not forgotten in between.
    Aliases aliases = {};
};

/// Loads the settings of the gatebits file, which stands at ENTERPRIZE_PERMISSION_FILE. Every fault
/// of the region block ends the program through gripe: nothing is done with a damaged gatebits
/// file. Tool variables without a line stay as they are in `tools`.
RegionSettings interrogate_the_enterprise(const std::string& ENTERPRIZE_PERMISSION_FILE,
                                          const Gatebits& gatebits, const ToolSettings& tools);

}  // namespace gatescope
