#pragma once

namespace gatescope {

// Titles of a day's bar; the last argument is the day's label. Misspellings stay.

/// Allowed, its percentage, total.
inline constexpr char TITLE_ALLOWED[] =
    "%u (%d%%) of %u matching commands were allowed through Gatewarden policy on %s";
/// Total.
inline constexpr char TITLE_NONE_ALLOWED[] =
    "None of the %u matching commands(s) were allowed through Gatewarden policy on %s";
/// Denied, its percentage, total.
inline constexpr char TITLE_DENIED[] =
    "%u (%d%%) of %u matching commands were denied by Gatewarden Policy on %s";
/// Total.
inline constexpr char TITLE_NONE_DENIED[] =
    "None of the %u matching commands(s) were denied by Gatewarden policy on %s";
inline constexpr char TITLE_NO_COMMANDS[] = "No matching commands were attempted on %s";
/// What, count.
inline constexpr char TITLE_INVOKED[] =
    "Matching %s were invoked %u times through Gatewarden policy on %s";
inline constexpr char TITLE_INVOKED_TO_DENY[] =
    "Matching %s were invoked %u times to deny command usage on %s";

}  // namespace gatescope
