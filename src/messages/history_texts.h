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
