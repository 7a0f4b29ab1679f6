#pragma once

#include <array>
#include <string_view>

namespace gatescope {

/// The triggerable ClearCase commands. The log records number them from 1 in this order, so it must
/// not change.
inline constexpr std::array<std::string_view, 54> TRIGGERABLE_COMMANDS = {
    "chbl",          "checkin",
    "checkout",      "chevent",
    "chfolder",      "chmaster",
    "chproject",     "chtype",
    "lock",          "lnname",
    "mkattr",        "mkbranch",
    "mkcomp",        "mkelem",
    "mkfolder",      "mkhlink",
    "mklabel",       "mkproject",
    "mkslink",       "mktype",
    "mktrigger",     "modtype",
    "protect",       "reserve",
    "rmattr",        "rmbl",
    "rmbranch",      "rmcomp",
    "rmelem",        "rmfolder",
    "rmhlink",       "rmlabel",
    "rmname",        "rmproject",
    "rmtrigger",     "rmtype",
    "rmver",         "rntype",
    "uncheckout",    "unlock",
    "unreserve",     "rebase_start",
    "rebase_cancel", "rebase_complete",
    "mkactivity",    "setactivity",
    "chactivity",    "rmactivity",
    "mkstream",      "chstream",
    "rmstream",      "mkbl",
    "mkbl_complete", "setactivity_none"};

}  // namespace gatescope
