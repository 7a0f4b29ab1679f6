#pragma once

namespace gatescope {

// Texts of the history of policy files, and of the program that shows it.

/// A line of the history: texts as JSON but for the third, which is a number.
inline constexpr char RECORD[] =
    "{\"time\":%s,\"operator\":%s,\"uid\":%u,\"host\":%s,\"file\":%s,\"action\":%s,\"item\":%s,"
    "\"from\":%s,\"to\":%s,\"saved\":%s}\n";

/// File of the history, reason.
inline constexpr char CANNOT_RECORD[] =
    "ERROR: The change was not made, because it could not be recorded in (%s): %s.";
inline constexpr char HAS_A_SECOND_NAME[] = "it has a second name";

// A diff, as others write it.

/// File, number of the change, file, number.
inline constexpr char DIFF_HEAD[] = "--- %s\tbefore change %d\n+++ %s\tafter change %d\n";
/// Ranges of lines.
inline constexpr char DIFF_HUNK[] = "@@ -%s +%s @@\n";
inline constexpr char NO_NEWLINE_AT_END[] = "\n\\ No newline at end of file\n";

// What turns a terminal's colours on, and off again.

inline constexpr char BOLD[] = "\033[1m";
inline constexpr char RED[] = "\033[31m";
inline constexpr char GREEN[] = "\033[32m";
inline constexpr char CYAN[] = "\033[36m";
inline constexpr char PLAIN[] = "\033[m";

// The program gatescope-history.

inline constexpr char HISTORY_PROGRAM[] = "gatescope-history";
inline constexpr char HISTORY_USAGE[] =
    "Usage: gatescope-history [-d DIRECTORY] [-f FILE] list\n"
    "       gatescope-history [-d DIRECTORY] [-f FILE] diff N\n"
    "       gatescope-history [-d DIRECTORY] [-f FILE] restore N\n"
    "       gatescope-history --help | --version\n\n"
    "Shows the changes of policy files that gatescope has recorded, and takes them back.\n\n"
    "  list          the changes: number, time, operator, action, what was changed, from and to\n"
    "  diff N        what change N did\n"
    "  restore N     puts back what the policy file held before change N\n"
    "  -d DIRECTORY  the history, in place of that in ZUL_GATESCOPE_HISTORY\n"
    "  -f FILE       the policy file, where there are several in the history\n\n"
    "The exit status is 0 when there are changes, no differences, or the text was put back; 1 "
    "when\n"
    "there are no changes, or differences, or nothing to put back; 2 after an error.\n";
/// Program, version.
inline constexpr char HISTORY_VERSION[] = "%s %s\n";

inline constexpr char WRONG_WORDS[] = "give list, diff N or restore N; --help says more";
/// Variable.
inline constexpr char NO_HISTORY_NAMED[] = "%s is not set; name the history with -d";
/// Number as given, history.
inline constexpr char NO_SUCH_CHANGE[] = "there is no change %s in (%s)";
/// History, two files of it.
inline constexpr char SEVERAL_FILES[] =
    "(%s) holds changes of several policy files, such as (%s) and (%s); name one with -f";
/// Number, file.
inline constexpr char NOT_A_COMPLETE_RECORD[] = "line %d of (%s) is not a complete record";
/// File, reason.
inline constexpr char CANNOT_READ[] = "(%s) cannot be read: %s";
/// File, number of the next change.
inline constexpr char FILE_WAS_GONE[] =
    "what (%s) held afterwards is not known: before change %d there was no file any more";
/// Number, file.
inline constexpr char NO_TEXT_BEFORE[] = "before change %d there was no file (%s)";

/// What a record of a restored text says: the action; number of the change before which it stood.
inline constexpr char RESTORE_ACTION[] = "restore";
inline constexpr char TEXT_BEFORE_CHANGE[] = "Text before change %d";

/// In a list: a value that there was none of, one without a character, and what stands between two
/// values and at the end of one that was cut.
inline constexpr char NO_VALUE[] = "-";
inline constexpr char EMPTY_VALUE[] = "\"\"";
inline constexpr char ARROW[] = " \u2192 ";
inline constexpr char CUT_HERE[] = "\u2026";

}  // namespace gatescope
