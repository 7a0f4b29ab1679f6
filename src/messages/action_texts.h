#pragma once

namespace gatescope {

// Texts of the configuration actions. The dialog turns a backslash and an n, as two characters,
// into a line break. Scripts look for the texts, so their misspellings stay.

// Guarded actions, and actions refused during an installation.

inline constexpr char AX_MSG[] =
    "That change would introduced an error in the gatebits file.  Please reenter the value.";
inline constexpr char INCOMPLETE_ACTION_CODING[] = "incomplete action coding in A_X:main";
/// Between a menu label's number and its text.
inline constexpr char LABEL_DASH[] = " - ";
/// The label's text.
inline constexpr char NOT_DURING_INSTALL[] =
    "This Action: '%s'\n\nis not available during the installation process...";
inline constexpr char NO_LABEL_DURING_INSTALL[] =
    "This Action is not available during the installation process...";

// Changes that were confirmed but not made.

/// File.
inline constexpr char CHANGED_BY_ANOTHER[] =
    "The gatebits file (%s) was changed meanwhile, and what you were shown no longer stands there."
    "\n\nYour change was not made: nothing was written.";
/// Field's name, field, line, file.
inline constexpr char NO_LINE_FOR_FIELD[] =
    "Your change was not made: nothing was written.\n\nThe place of the %s is field %d of "
    "significant line %d, and there is no such line in (%s).  Lines that are empty or begin with "
    "'#' do not count.";
inline constexpr char NO_FIELD_IN_LINE[] =
    "Your change was not made: the value was not written.\n\nThe place of the %s is field %d of "
    "significant line %d, and that line of (%s) has no such field.  Each field has to be ended by "
    "';'.";

// The region's fields.

/// OS, example.
inline constexpr char DEPOT_PROMPT[] = "Input a %s Policy Depot (i.e. %s)...";
/// "" or the way back from the depot, OS, example.
inline constexpr char PARENT_PROMPT[] = "%sInput a %s Parent Gatebits File (i.e. %s)...";
inline constexpr char NOTIFY_PROMPT[] =
    "%sInput an optional %s Region Notify Program/script (i.e. %s)...";
/// List, example.
inline constexpr char LIST_PROMPT[] = "Input a %s (i.e. %s)...";
/// Example.
inline constexpr char MOTD_LIST_PROMPT[] = "Input a MOTD Restriction List (i.e. %s)...";
inline constexpr char MOTD_PROMPT[] = "Input a MOTD (i.e. %s).. Can be Empty...";

inline constexpr char WINDOWS_DEPOT_EXAMPLE[] = "\\\\machine\\share\\gatewarden\\depot";
inline constexpr char UNIX_DEPOT_EXAMPLE[] = "/net/machine/gatewarden/depot";
inline constexpr char WINDOWS_PARENT_EXAMPLE[] = "\\\\machine\\share\\gatebits.txt";
inline constexpr char UNIX_PARENT_EXAMPLE[] = "/net/machine/gatebits.txt";
inline constexpr char WINDOWS_NOTIFY_EXAMPLE[] = "script.bat - expected in Windows Depot";
inline constexpr char UNIX_NOTIFY_EXAMPLE[] = "script.sh - expected in UNIX Depot";
inline constexpr char EXAMPLE_RESTRICTION_LIST[] =
    "(users) <groups> [VOBs] [VOBs:replicas] {elements} %views% @times@ 'regions' or ~aliases - "
    "you may use pattern matching from * ? #)";
inline constexpr char MOTD_EXAMPLE[] = "Any String not containing ';' or empty";

/// Current value.
inline constexpr char LOGGING_TITLE[] = "Select a Region Logging Personality...  Currently = %s";
inline constexpr char PER_VOB_TITLE[] = "Select Per-VOB Functionality Bits.  Currently = %s";
inline constexpr char BITS_TITLE[] = "Current bit state: (%s)";
/// The titles' values of an empty field: the letter O, and the digit 0.
inline constexpr char LOGGING_WHEN_EMPTY[] = "O";
inline constexpr char PER_VOB_WHEN_EMPTY[] = "0";
inline constexpr char LOGGING_CHOICES[] =
    "O - 'O'ff,E - 'E'rrors/Denials only logged,S - 'S'ucessful attempts only logged,A - 'A'll "
    "activity logged";
inline constexpr char PER_VOB_CHOICES[] =
    "D - 'D'isallow Per-VOB Functionality Bits,A - 'A'llow Per-VOB Functionality Bits";
/// Bit number, '0' or '1', name.
inline constexpr char BIT_ENTRY[] = "%02d - (%c) %s";

/// OS.
inline constexpr char DEPOT_FIELD_NAME[] = "%s Policy Depot...";
inline constexpr char PARENT_FIELD_NAME[] = "%s Parent Gatebits file...";
inline constexpr char NOTIFY_FIELD_NAME[] = "%s Notify Program...";
/// List.
inline constexpr char LIST_FIELD_NAME[] = "%s...";
inline constexpr char MOTD_LIST_FIELD_NAME[] = "Region MOTD Restriction List";
inline constexpr char MOTD_FIELD_NAME[] = "Region MOTD String";
inline constexpr char LOGGING_FIELD_NAME[] = "Region Logging Personality";
inline constexpr char PER_VOB_FIELD_NAME[] = "Region Per-VOB Functionality Bits Personality";
inline constexpr char BITS_FIELD_NAME[] = "Functionality Bits";

/// The entries that need a depot first, and what leads back to their prompts.
inline constexpr char PARENT_ENTRY[] = "Parent Gatebits File";
inline constexpr char NOTIFY_ENTRY[] = "Region Notify Program";
inline constexpr char BACK_TO_PARENT[] = "OK, back to Parent Gatebits File\\n";
inline constexpr char BACK_TO_NOTIFY[] = "OK, back to Region Notify Program/script\\n";
/// OS, OS, entry, OS, depot, OS.
inline constexpr char DEPOT_IS_NO_DIRECTORY[] =
    "WARNING: The depot for the %s OS would have to be defined and valid before you can define the "
    "%s '%s' entry.\n\nThe currently defined %s depot (%s) does  exists, but is a FILE.\n\nDo you "
    "wish to redefine the %s depot now?";
inline constexpr char DEPOT_IS_NOT_THERE[] =
    "WARNING: The depot for the %s OS would have to be defined and valid before you can define the "
    "%s '%s' entry.\n\nThe currently defined %s depot (%s) does NOT exists.\n\nDo you wish to "
    "redefine the %s depot now?";
/// OS, OS, entry, OS.
inline constexpr char DEPOT_IS_NOT_DEFINED[] =
    "WARNING: The depot for the %s OS would have to be defined before you can define the %s '%s' "
    "entry.\n\nDo you wish to define the %s depot now?";

// Aliases.

/// Limit.
inline constexpr char MAXIMUM_OF_ALIASES[] =
    "Maximum of %d already defined for Region.  You will have to delete some to add more...";
inline constexpr char NO_ALIASES[] = "There are no currently defined aliases for this region";
/// Limit.
inline constexpr char ALIAS_NAME_PROMPT[] =
    "Input an alias name (i.e. some_alias_name from char [a-z,A-Z,-,0-9] %d character max)...";
/// Name, limit.
inline constexpr char ALIAS_VALUE_PROMPT[] = "Input value for alias %s (%d character max)...";
/// ALIAS_HEADER, name, value.
inline constexpr char ALIAS_DEFINITION[] = "%s %s %s";
/// Name.
inline constexpr char ALIAS_REFERENCE[] = "~%s";
/// ALIAS_HEADER, name.
inline constexpr char ALIAS_FIELD_NAME[] = "Alias %s %s";
inline constexpr char REMOVE_DEFINITION_TITLE[] = "Select Alias Definition to remove from region";
inline constexpr char REMOVE_REFERENCES_TITLE[] = "Select Alias References to remove from region";
inline constexpr char UPDATE_DEFINITION_TITLE[] = "Select Alias Definition to update in region";
/// Reference.
inline constexpr char REMOVE_REFERENCES_TOO_QUESTION[] =
    "Do you also want to remove all alias references ( %s ) from fields and keys in the gatebits "
    "file?\n\nYes - Remove the alias definition and ~references to it\nNo - Remove only the alias "
    "definition\nCancel - Cancel removal";
inline constexpr char REMOVE_REFERENCES_QUESTION[] =
    "Do you want to remove the %s alias references from fields and keys in the gatebits "
    "file?\n\nYes - Remove REFERENCES to the alias (but leave the alias DEFINITION intact)\nCancel "
    "- Cancel removal";
inline constexpr char INTERNAL_ERROR_A_18[] = "Internal error A_18";
inline constexpr char INTERNAL_ERROR_A_19[] = "Internal error A_19";
inline constexpr char INTERNAL_ERROR_A_20[] = "Internal error A_20";

// Command keys.

/// The three texts that differ between the editions.
struct KeyTexts {
    const char* none;
    const char* title;
    const char* noun;
};
inline constexpr KeyTexts FULL_KEY_TEXTS = {"There are no commands keys to view...",
                                            "Select one key to view/change/delete:", "Command Key"};
inline constexpr KeyTexts LITE_KEY_TEXTS = {"There are no CPDS to view...",
                                            "Select one CPD to view/change/delete:", "CPD"};
/// On standard error. Number of keys left out of the list, keys of the file, file.
inline constexpr char KEYS_NOT_OFFERED[] =
    "%zu of %zu keys in (%s) are not offered: a line after the 127th significant one cannot be "
    "addressed.";
/// Index, beginning of the key.
inline constexpr char KEY_ENTRY[] = "%03d %s";
/// KeyTexts' noun, index, key.
inline constexpr char KEY_QUESTION[] =
    "%s #%03d description:\n\n%s\n\nDo you want to edit or delete the key?\n\nYes - to edit\nNo - "
    "to delete\nCancel - to cancel";
/// Index.
inline constexpr char KEY_PROMPT[] = "Changing value for Key %03d...";
inline constexpr char NEW_KEY_PROMPT[] =
    "Creating value for New Command Key %03d (template provided)...";
inline constexpr char KEY_FIELD_NAME[] = "Command Key %03d...";
inline constexpr char KEY_TEMPLATE_TITLE[] = "Select a key use as a template or none for default:";
inline constexpr char DEFAULT_KEY[] = "pre_checkin;R; ;0;0;0;D; ;N; ;0;;;;;0;E;;;";
/// The text before the "=" in a new key's confirmation.
inline constexpr char NEW_KEY_WORD[] = "Key";
inline constexpr char INTERNAL_ERROR_A_21[] = "Internal error A_21";
inline constexpr char INTERNAL_ERROR_A_22[] = "Internal error A_22";

// The gatebits file as a whole.

/// Raw status, command.
inline constexpr char CHECK_FAILED[] = "Error return code=%d returned from %s...";
/// File.
inline constexpr char LOADED_WITHOUT_ERRORS[] =
    "The new gatebits_file (%s) was loaded and currently has no errors.";
inline constexpr char LOADED_WITH_ERRORS[] =
    "WARNING: New gatebits_file (%s) has errors.\n\nThese should be addressed...";
/// Source, destination, one of the two texts above.
inline constexpr char COPIED[] =
    "The gatebits file:\n\t(%s)\n\nwas copied to:\n\t(%s)\n\nNew file loaded.\n\n%s";
inline constexpr char RETRY_SWITCH[] = "That file doe not already exist, Retry?";
inline constexpr char RETRY_SOURCE[] = "That file does not exist, Do you want to retry?";
inline constexpr char RETRY_DESTINATION[] =
    "That file exist already, Can't copy over existing gatebits files in this manner. Do you want "
    "to choose another destination location?";
inline constexpr char RETRY_LOCATION[] =
    "You do not have write permission to that directory, Would you like to try another location?";
inline constexpr char NEW_OR_EXISTING[] =
    "That file already exist, Open a new one or use the existing one? \n\nOpen New (Yes) Open "
    "Existing (No)?";
inline constexpr char POPULATE_NOW[] =
    "You should populate some fields in the file now.\n\nYou can select to prompted for all fields "
    "now or just the most critical ones.\n\nYou can skip any portion you are not ready to complete "
    "now\n\n What would you like to do?\n\nPrompt me for all fields (YES)\nPrompt me for just "
    "lritical ones (No)\nI'll do them later (Abort)";
// gatescope's own settings.

inline constexpr char SETTING_TITLE[] = "Select Gatescope Variable to View/Change";
/// Index, name, value.
inline constexpr char SETTING_ENTRY[] = "%02d %s%s";
/// Prefix of the setting's line.
inline constexpr char SETTING_PROMPT[] = "Change the value of %s ...";
inline constexpr char INTERNAL_ERROR_A_24[] = "Internal error in A_24";

}  // namespace gatescope
