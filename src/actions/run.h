#pragma once

#include <optional>
#include <string>

#include "base/options.h"
#include "policy/aliases.h"
#include "policy/gatebits_file.h"
#include "policy/region.h"

/// Menus by number.
inline constexpr int MAIN_MENU = 1;
inline constexpr int SUBMENU = 2;

/// What the main loop knows when it runs a request. Only the rows of the request table and those
/// who run rows see it whole; an action gets from it what it needs.
struct Run {
    const Options& options;
    /// The menu to be shown next. Set by the main loop and by A_2.
    int chapter = MAIN_MENU;
    /// The settings of the gatebits file in use. Set by start-up, and by whoever changes one of
    /// them or puts another file in use.
    RegionSettings region = {};
    /// The edition, as read_edition found it at start-up.
    int GATEWARDEN_IS = 1;
    /// As the last action on aliases found them; their count is not forgotten in between.
    Aliases aliases = {};
};

/// What the operator answered last while a request ran: empty when a dialog was left without an
/// answer, nothing when none was shown. After an empty one the submenu comes up again at once.
struct LastAnswer : std::optional<std::string> {
    using optional::optional;
    LastAnswer(const std::optional<std::string>& answer) : optional(answer) {}
    LastAnswer(const std::optional<std::string>& answer, ChangeResult change)
        : optional(answer), changed_meanwhile(change == ChangeResult::CHANGED_MEANWHILE) {}

    /// Whether it was for nothing: the operator was told that somebody else has changed the file,
    /// and goes back to the menu.
    bool changed_meanwhile = false;
};
inline constexpr char UNANSWERED[] = "";
