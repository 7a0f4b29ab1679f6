#pragma once

#include <string>

// Consent before a change of the gatebits file, and the report after it.

/// What the questions return.
enum Consent {
    DECLINED = 0,       ///< ask for the value again
    CONFIRMED = 1,      ///< write it
    CHANGE_ABORTED = 2  ///< leave; nothing is to be written
};

/// Item, old value and new value (or what was added or deleted) of the last question, each cut to
/// 80 characters. Set by the questions; the reports read them, whatever was written meanwhile.
extern std::string last_item;
extern std::string last_from;
extern std::string last_to;

/// Asks whether `item` may change. Words in the item's name ("Policy Depot", "Notify Program"
/// ...) select warnings about what else the change does, for which the gatebits file is read.
int confirm_change(const std::string& item, const std::string& from, const std::string& to);

/// Asks whether `first` and `second` may be added. An item named "Alias" shows `first` alone, the
/// whole definition; one with "Gatescope Variable" in its name shows both without an "=".
int confirm_add(const std::string& item, const std::string& first, const std::string& second);

/// Asks whether `value` may be deleted; last_to stays as it was.
int confirm_delete(const std::string& item, const std::string& value);

// Reports of the last question. They show nothing unless the environment variable
// ZUL_GATESCOPE_VERBOSITY is set.

void change_confirmed();
void add_confirmed();
void add_confirmed_alias(const std::string& definition);
void delete_confirmed();

/// A value as dialogs show it: its first 80 characters, and "..." when it has 80 or more. One of
/// exactly 80 gets the dots too, although nothing is missing; scripts know it so.
std::string cut_for_dialog(const std::string& value);
