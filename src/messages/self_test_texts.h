#pragma once

namespace gatescope {

// Texts of the self-test.

inline constexpr char EXPECTED_OS[] = "Expected OS is UNIX...";
/// CLEARPROMPT.
inline constexpr char TESTING_USABILITY[] = "testing for %s usability..\n";
inline constexpr char CLEARPROMPT_NOT_FOUND[] = "%s not found in required path... exiting..\n";
/// CLEARPROMPT, status.
inline constexpr char CLEARPROMPT_RETURN_CODE[] = "%s return code = %d...";
inline constexpr char TESTING_CLEARTOOL[] = "testing for cleartool version...";
inline constexpr char CLEARTOOL_NOT_FOUND[] = "cleartool not found in required path... exiting..";
/// Status.
inline constexpr char CLEARTOOL_RETURN_CODE[] = "cleartool return code = %d...";
/// Answer, code.
inline constexpr char SELECTION_REPORT[] = "selection(%s) rc = (%d)...";
inline constexpr char RESPONSE_REPORT[] = "response(%s) rc = (%d)...";
/// Code.
inline constexpr char THREE_BUTTON_ANSWER[] = "3 button answer rc = (%d)...";
/// Word, code.
inline constexpr char ONLY_ANSWER[] = "%s only answer rc = (%d)...";

inline constexpr char SINGLE_SELECTION_TITLE[] = "Single Selection test...";
inline constexpr char SINGLE_SELECTION_ITEMS[] = "1,2,3,4,5";
inline constexpr char MULTI_SELECTION_TITLE[] = "Multi Selection test...";
inline constexpr char MULTI_SELECTION_ITEMS[] = "this,or that,or the other,some more,last one";
inline constexpr char TEST_PROMPT[] = "Prompt...";
inline constexpr char TEST_PROMPT_DEFAULT[] = "Default answer";

inline constexpr char THREE_BUTTONS_ABORT[] = "3 button Question (default [abort])...";
inline constexpr char THREE_BUTTONS_NO[] = "3 button Question (default [no])...";
inline constexpr char THREE_BUTTONS_YES[] = "3 button Question (default [yes])...";
inline constexpr char THREE_BUTTONS_DEFAULT[] = "3 button Question (default [default yes])...";
/// Word.
inline constexpr char ONLY_QUESTION[] = "%s only Question...";

}  // namespace gatescope
