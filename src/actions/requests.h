#pragma once

#include <optional>
#include <span>
#include <string>

#include "actions/last_answer.h"
#include "policy/region.h"
#include "queries/options.h"

namespace gatescope {

// The table of everything that an operator can ask for: the menus, the command line's limits, the
// installer's refusals, the dispatch, the manual and the completion all read it.

enum class RequestKind { QUERY, ACTION };

/// Whether and how a menu shows a request.
enum class Shown { NO, YES, AFTER_SEPARATOR, TO_INSTALLER_ONLY };

/// How a request ended.
struct Finished {
    LastAnswer last_answer = {};
    /// The menu that comes next; nothing when the one that was due still is.
    std::optional<int> next_menu = {};
};

struct Request {
    RequestKind kind;
    /// The number of Q= or A=.
    int number;
    /// What the menus show and what a pick is recognised by.
    const char* label;
    /// The same in the lite edition's wording; null where it does not differ.
    const char* lite_label;
    /// What does its work, without the guard and the refusal.
    Finished (*handler)(const Options& options, RegionInUse& region, const Request& request);
    /// Whether the gatebits file is checked before and after (A_X runs the handler).
    bool guarded;
    /// Whether it does its work when the installer started the program.
    bool during_install;
    /// Each menu has its entries in the order of the table.
    Shown in_main_menu;
    Shown in_submenu;

    /// Runs the request, with the guard where it has one, unless the installer is refused it.
    Finished execute(const Options& options, RegionInUse& region) const;
};

std::span<const Request> all_requests();

/// The largest number of Q= or A=.
int highest_number(RequestKind kind);

/// The request of that number, or null.
const Request* request_numbered(RequestKind kind, int number);

/// The request whose label, in either edition's wording, is `label`, or null.
const Request* request_labelled(const std::string& label);

/// Whether the request is refused, after telling the operator so: the installer started the program
/// and cannot have it.
bool refused(const Request& request, const Options& options);

}  // namespace gatescope
