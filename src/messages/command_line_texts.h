#pragma once

namespace gatescope {

// Texts of the command line and of the choice of the gatebits file.

inline constexpr char ARG_VER[] = "-ver";
inline constexpr char ARG_HELP[] = "-help";
inline constexpr char ARG_IDENTIFY[] = "-identify_self_as_gatescope";
inline constexpr char ARG_KUDOS[] = "-kudos";
inline constexpr char ARG_GENERAL_TEST[] = "-general_test";
inline constexpr char ARG_DATA_GEN[] = "-data_gen";
inline constexpr char ARG_DURING_INSTALL[] = "-during_install";

/// Program, version.
inline constexpr char ABOUT[] =
    "%s version (%s).\n\n"
    "Reports on and configures the Gatewarden policy of one region.";

/// Program.
inline constexpr char KUDOS[] =
    "%s is dedicated to the administrators\n"
    "who answer for every command that was allowed\n"
    "and explain every one that was denied.";

/// Program, version, build, program, number of queries, number of actions, highest bit.
inline constexpr char USAGE[] =
    "Usage for %s Version %s (build: %s)\n\n"
    "gatescope -ver | -help | {F=gatebits_file {Q=query_number | A=action_number} \n"
    "{C=command} {U=user} {K=key_number} {B=bit_number} {D=y|n} {R=y|n}}\n\n\n"
    "Where:\n\n"
    "-ver displays the version of %s\n"
    "-help displays this dialog\n\n"
    "gatebits_file is the path to a valid 'gatebits_file' for Gatewarden\n"
    "query_number = [1..%d]\n"
    "action_number = [1..%d]\n"
    "command = clearcase triggerable command (i.e.'checkin' , 'rmelem') or '*' for all "
    "commands.\n"
    "user = any username or '*' for all users.\n"
    "key_number = number [0..] or '*' for all keys.\n"
    "bit_number = number [0..%d] or '*' for all bits.\n"
    "D = 'y' to display the graph after building or 'n' to not display the graph.  The default "
    "is 'y'.\n"
    "R = 'y' to ask for more queries or actions after completing one or 'n' to exit after the "
    "first completed one (intended for scheduled jobs).\n"
    "      The default is 'y'.\n\n"
    "For any argument without a default Gatescope will ask the operator as needed.\n"
    "Any argument:value not needed for a choosen query or action will be ignored.\n";

/// The argument's letter.
inline constexpr char ERROR_39[] = "ERROR: Duplicate parameter '%c' defined.";
/// The whole argument, here and in every error below; then the limit, if any.
inline constexpr char ERROR_40[] = "ERROR: Incomplete parameter '%s' defined.";
inline constexpr char ERROR_41[] =
    "ERROR: Query parameter (%s) invalid.  Query parameter must be between 1 and %d inclusive.";
inline constexpr char ERROR_42[] =
    "ERROR: Command parameter (%s) invalid.\n\nCommand must be a triggerable command (i.e. "
    "'checkin' 'rmelem') or a '*' for (all comands).";
inline constexpr char ERROR_43[] =
    "ERROR: Bit parameter (%s) invalid.  Bit parameter must be between 0 and %d inclusive or "
    "'*' for all.";
inline constexpr char ERROR_43_NOT_A_NUMBER[] =
    "ERROR: Bit parameter (%s) invalid.  Bit value contains illegal characters.  Bit parameter "
    "must be between 0 and %d inclusive or '*' for all.";
inline constexpr char ERROR_44[] =
    "ERROR: Display parameter (%s) invalid.  Display must be set to 'y' or 'n'. Default is 'y'";
inline constexpr char ERROR_45[] =
    "ERROR: Key parameter (%s) invalid (contains invalid characters).  Key must be set to a "
    "number >= 0 or '*' for all.";
inline constexpr char ERROR_46[] = "ERROR: Unknown parameter (%s) invalid.";
inline constexpr char ERROR_47[] =
    "ERROR: Action parameter (%s) invalid.  Action parameter must be between 1 and %d inclusive.";
inline constexpr char ERROR_48[] =
    "ERROR: Action parameter and Query parameter are mutually exclusive.  Nothing done.";
inline constexpr char ERROR_49[] =
    "ERROR: Repeat parameter (%s) invalid.  Repeat must be set to 'y' or 'n'. Default is 'y'";

/// On standard error: the options, the parameters, the program.
inline constexpr char VALID_ARGUMENTS[] = "the options are %s, the parameters %s; see %s(1)";

inline constexpr char WARN_00[] =
    "\n\nDo you wish to Create a New gatebits file or open an existing one? \n\n"
    "Yes (New)          No (Existing)           Abort";
/// File, WARN_00.
inline constexpr char WARN_01[] =
    "The gatebits file (%s)\n passed in at the command line does not exist or could not be "
    "read.%s";
/// File, variable, WARN_00.
inline constexpr char WARN_02[] =
    "The gatebits file (%s)\nread from the environmental variable (%s)\ndoes not exist or could "
    "not be read.%s";
/// Variable, WARN_00.
inline constexpr char WARN_03[] =
    "No valid gatebits file was passed in at the command line and the environmental variable\n"
    "%s was not set to compensate.%s";
inline constexpr char RETRY_GATEBITS_FILE[] =
    "Retry: Do you wish to Create a New gatebits file or open an existing one? \n\n"
    "New (Yes) Existing (No)?";

/// The menus or the command line named a request that is not in the table.
inline constexpr char INCOMPLETE_QUERY_CODING[] = "incomplete query coding in gatescope:main";

}  // namespace gatescope
