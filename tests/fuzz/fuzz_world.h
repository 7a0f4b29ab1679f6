#pragma once

#include <fuzzer/FuzzedDataProvider.h>

#include <functional>
#include <string>
#include <string_view>

namespace gatescope {

// The world that the program's functions find themselves in under a fuzzer: files in memory
// instead of a region's, a thrown value instead of the end of the process, and dialogs that are
// answered from the fuzzer's bytes instead of children.

/// Thrown in place of the end of the process.
struct ProcessEnded {
    int status;
};

/// Runs `body`; the status when it wanted to end the process, -1 when it came to its end. What
/// it left open is closed.
int until_the_end(const std::function<void()>& body);

/// A path in the world's directory.
std::string world_path(const std::string& name);
void put_file(const std::string& name, std::string_view bytes);
std::string get_file(const std::string& name);
/// How many files there are in a directory of the world's.
std::size_t files_in(const std::string& directory);

/// Puts a gatebits file; start-up's settings are made too.
void use_gatebits(std::string_view bytes);
std::string gatebits_path();
std::string gatebits();
/// A gatebits file with a sound region block more often than not, so that start-up lets it pass.
std::string some_gatebits(FuzzedDataProvider& data);

/// From now on dialogs answer with what `data` gives; null: every dialog is cancelled. A child
/// that is not a dialog ends with 0 then.
void answer_dialogs_from(FuzzedDataProvider* data);

/// What the operator chooses in a file chooser.
using FileChooser = std::function<std::string(FuzzedDataProvider&)>;
/// From now on; without one, whatever the dialogs' bytes give.
void choose_files_by(FileChooser chooser);

/// The last command that was to be run in the shell.
extern std::string last_command;
/// What the last dialog answered.
extern std::string last_answer;

/// Ends the fuzzing with a finding unless `holds`.
void must(bool holds, const char* what);

}  // namespace gatescope
