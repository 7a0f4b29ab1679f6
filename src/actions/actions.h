#pragma once

#include <string>

#include "actions/last_answer.h"
#include "policy/aliases.h"
#include "policy/region.h"
#include "queries/options.h"

namespace gatescope {

// The configuration actions, named after their menu entries. The walks, the submenu and the guard
// run other requests, so they are handed all that one of those may need.

/// Prunes the region's logs; `display` says whether the result is shown or printed.
void A_1(const RegionSettings& region, bool display);
/// Shows the view/change submenu and runs what is picked there. The menu that comes next: the
/// submenu again, or the main menu once the operator has left it.
int A_2(const Options& options, RegionInUse& region);
/// Aliases: add, delete a definition, delete references, update. The tables are filled anew first.
LastAnswer A_17(const std::string& gatebits_file, Aliases& aliases);
LastAnswer A_18(const std::string& gatebits_file, Aliases& aliases);
LastAnswer A_19(const std::string& gatebits_file, Aliases& aliases);
LastAnswer A_20(const std::string& gatebits_file, Aliases& aliases);
/// Command keys: view, change or delete; add.
LastAnswer A_21(const std::string& gatebits_file, int edition);
LastAnswer A_22(const std::string& gatebits_file);
/// Runs the checker over the gatebits file and lets it report; a failure is told unless the
/// installer runs.
void A_23(RegionSettings& region, bool during_install);
/// The tool's own settings; the region's are loaded again after a change.
void A_24(RegionSettings& region);
/// Switch to another gatebits file, create one, copy one: whether another file is in use, whose
/// settings are to be loaded. One that was created may be filled by a walk.
bool A_25(RegionSettings& region);
bool A_26(const Options& options, RegionInUse& region);
bool A_27(RegionSettings& region);
/// Guided walks through the important, and through all, fields.
void A_28(const Options& options, RegionInUse& region);
void A_29(const Options& options, RegionInUse& region);

/// Runs action n (one that can damage the gatebits file) between two checks of the file, and
/// again while the file got no better; an operator who leaves it three times in a row without a
/// change is let go unless the file has more errors than at the start. What was answered last.
/// Gripes for any other number.
LastAnswer A_X(const Options& options, RegionInUse& region, int n);

/// Whether the installer started the program; the operator has then been told that the action of
/// this title is not available.
bool A_during_install(bool during_install, const char* title);

}  // namespace gatescope
