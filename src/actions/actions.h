#pragma once

#include <string>

#include "actions/last_answer.h"
#include "policy/aliases.h"
#include "policy/region.h"
#include "queries/options.h"

namespace gatescope {

// The configuration actions, named by their numbers in the menus. The walks, the submenu and A_X
// run other requests, so they take the arguments of all.

/// Prunes the region's logs; `display` shows the result in a dialog instead of printing it.
void A_1(const RegionSettings& region, bool display);
/// Shows the view/change submenu and runs the pick. Returns the next menu: the submenu, or the main
/// menu after a cancel.
int A_2(const Options& options, RegionInUse& region);
/// Aliases: add, delete a definition, delete references, update. `aliases` is reloaded first.
LastAnswer A_17(const std::string& gatebits_file, Aliases& aliases);
LastAnswer A_18(const std::string& gatebits_file, Aliases& aliases);
LastAnswer A_19(const std::string& gatebits_file, Aliases& aliases);
LastAnswer A_20(const std::string& gatebits_file, Aliases& aliases);
/// Command keys: view, change or delete; add.
LastAnswer A_21(const std::string& gatebits_file, int edition);
LastAnswer A_22(const std::string& gatebits_file);
/// Runs the checker on the gatebits file; it reports by itself. A failure is reported here too,
/// unless the installer runs.
void A_23(RegionSettings& region, bool during_install);
/// The tool's own settings; the region's settings are reloaded after a change.
void A_24(RegionSettings& region);
/// Switch to another gatebits file, create one, copy one. Whether another file is in use, so that
/// its settings must be loaded. A_26 offers the walks for a new file.
bool A_25(RegionSettings& region);
bool A_26(const Options& options, RegionInUse& region);
bool A_27(RegionSettings& region);
/// Guided walks through the important fields, and through all fields.
void A_28(const Options& options, RegionInUse& region);
void A_29(const Options& options, RegionInUse& region);

/// Runs the guarded action n, checks the gatebits file before and after it, and repeats it while
/// the file has errors and no fewer than before. Ends also after three runs without a change of the
/// file, unless it has more errors than at the start. Returns the last answer. Gripes when action n
/// is not guarded.
LastAnswer A_X(const Options& options, RegionInUse& region, int n);

/// Returns `during_install`; if true, tells the operator that the action of this title is not
/// available.
bool A_during_install(bool during_install, const char* title);

}  // namespace gatescope
