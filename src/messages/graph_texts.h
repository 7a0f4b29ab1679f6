#pragma once

namespace gatescope {

// The page file and its display: names and messages.

/// Path.
inline constexpr char CANNOT_OPEN_PAGE[] = "Could not create/open results file (%s)\n";
/// On standard error. Path, reason.
inline constexpr char PATH_AND_REASON[] = "%s: %s";
/// Path, reason, state.
inline constexpr char CANNOT_WRITE_PAGE[] =
    "ERROR: The results file (%s) could not be written (%s).  %s\n";
inline constexpr char HAS_ANOTHER_NAME[] = "it has another name";
inline constexpr char LOCK_IS_KEPT[] = "Another process keeps its lock";
inline constexpr char NAMES_ARE_TAKEN[] = "Other queries have its name";
inline constexpr char PAGE_IS_AS_BEFORE[] = "It is as it was before this query.";
inline constexpr char PAGE_IS_INCOMPLETE[] = "What it holds of this query is incomplete.";

/// Path, reason.
inline constexpr char CANNOT_WRITE_CSV[] =
    "ERROR: The numbers of this query could not be written (%s): %s.  Its page is whole.\n";

/// Path, region.
inline constexpr char PAGE_STORED[] =
    "\n\nGatescope query completed and html page\n(%s)\n"
    "was built and stored for the region (%s).\n\n";
/// Path, gatebits file, region.
inline constexpr char NO_BROWSER_DEFINED[] =
    "Gatescope query completed and html page\n(%s)\n"
    "was built, but there is no browser defined by either\n"
    "the ZUL_GATESCOPE_BROWSER environmental variable or\n"
    "in the gatebits file (%s)\nfor region (%s)";
/// Path, browser, region; then BrowserPlace's preposition and kind, and the name of the variable or
/// file that defines the browser.
inline constexpr char BROWSER_DOES_NOT_EXIST[] =
    "Gatescope query completed and html page\n(%s) was built, but Gatescope browser\n"
    "(%s) for region (%s)\nas defined %s %s (%s) does not exist";
struct BrowserPlace {
    const char* preposition;
    const char* kind;
};
inline constexpr BrowserPlace BY_THE_ENVIRONMENT = {"by", "the environmental variable"};
inline constexpr BrowserPlace IN_THE_GATEBITS_FILE = {"in", "the gatebits file"};

/// Page file's name.
inline constexpr char DISPLAYING_GRAPH[] = "Graph (%s) built.. Displaying graph...";
/// Raw status, browser.
inline constexpr char BROWSER_FAILED[] = "Warning: return code=%d returned from %s...";

}  // namespace gatescope
