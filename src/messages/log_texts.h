#pragma once

// Texts of the log reader, the pruner and the demo data generator.

// Names of the files in the logging directory: directory, delimiter, then the number where there
// is one.
inline constexpr char LOGGING_NORMAL_PATTERN[] = "%s%clogging_%d.txt";
inline constexpr char LOGGING_PRUNING_PATTERN[] = "%s%clogging__%d.txt";
inline constexpr char LOGGING_PRUNING_FILE[] = "%s%cpruning_.txt";
inline constexpr char LOGGING_PRUNING_TOKEN[] = "%s%clogging_pruning_token.txt";

/// File, the system's reason.
inline constexpr char LOG_READ_FAILURE[] =
    "ERROR: The log file (%s) could not be read to its end: %s.  The file is as it was.";

// Row labels of the day cells: date, then the number of days where there is one.
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

// Records as the policy engine writes them: time, kind, user, command, then detail letter and
// number where they vary.
inline constexpr char DENIED_RECORD[] = "%ld:%c:%s[%d]%c<%d>\n";
inline constexpr char BIT_RECORD[] = "%ld:%c:%s[%d]-<%d>\n";
inline constexpr char ALLOWED_RECORD[] = "%ld:%c:%s[%d]-<->\n";
inline constexpr char PARENT_RECORD[] = "%ld:%c:%s[%d]%c<->\n";
