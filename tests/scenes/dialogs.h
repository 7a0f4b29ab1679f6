#pragma once

#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace gatescope {

// Dialogs as clearprompt received them, and builders of the dialogs that a scene expects. In names
// of result files "{tmp}" stands for the directory of temporary files and "{pid}" for the program's
// process id.

struct Dialog {
    /// The exact arguments, without "clearprompt".
    std::vector<std::string> args;
    /// Whether the program waited for it.
    bool waited = true;
    /// The content of the file after -dfile.
    std::optional<std::string> shown;

    bool operator==(const Dialog&) const = default;
};
using Dialogs = std::vector<Dialog>;

/// Prints a dialog as one readable line, for failures.
void PrintTo(const Dialog& dialog, std::ostream* stream);

/// A question with buttons.
Dialog asked(const std::string& text, const std::string& def = "yes",
             const std::string& mask = "yes,no,abort");

/// A message that stays on the screen while the program continues, or that it waits for.
Dialog advised(const std::string& text);
Dialog advised_and_waited(const std::string& text);

/// The error that ended the program.
Dialog griped(const std::string& text);

/// A text prompt whose default is passed in the command line or in a file.
Dialog prompted(const std::string& text, const std::string& def);
Dialog prompted_from_file(const std::string& text, const std::string& def);

/// A file shown under a title.
Dialog showed_file(const std::string& title, const std::string& file, const std::string& content,
                   bool errors);

/// A list to pick one entry from, or several.
Dialog listed(const std::string& title, const std::string& items);
Dialog listed_for_several(const std::string& title, const std::string& items);

/// The file dialog with a start directory (ending in '/'), or without one.
Dialog file_dialog_in(const std::string& directory);
Dialog file_dialog_without_directory();

}  // namespace gatescope
