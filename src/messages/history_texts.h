#pragma once

// Texts of the history of policy files, and of the program that shows it.

/// Policy file, history, FILE_AND_REASON.
inline constexpr char CANNOT_RECORD[] =
    "ERROR: The change of (%s) was not made, because it could not be recorded in the history (%s). "
    " "
    "%s";
/// File, reason.
inline constexpr char FILE_AND_REASON[] = "%s: %s";
inline constexpr char HAS_A_SECOND_NAME[] = "it has a second name";

// A diff, as others write it.

/// Old name, new name.
inline constexpr char DIFF_HEAD[] = "--- %s\n+++ %s\n";
/// Ranges of lines.
inline constexpr char DIFF_HUNK[] = "@@ -%s +%s @@\n";
inline constexpr char NO_NEWLINE_AT_END[] = "\n\\ No newline at end of file\n";

// What turns a terminal's colours on, and off again.

inline constexpr char BOLD[] = "\033[1m";
inline constexpr char RED[] = "\033[31m";
inline constexpr char GREEN[] = "\033[32m";
inline constexpr char CYAN[] = "\033[36m";
inline constexpr char PLAIN[] = "\033[m";
