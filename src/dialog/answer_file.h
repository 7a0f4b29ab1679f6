#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace gatescope {

/// A file that a dialog writes its answer into. It exists, empty, before the dialog starts, so
/// that nobody else can put one of theirs in its place, and goes with this object.
class AnswerFile {
  public:
    /// Gripes when the file cannot be created.
    explicit AnswerFile(const std::string& path);
    ~AnswerFile();
    AnswerFile(const AnswerFile&) = delete;
    AnswerFile& operator=(const AnswerFile&) = delete;

    [[nodiscard]] const std::string& path() const { return path_; }

    /// What the dialog wrote, at most `limit` bytes of it. Nothing when it did not write the file
    /// or the file is gone. Half an answer is none: when it cannot be read, `*failed` says so, and
    /// without `failed` this gripes.
    [[nodiscard]] std::optional<std::string> content(std::size_t limit = std::string::npos,
                                                     bool* failed = nullptr) const;

  private:
    std::string path_;
};

/// Where a text dialog writes its answer.
std::string prompt_result_path();

/// Runs a dialog that shows `text`; what was typed, as its words joined by single blanks. Nothing
/// when it was cancelled.
std::optional<std::string> answer_in_words(const std::string& command, const std::string& text,
                                           const AnswerFile& answer);

}  // namespace gatescope
