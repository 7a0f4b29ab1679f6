#pragma once

#include <string>

namespace gatescope {

/// `text` with the special characters of HTML replaced by entities.
std::string text_in_page(const std::string& text);

/// A report page in memory. It is self-contained: style sheet and script are part of it, and it has
/// no images.
class Page {
  public:
    /// `graph_title` is the heading; it may contain HTML.
    explicit Page(std::string graph_title);

    /// Adds the stamp, the script, the style sheet, the opening of the form and the heading.
    void print_block_to_file__header();
    /// Adds the address for help, and closes the elements that the header opened.
    void print_block_to_file__tail();

    /// Adds a filled template to the page.
    [[gnu::format(printf, 2, 3)]] void print(const char* format, ...);
    /// Adds a text unchanged.
    void add(const char* text) { text_ += text; }

    /// The text of the page so far.
    [[nodiscard]] const std::string& text() const { return text_; }

  private:
    std::string graph_title_;
    std::string text_;
};

}  // namespace gatescope
