#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace gatescope {

/// A file for the answer of a dialog. It is created empty before the dialog starts, so that no
/// other user can create it, and removed by the destructor.
class AnswerFile {
  public:
    /// Gripes when the file cannot be created.
    explicit AnswerFile(const std::string& path);
    ~AnswerFile();
    AnswerFile(const AnswerFile&) = delete;
    AnswerFile& operator=(const AnswerFile&) = delete;

    [[nodiscard]] const std::string& path() const { return path_; }

    /// The first `limit` bytes of what the dialog wrote; nothing when it did not write the file or
    /// the file is gone. A read error sets `*failed`, or gripes when `failed` is null.
    [[nodiscard]] std::optional<std::string> content(std::size_t limit = std::string::npos,
                                                     bool* failed = nullptr) const;

  private:
    std::string path_;
};

/// The path of the answer of a text dialog.
std::string prompt_result_path();

/// Runs a dialog that shows `text`. The words of the answer, joined by single blanks; nothing when
/// the dialog was cancelled.
std::optional<std::string> ask_for_words(const std::string& command, const std::string& text,
                                         const AnswerFile& answer);

}  // namespace gatescope
