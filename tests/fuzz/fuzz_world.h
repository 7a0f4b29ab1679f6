#pragma once

#include <fuzzer/FuzzedDataProvider.h>

#include <functional>
#include <string>
#include <string_view>

namespace gatescope {

// The environment of the program's functions under a fuzzer: files in memory instead of a region's,
// an exception instead of the end of the process, and dialogs answered from the fuzzer's bytes
// instead of child processes.

/// Thrown instead of ending the process.
struct ProcessEnded {
    int status;
};

/// Runs `body` and closes its open files. Returns the exit status if it ends the process, -1 if it
/// returns.
int until_the_end(const std::function<void()>& body);

/// A path in the directory of files in memory.
std::string world_path(const std::string& name);
void put_file(const std::string& name, std::string_view bytes);
std::string get_file(const std::string& name);
/// The number of files in one of its directories.
std::size_t files_in(const std::string& directory);

/// Writes the gatebits file, and sets the variables that start-up sets.
void use_gatebits(std::string_view bytes);
std::string gatebits_path();
std::string gatebits();
/// A gatebits file, mostly with a valid region block, so that start-up accepts it.
std::string some_gatebits(FuzzedDataProvider& data);

/// From now on dialogs answer from `data`. Null: every dialog is cancelled, and other children end
/// with 0.
void answer_dialogs_from(FuzzedDataProvider* data);

/// Returns the path that the operator chooses in a file dialog.
using FileChooser = std::function<std::string(FuzzedDataProvider&)>;
/// From now on file dialogs answer by `chooser`; without one, like all dialogs.
void choose_files_by(FileChooser chooser);

/// The last command for the shell.
extern std::string last_command;
/// The last dialog's answer.
extern std::string last_answer;

/// Aborts with a finding unless `holds`; `what` is the assertion.
void must(bool holds, const char* what);

}  // namespace gatescope
