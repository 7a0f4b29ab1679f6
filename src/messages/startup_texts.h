#pragma once

namespace gatescope {

// Texts of start-up and of the file functions.

/// On standard error. Reason.
inline constexpr char CANNOT_OPEN_NULL_DEVICE[] = "the null device cannot be opened: %s";
inline constexpr char OUTPUT_NOT_WRITTEN[] = "standard output could not be written: %s";

inline constexpr char NO_MEMORY[] = "ERROR:  Unable to malloc needed memory.";
inline constexpr char NO_USER[] = "ERROR:  Unable to determine user.";

/// Program, "TMP" or "TEMP", directory.
inline constexpr char ERROR_USIING_TEMP_DIR[] =
    "ERROR: %s using %s directory (%s) but it is not required writable... exiting";
/// Program, PLEASE_SET_TMP_OR_TEMP.
inline constexpr char ERROR_USING_SLASH_TMP[] =
    "ERROR: %s using /tmp directory but it is not required writable...%s";
inline constexpr char PLEASE_SET_TMP_OR_TEMP[] =
    "Please set TMP or TEMP variable to a writable directory exiting";

/// Path, errno.
inline constexpr char COULD_NOT_TOUCH[] = "#1 Could not touch (%s) with %d";
inline constexpr char COULD_NOT_APPEND[] = "#1 Could not append (%s) with %d";
/// Source, destination, errno. Used for copies too.
inline constexpr char COULD_NOT_MOVE_1[] = "#1 Could not move (%s) to (%s) with %d";
inline constexpr char COULD_NOT_MOVE_2[] = "#2 Could not move (%s) to (%s) with %d";

inline constexpr char CANNOT_CREATE_TEMP_FILE[] = "Could not create needed temp file";

/// File, reason.
inline constexpr char CANNOT_READ_ANSWER[] =
    "ERROR: Could not read the dialog's answer (%s): %s.  What it was for was not done; what was "
    "confirmed before stays done.";

/// File, reason, state of the file.
inline constexpr char COULD_NOT_REPLACE[] = "ERROR: Could not write the file (%s): %s.  %s";
/// States in COULD_NOT_REPLACE: file; file, copy; file.
inline constexpr char FILE_IS_UNCHANGED[] = "(%s) is unchanged.";
inline constexpr char FILE_IS_DAMAGED[] = "(%s) may be damaged.  Its complete new text is in (%s).";
inline constexpr char FILE_IS_NEW[] =
    "(%s) holds its complete new text, but may not have reached the disk yet.";
/// Reasons in COULD_NOT_REPLACE: seconds.
inline constexpr char LOCKED_BY_ANOTHER[] =
    "another process has held its lock for more than %d seconds";
inline constexpr char IS_NO_REGULAR_FILE[] = "it is not a regular file";
/// The reason for a log or page.
inline constexpr char NOT_A_REGULAR_FILE[] = "Not a regular file";

}  // namespace gatescope
