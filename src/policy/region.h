#pragma once

#include <string>

#include "policy/aliases.h"
#include "policy/gatebits.h"
#include "policy/tool_variables.h"

namespace gatescope {

/// The gatebits file in use, and the region's settings in it. The owner of this object reloads it
/// when another file is in use or a setting has changed.
struct RegionSettings {
    /// Path of the gatebits file in use. Set by the choice of the file at start-up and by the
    /// actions that switch, create and copy gatebits files.
    std::string ENTERPRIZE_PERMISSION_FILE;
    /// The region's name; a single blank if the file has none.
    std::string ENTERPRIZE_NAME;
    /// The UNIX policy depot; a single blank if empty.
    std::string SYSTEM_VARS__SYSTEM_POLICY_DIR;
    /// Directory of the region's log files, without a trailing delimiter.
    std::string logging_dir;
    /// Directory of report pages, without a trailing delimiter.
    std::string results_dir;
    ToolSettings tools = {};
};

/// The region of this run.
struct RegionInUse {
    /// Set at start-up, and by actions that change a setting or use another file.
    RegionSettings settings = {};
    /// The result of read_edition at start-up.
    int GATEWARDEN_IS = 1;
    /// The aliases of the last action on aliases. Their count is kept between actions.
    Aliases aliases = {};
};

/// The settings of the gatebits file at ENTERPRIZE_PERMISSION_FILE. Gripes for any fault of the
/// region block, so that a damaged gatebits file is not used. Tool variables without a line keep
/// their values of `tools`.
RegionSettings interrogate_the_enterprise(const std::string& ENTERPRIZE_PERMISSION_FILE,
                                          const Gatebits& gatebits, const ToolSettings& tools);

}  // namespace gatescope
