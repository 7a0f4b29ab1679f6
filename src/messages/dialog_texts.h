#pragma once

namespace gatescope {

// Fixed texts of the message boxes, prompts and lists.

inline constexpr char CLEARPROMPT[] = "clearprompt";

/// Program, place of the fault.
inline constexpr char UNEXPECTED_CASE[] = "Internal Error: Inform ZUL: Unexpected case in %s:%s\n";

/// For standard error: CLEARPROMPT, why, what became of it, the text that it should have shown.
inline constexpr char DIALOG_IS_LOST[] = "%s could not be started (%s); this could not be %s:\n%s";
/// Why: nothing; the reason of the system; the status.
inline constexpr char IT_WAS_NOT_FOUND[] = "it was not found";
inline constexpr char NO_SHELL[] = "no shell could be started: %s";
inline constexpr char SHELL_ENDED_WITH[] = "the shell ended with status %d";
/// What became of it.
inline constexpr char NOT_SHOWN[] = "shown";
inline constexpr char NOT_ASKED_SO_ABORT[] = "asked, which counts as abort";
inline constexpr char NOT_ASKED_SO_CANCELLED[] = "asked, which counts as cancelled";

/// What a question can be answered with, and the buttons that it can have; both as clearprompt
/// knows them, in the order of Answer and of Buttons.
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

// What can go wrong where a command's output is thrown away; but for the file's, with the system's
// reason after it. They have always been worded so.
inline constexpr char CANNOT_KEEP_STDOUT[] = "_dup( stdout ) failure";
inline constexpr char CANNOT_KEEP_STDERR[] = "_dup( stderr ) failure";
inline constexpr char CANNOT_OPEN_TRASH_FILE[] = "Can't open file 'data'\n";
inline constexpr char CANNOT_REDIRECT_STDOUT[] = "Can't _dup2 stdout";
inline constexpr char CANNOT_REDIRECT_STDERR[] = "Can't _dup2 stderr";

}  // namespace gatescope
