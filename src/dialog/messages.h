#pragma once

#include <string>

namespace gatescope {

// Messages to the operator, and questions that are answered by a button.

// Global: clean_start sets both once, before the first message.

/// 1: clearprompt dialogs; 0: standard output; ERRORS_ON_STDERR: gatescope-history, which asks
/// nothing, writes errors to standard error and ends with status 2 after one.
extern int ZUL_PREFER_GUI;
inline constexpr int ERRORS_ON_STDERR = -1;
/// 1 makes advise wait for its dialog.
extern int ZUL_REMOTE_CLIENT_USER;

/// The exit status of this program after an error message.
int error_status();

/// What ask returns.
enum class Answer { YES = 0, NO = 1, ABORT = 2 };

/// Shows an error in the background and ends the process with error_status.
[[noreturn]] void gripe(const std::string& message);

/// gripe for a message without the reason or the file: both are written to standard error, after
/// the message. `error` is an errno.
[[noreturn]] void gripe(const std::string& message, int error);
[[noreturn]] void gripe(const std::string& message, const std::string& path, int error);

/// gripe for an internal error; `place` is the function's name.
[[noreturn]] void gripe_uncoded(const std::string& place);

/// Shows a message; waits for the dialog only when the operator is a remote client.
void advise(const std::string& message);

/// Shows a message and waits until it is dismissed.
void advise_wait(const std::string& message);

/// The buttons of a question.
enum class Buttons { YES, NO, ABORT, YES_NO, YES_ABORT, YES_NO_ABORT };

inline constexpr Answer default_default = Answer::YES;
inline constexpr Buttons default_mask = Buttons::YES_NO_ABORT;

/// Asks a question. `def` is the default button, `mask` the buttons shown. A dialog that cannot be
/// started counts as ABORT. Without dialogs a question with one button is printed and answered by
/// its default; any other still needs clearprompt.
Answer ask(const std::string& message, Answer def = default_default, Buttons mask = default_mask);

/// Prints `text` like a printf format without arguments: "%%" prints "%"; other directives are
/// printed unchanged.
void print_stdout(const std::string& text);

}  // namespace gatescope
