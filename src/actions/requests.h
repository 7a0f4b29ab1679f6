#pragma once

#include <span>
#include <string>

// The table of everything that an operator can ask for: the menus, the command line's limits and
// the dispatch all read it.

enum class RequestKind { QUERY, ACTION };

struct Request {
    RequestKind kind;
    /// The number of Q= or A=.
    int number;
    /// What the menus show and what a pick is recognised by.
    const char* label;
    /// The same in the lite edition's wording; null where it does not differ.
    const char* lite_label;
    /// What does its work, without the guard.
    void (*handler)();
    /// Whether the gatebits file is checked before and after (A_X runs the handler).
    bool guarded;
    /// Whether it does its work when the installer started the program.
    bool during_install;

    /// Runs the request, with the guard where it has one.
    void run() const;
};

/// Which menu is shown: 1 the main menu, 2 the view/change submenu. Set by the command line, the
/// main loop and A_2.
extern unsigned char chapter;
extern unsigned char initial_chapter;
/// Label of the request picked last. Set by the main loop and A_2.
extern std::string QUERY_OR_ACTION;
/// The list of the selection dialog shown last, entries separated by commas. Set by whoever shows
/// one.
extern std::string CHOICES;

std::span<const Request> all_requests();

/// The request of that number, or null.
const Request* request_numbered(RequestKind kind, int number);

/// The request whose label, in either edition's wording, is `label`, or null.
const Request* request_labelled(const std::string& label);

/// The label in the wording of the edition in use.
const char* label_of(const Request& request);

/// Entries of the two menus, separated by commas; the submenu has one more for the installer.
std::string main_menu_entries();
std::string submenu_entries();

/// The submenu's title for the region, in the installer's wording where it started the program.
std::string submenu_title();

/// Whether a pick is one of the lines between the menu's groups.
bool is_separator(const std::string& pick);
