#pragma once

namespace gatescope {

// Texts of the log reader, the pruner and the demo data generator.

/// File, the system's reason.
inline constexpr char LOG_READ_FAILURE[] =
    "ERROR: The log file (%s) could not be read to its end: %s.  The file is as it was.";

/// On standard error. File, why it could not be opened.
inline constexpr char LOG_LEFT_OUT[] = "gatescope: the log file (%s) was left out: %s\n";

/// On a terminal, while logs are read or pruned. Megabytes done, megabytes of all, seconds left.
inline constexpr char PROGRESS_LINE[] = "%lld of %lld MB, %.0f s left";

// Row labels of the day cells: date, then the number of days, if any.
inline constexpr char LABEL_TODAY[] = "%s - today";
inline constexpr char LABEL_YESTERDAY[] = "%s - yesterday";
inline constexpr char LABEL_DAYS_AGO[] = "%s - %d days ago";

/// Time of the oldest record, start of the query period.
inline constexpr char CONSIDER_PRUNING[] =
    "Warning:\n\nYou have log records from %s\n\nconsider pruning the logs as no data before %s\n"
    "can be queried on or displayed...";
inline constexpr char NO_DATA[] = "There was no data to perform the query on.";

inline constexpr char DEMO_LOG_NOT_MADE[] = "could not make needed logging_file";
/// File, the system's reason.
inline constexpr char DEMO_LOG_NOT_WRITTEN[] =
    "ERROR: The demo records could not all be written to the log file (%s): %s.  Its older "
    "records are as they were.";
/// Number of records so far.
inline constexpr char DEMO_PROGRESS[] = "Created %d demo data entries\n";

// Pruning.
inline constexpr char NO_PRUNING_TOKEN[] = "Could not create needed pruning token";
inline constexpr char NO_PRUNING_FILE[] = "Could not create needed pruning file";
inline constexpr char NO_LOGGING_FILE[] = "Could not create needed logging file";
/// Cut-off.
inline constexpr char TOKEN_TEXT[] = "pruning records before:\n   %s\n";
/// Region.
inline constexpr char ALREADY_BEING_PRUNED[] =
    "ERROR: The logs of the Gatewarden Region (%s) are being pruned by another process.  Nothing "
    "was changed.";
/// On standard error. Token.
inline constexpr char TOKEN_DIVERTS_WRITERS[] =
    "The pruning token (%s) stays.  As long as it stands, log writers go on into companion files, "
    "which no query reads; a pruning that ends well brings their records back.";
/// Log or companion, reason.
inline constexpr char LOG_SKIPPED[] = "The log file (%s) was left as it is: %s.";
/// Left-over, reason.
inline constexpr char LEFT_OVER_NOT_MERGED[] =
    "The next pruning adds to its log what is left in (%s): %s.";
inline constexpr char IS_A_SYMBOLIC_LINK[] =
    "It is a symbolic link, and only the directory of the logs may be one; to keep them elsewhere, "
    "set the relocated logging directory (A24)";
inline constexpr char LOG_REPLACED_MEANWHILE[] = "Another file took its place";
inline constexpr char HELD_OPEN[] = "Somebody keeps it open for writing";
inline constexpr char LOG_GREW_MEANWHILE[] = "Records were added while it was pruned";

/// Token, the system's reason.
inline constexpr char TOKEN_STAYS[] =
    "ERROR: The logs are pruned, but the pruning token (%s) could not be removed: %s.  New records "
    "are kept aside until it is.";
/// Records removed, records read, "was" or "were", region, days.
inline constexpr char PRUNING_RESULT[] =
    "%lld of %lld log entries %s removed from the Gatewarden LOGS for the Gatewarden Region "
    "(%s).\n\n%d days of data retained.";

}  // namespace gatescope
