#pragma once

#include <array>

namespace gatescope {

// The environment variables that the program reads.

inline constexpr char ENV_GATEBITS_FILE[] = "ZUL_GATESCOPE_GATEBITS_FILE";
inline constexpr char ENV_PREFER_NO_GUI[] = "ZUL_PREFER_NO_GUI";
inline constexpr char ENV_STRICT_QUOTING[] = "ZUL_GATESCOPE_STRICT_QUOTING";
inline constexpr char ENV_BROWSER[] = "ZUL_GATESCOPE_BROWSER";
inline constexpr char ENV_CSV[] = "ZUL_GATESCOPE_CSV";
inline constexpr char ENV_VERBOSITY[] = "ZUL_GATESCOPE_VERBOSITY";
inline constexpr char ENV_HISTORY[] = "ZUL_GATESCOPE_HISTORY";
inline constexpr char ENV_TMP[] = "tmp";
inline constexpr char ENV_TEMP[] = "temp";
inline constexpr char ENV_COOKIE[] = "HTTP_COOKIE";
inline constexpr char ENV_PATH[] = "PATH";
inline constexpr char ENV_TERM[] = "TERM";
inline constexpr char ENV_NO_COLOR[] = "NO_COLOR";

struct EnvironmentVariable {
    const char* name;
    /// One sentence without its full stop, for the manual.
    const char* meaning;
};

/// The manual is made from this table, and a test holds every getenv in the sources against it.
/// Only tools and tests may use the table: the names of the client's variables must not stand in
/// the program file as text.
inline constexpr std::array<EnvironmentVariable, 21> ENVIRONMENT = {{
    {ENV_GATEBITS_FILE, "The gatebits file to use when no F= argument is given"},
    {ENV_PREFER_NO_GUI,
     "When it is \"yes\" (in any case), messages go to standard output and questions with a "
     "single button are answered by themselves; anything else is still asked by clearprompt"},
    {ENV_STRICT_QUOTING,
     "When it is \"yes\" (in any case), the shell interprets nothing inside a dialog's text or "
     "the paths that the checker and the browser get; recommended"},
    {ENV_BROWSER,
     "The browser that is started on a finished page, in place of the one that the gatebits "
     "file names"},
    {ENV_CSV,
     "When it is \"yes\" (in any case), each query also writes its numbers beside the page, in a "
     "file of the same name that ends in .csv"},
    {ENV_VERBOSITY, "When it is set, each change made to the gatebits file is reported in a box"},
    {ENV_HISTORY,
     "The directory in which each change of a gatebits file is recorded before it is made; a "
     "change "
     "that cannot be recorded there is not made"},
    {ENV_TMP, "The directory for temporary files; it must be writable"},
    {ENV_TEMP, "The same, when tmp is not set; without either, it is /tmp"},
    {"CLEARCASE_USER", "The operator's login name; this and the next four are tried in turn"},
    {"AUTH_USER", "The operator's login name, second choice"},
    {"LOGON_USER", "The operator's login name, third choice"},
    {"REMOTE_USER", "The operator's login name, fourth choice"},
    {"UNMAPPED_REMOTE_USER", "The operator's login name, fifth choice"},
    {ENV_COOKIE,
     "The operator's login name, after user= and up to the next semicolon, when none of the "
     "five is set; without it, the password database tells"},
    {"CLEARCASE_VIEW_KIND",
     "The kind of the operator's view, as a word that holds \"snapshot\" or \"web\""},
    {"ZUL_USING_CCRC", "When it is set, the operator is a remote client: messages wait"},
    {"ATRIA_WEB_CLEARPROMPT", "When it is set, the operator is a remote client: messages wait"},
    {ENV_PATH,
     "Where clearprompt, cleartool and a checker that is named without a directory are found"},
    {ENV_TERM, "The kind of terminal; on a \"dumb\" one gatescope-history shows no colours"},
    {ENV_NO_COLOR, "When it is set and not empty, gatescope-history shows no colours"},
}};

}  // namespace gatescope
