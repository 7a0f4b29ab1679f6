#pragma once

namespace gatescope {

// Questions and titles of the queries. Misspellings stay, because administrators search old pages
// by their titles.

inline constexpr char NO_QUERIES_DURING_INSTALL[] =
    "Query functions are not available during the installation process...";

inline constexpr char PROMPT_SELECT_COMMAND[] =
    "Select triggerable command to display usage for...";
inline constexpr char PROMPT_INPUT_USER[] =
    "Input user to display usage for or \"*\" for all users:";
inline constexpr char PROMPT_SELECT_BIT[] = "Select Functionility Bit to display usage for...";
inline constexpr char PROMPT_INPUT_KEY[] =
    "Input Command Key Number to display denials for (\"*\" for all keys):";
inline constexpr char PROMPT_INPUT_CPD[] =
    "Input CPD Number to display denials for (\"*\" for all CPD):";

/// The answer that means everything, and its entry in a list.
inline constexpr char ALL[] = "*";
inline constexpr char ALL_BITS_CHOICE[] = "* - <ALL BITS>";
/// Bit, name.
inline constexpr char BIT_CHOICE[] = "%02d - %s";

// Titles: of one value (command; bit and its name; key) and of all.
inline constexpr char TITLE_Q1_ONE[] =
    "ClearCase command success/denied usage for:<br><dd>the (%s) command";
inline constexpr char TITLE_Q1_ALL[] =
    "ClearCase command success/denied usage for:<br>(all) commands";
inline constexpr char TITLE_Q2_ONE[] = "ClearCase Functionality Bit usage for:<br>bit #%d (%s)";
inline constexpr char TITLE_Q2_ALL[] = "ClearCase Functionality Bit usage for:<br>(all) bits";
inline constexpr char TITLE_Q3_ONE[] = "ClearCase Comand Key usage for:<br>key #%lld";
inline constexpr char TITLE_Q3_ALL[] = "ClearCase Command Key denials for:<br>(all) keys";
inline constexpr char TITLE_Q3_LITE_ONE[] = "ClearCase CPD usage for:<br>CPD #%lld";
inline constexpr char TITLE_Q3_LITE_ALL[] = "ClearCase CPD denials for:<br>(all) keys";
inline constexpr char TITLE_Q4[] = "ClearCase Functionality Bit Vs. Bit usage for:<br>(all) bits";
inline constexpr char TITLE_Q5[] = "ClearCase Comand Key vs. Key usage for:<br>(all) Keys";
inline constexpr char TITLE_Q5_LITE[] = "ClearCase CPD vs. CPD usage for:<br>(all) CPDs";
inline constexpr char TITLE_Q6_ONE[] =
    "ClearCase command allowed/denied by parent policy for:<br><dd>the (%s) command";
inline constexpr char TITLE_Q6_ALL[] =
    "ClearCase command allowed/denied by parent policy for:<br>(all) commands";

/// User.
inline constexpr char TITLE_FOR_USER[] = " for the user (%s)";
inline constexpr char TITLE_FOR_ALL_USERS[] = " for (all) users";
/// Command.
inline constexpr char TITLE_FOR_COMMAND[] = " for the (%s)";
inline constexpr char TITLE_FOR_ALL_COMMANDS[] = " for (all) commands";

}  // namespace gatescope
