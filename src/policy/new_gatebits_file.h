#pragma once

#include <string>

#include "policy/history.h"

namespace gatescope {

/// What became of a new gatebits file.
enum class NewFile {
    CREATED,
    EXISTS,       ///< somebody's file stands under that name; it was not touched
    NOT_CREATED,  ///< there cannot be a file of that name, or not for us
};

/// Creates the file `path` with `text` in it. It appears under its name whole and on the disk, or
/// not at all, whatever stops the program, and never takes the place of another file. Where `path`
/// is a link that leads nowhere, the file that it leads to is created; but a link of somebody else
/// in a directory that everybody may write is not followed. Gripes, naming the file, the reason and
/// the state, when the text cannot be written. Where a history is kept, what `change` says stands
/// in it before the file does.
NewFile create_gatebits_file(const std::string& path, const std::string& text,
                             const RecordedChange& change);

/// All bytes of the gatebits file `path`, when nobody is changing it; gripes with the words of a
/// copy to `destination` when it cannot be read, or somebody keeps its lock.
std::string bytes_to_copy(const std::string& path, const std::string& destination);

}  // namespace gatescope
