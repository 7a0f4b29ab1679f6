#pragma once

namespace gatescope {

// Texts of the message boxes, prompts and lists.

inline constexpr char CLEARPROMPT[] = "clearprompt";

/// Program, place of the fault.
inline constexpr char UNEXPECTED_CASE[] = "Internal Error: Inform ZUL: Unexpected case in %s:%s\n";

/// On standard error: CLEARPROMPT, reason, consequence, text of the dialog.
inline constexpr char DIALOG_NOT_STARTED[] =
    "%s could not be started (%s); this could not be %s:\n%s";
/// Reasons; arguments: none, the system's reason, the status.
inline constexpr char PROGRAM_NOT_FOUND[] = "it was not found";
inline constexpr char NO_SHELL[] = "no shell could be started: %s";
inline constexpr char SHELL_ENDED_WITH[] = "the shell ended with status %d";
/// Consequences.
inline constexpr char NOT_SHOWN[] = "shown";
inline constexpr char NOT_ASKED_SO_ABORT[] = "asked, which counts as abort";
inline constexpr char NOT_ASKED_SO_CANCELLED[] = "asked, which counts as cancelled";

/// clearprompt's words for the answers and the buttons of a question, in the order of Answer and of
/// Buttons.
inline constexpr const char* ANSWER_WORDS[] = {"yes", "no", "abort"};
inline constexpr const char* BUTTON_WORDS[] = {"yes",    "no",        "abort",
                                               "yes,no", "yes,abort", "yes,no,abort"};
/// Message, default.
inline constexpr char ACCEPTED_LINE[] = "%s\n[%s] accepted\n";

/// Title, "one or more " or "NO ", "displayed near bottom " or "".
inline constexpr char SHOW_FILE_TITLE[] = "%s\\n -- File has %serrors %s--";

inline constexpr char RESULT_FILE_DISAPPEARED[] =
    "expected result file disappeared in make_selection()";
inline constexpr char INVALID_SELECTION[] = "Invalid Selection received in make_selection";
/// Largest accepted answer in bytes.
inline constexpr char SELECTION_TOO_LARGE[] =
    "make_selection() selection excessively large exceeds %d bytes";

// Failures to discard a command's output. The system's reason follows, except after the file's.
inline constexpr char CANNOT_KEEP_STDOUT[] = "_dup( stdout ) failure";
inline constexpr char CANNOT_KEEP_STDERR[] = "_dup( stderr ) failure";
inline constexpr char CANNOT_OPEN_TRASH_FILE[] = "Can't open file 'data'\n";
inline constexpr char CANNOT_REDIRECT_STDOUT[] = "Can't _dup2 stdout";
inline constexpr char CANNOT_REDIRECT_STDERR[] = "Can't _dup2 stderr";

}  // namespace gatescope
