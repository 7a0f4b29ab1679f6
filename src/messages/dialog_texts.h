#pragma once

// Command lines and fixed texts of the message boxes, prompts and lists. In every command line
// the texts come quoted already.

inline constexpr char CLEARPROMPT[] = "clearprompt";

/// Program, place of the fault.
inline constexpr char UNEXPECTED_CASE[] = "Internal Error: Inform ZUL: Unexpected case in %s:%s\n";

/// CLEARPROMPT, newline option, message.
inline constexpr char GRIPE_LINE[] = "%s yes_no -mask abort -def abort -pre %s -pro %s &";
/// CLEARPROMPT, newline option, message, then "" to wait or " &" not to.
inline constexpr char ADVISE_LINE[] = "%s yes_no -mask yes -def yes -pre %s -pro %s%s";
/// CLEARPROMPT, mask, default, newline option, message.
inline constexpr char ASK_LINE[] = "%s yes_no -mask %s -def %s -pre %s -pro %s";
/// CLEARPROMPT, result file, default, newline option, prompt. The two blanks belong there.
inline constexpr char PROMPT_LINE[] = "%s text -prefer_gui -outfile %s  -default %s %s -prompt %s";
/// CLEARPROMPT, result file, file with the default, newline option, prompt.
inline constexpr char PROMPT_FROM_FILE_LINE[] =
    "%s text -prefer_gui -outfile %s  -dfile %s %s -prompt %s";
/// CLEARPROMPT, result file, file to show, title.
inline constexpr char SHOW_FILE_LINE[] =
    "%s text -prefer_gui -multi_line -outfile %s -dfile %s -newline -prompt %s";
/// CLEARPROMPT, result file, items, " " or "-choices", title.
inline constexpr char LIST_LINE[] =
    "%s list -prefer_gui -outfile %s -newline -items %s %s -prompt %s";

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

inline constexpr char default_mask[] = "yes,no,abort";
inline constexpr char default_default[] = "yes";
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
