#pragma once

#include <optional>
#include <span>
#include <string>

#include "actions/last_answer.h"
#include "policy/region.h"
#include "queries/options.h"

namespace gatescope {

// The table of all queries and actions. The menus, the command line, the dispatch, the manual and
// the completion read it.

enum class RequestKind { QUERY, ACTION };

/// Whether and how a menu shows a request.
enum class Shown { NO, YES, AFTER_SEPARATOR, TO_INSTALLER_ONLY };

/// The result of a request.
struct Finished {
    LastAnswer last_answer = {};
    /// The next menu; nothing for the same menu again.
    std::optional<int> next_menu = {};
};

struct Request {
    RequestKind kind;
    /// The number of Q= or A=.
    int number;
    /// The entry in the menus, by which a pick is recognised.
    const char* label;
    /// The label of the lite edition; null where it is the same.
    const char* lite_label;
    /// Called by execute or, for guarded requests, by A_X.
    Finished (*handler)(const Options& options, RegionInUse& region, const Request& request);
    /// Whether the gatebits file is checked before and after.
    bool guarded;
    /// Whether it is available when the installer started the program.
    bool during_install;
    /// Each menu has its entries in the order of the table.
    Shown in_main_menu;
    Shown in_submenu;

    /// Runs the request unless it is refused to the installer.
    Finished execute(const Options& options, RegionInUse& region) const;
};

std::span<const Request> all_requests();

/// The largest number of Q= or A=.
int highest_number(RequestKind kind);

/// The request of that number, or null.
const Request* request_numbered(RequestKind kind, int number);

/// The request with that label in either edition, or null.
const Request* request_labelled(const std::string& label);

/// Whether the request is refused because the installer started the program; tells the operator so.
bool refuse_during_install(const Request& request, const Options& options);

}  // namespace gatescope
