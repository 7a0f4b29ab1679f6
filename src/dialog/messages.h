#pragma once

#include <string>

namespace gatescope {

// Messages and questions: every word to the operator that needs no more than a button.

// How the operator is talked to: the same in every function that has something to say, and settled
// by clean_start before anybody has; so these two are the process's.

/// 1: clearprompt dialogs; 0: standard output; ERRORS_ALONE: gatescope-history, which has nothing
/// to ask, and whose errors go to standard error and end it with status 2.
extern int ZUL_PREFER_GUI;
inline constexpr int ERRORS_ALONE = -1;
/// 1 makes advise wait for its dialog.
extern int ZUL_REMOTE_CLIENT_USER;

/// The status with which an error ends this program.
int status_of_an_error();

/// What ask returns.
enum Answer { YES = 0, NO = 1, ABORT = 2 };

/// Shows an error in the background and ends the process with status_of_an_error.
[[noreturn]] void gripe(const std::string& message);

/// gripe for an error whose text leaves out why, or with which file: that goes to standard error,
/// after the message. `error` is an errno.
[[noreturn]] void gripe(const std::string& message, int error);
[[noreturn]] void gripe(const std::string& message, const std::string& path, int error);

/// gripe for a case that cannot happen; `place` is the function's name.
[[noreturn]] void gripe_uncoded(const std::string& place);

/// Shows a message and goes on; waits for the dialog only when the operator is a remote client.
void advise(const std::string& message);

/// Shows a message and waits until it is dismissed.
void advise_wait(const std::string& message);

/// The buttons of a question.
enum class Buttons { YES, NO, ABORT, YES_NO, YES_ABORT, YES_NO_ABORT };

inline constexpr Answer default_default = YES;
inline constexpr Buttons default_mask = Buttons::YES_NO_ABORT;

/// Asks a question and returns its Answer. `def` is the button that is preset, `mask` are those
/// that there are. A dialog that cannot be started counts as ABORT. Without dialogs a question with
/// a single button is printed and answered with its default; any other still goes to clearprompt,
/// since it needs an answer.
Answer ask(const std::string& message, Answer def = default_default, Buttons mask = default_mask);

/// Prints `text` as a print format without arguments: "%%" prints "%", and any other directive
/// stands as it is.
void print_stdout(const std::string& text);

}  // namespace gatescope
