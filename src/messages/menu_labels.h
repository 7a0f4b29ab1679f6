#pragma once

namespace gatescope {

// Labels and titles of the menus. A pick is recognised by its label, so scripts and operators
// depend on every letter, and misspellings stay.

inline constexpr char Q1[] = "Q01 - Commands/Users (success/denied) over Time";
inline constexpr char Q2[] = "Q02 - Bits/Users used over Time";
inline constexpr char Q3[] = "Q03 - Keys/Users/Commands denied over Time";
inline constexpr char Q3_L[] = "Q03 - CPDs/Users/Commands denied over Time";
inline constexpr char Q4[] = "Q04 - Bit vs. Bit (per user) usage over Time";
inline constexpr char Q5[] = "Q05 - Key vs. Key (per user/command) usage over Time";
inline constexpr char Q5_L[] = "Q05 - CPD vs. CPD (per user/command) usage over Time";
inline constexpr char Q6[] = "Q06 - Commands/Users (success/denied) over Time by parent policy";

inline constexpr char A1[] = "A01 - Prune Log Files";
inline constexpr char A2[] = "A02 - Modify Current Gatebits file... (A03-A23)";
inline constexpr char A4[] = "A04 - View/Change Windows Depot";
inline constexpr char A5[] = "A05 - View/Change UNIX Depot";
inline constexpr char A6[] = "A06 - View/Change Windows Gatebits Parent";
inline constexpr char A7[] = "A07 - View/Change UNIX Gatebits Parent";
inline constexpr char A8[] = "A08 - View/Change Region Logging Personality";
inline constexpr char A9[] = "A09 - View/Change Region Windows Notify/Script";
inline constexpr char A10[] = "A10 - View/Change Region UNIX Notify/Script";
inline constexpr char A11[] = "A11 - View/Change Region Inhibited Access";
inline constexpr char A12[] = "A12 - View/Change Region Special Access List";
inline constexpr char A13[] = "A13 - View/Change Region MOTD String";
inline constexpr char A14[] = "A14 - View/Change Region MOTD Restriction List";
inline constexpr char A15[] = "A15 - View/Change Per-VOB Functionality Bits Checking";
inline constexpr char A16[] = "A16 - View/Change Functionality Bits for region";
inline constexpr char A17[] = "A17 - Add Alias Definition to Region";
inline constexpr char A18[] = "A18 - Delete Alias Definition from Region";
inline constexpr char A19[] = "A19 - Delete References to Alias Definition from Region";
inline constexpr char A20[] = "A20 - Update Alias Definition in Region";
inline constexpr char A21[] = "A21 - View/Change/Delete a Command Key in Region";
inline constexpr char A22[] = "A22 - Add a Comand Key";
inline constexpr char A23[] = "A23 - VERIFY:Run gatewarden {gatebits} -check";
inline constexpr char A24[] = "A24 - Configure Gatescope";
inline constexpr char A25[] = "A25 - Switch to another Gatebits file";
inline constexpr char A26[] = "A26 - Create New Gatebits file";
inline constexpr char A27[] = "A27 - Copy Existing Gatebits file";
inline constexpr char A28[] = "A28 - Guide through important Gatebits file fields";
inline constexpr char A29[] = "A29 - Guide through ALL Gatebits file fields";

inline constexpr char SEPERATOR[] = "------------------------------";

/// Menu titles; %s is the region's name.
inline constexpr char MAIN_MENU_TITLE[] = "Select Query or Action for (%s)";
inline constexpr char SUBMENU_TITLE[] = "Gatebits view/change Action for (%s)";
inline constexpr char INSTALL_MENU_TITLE[] = "Select Install Action for (%s)";

}  // namespace gatescope
