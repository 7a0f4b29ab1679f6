#pragma once

#include <string>

namespace gatescope {

/// `text` as a page shows it: what HTML would take for its own is written as entities.
std::string text_in_page(const std::string& text);

/// A report page as it grows, in memory: it is self-contained, its style and script stand in it,
/// and it needs no pictures.
class Page {
  public:
    /// `graph_title` is the heading; it may hold HTML.
    explicit Page(std::string graph_title);

    /// Opens the page: stamp, script, style sheet, form and heading.
    void print_block_to_file__header();
    /// Closes what the header opened, and says where help is to be had.
    void print_block_to_file__tail();

    /// Adds a filled template to the page.
    [[gnu::format(printf, 2, 3)]] void print(const char* format, ...);
    /// Adds a text as it stands.
    void add(const char* text) { text_ += text; }

    /// What the page holds so far.
    [[nodiscard]] const std::string& text() const { return text_; }

  private:
    std::string graph_title_;
    std::string text_;
};

}  // namespace gatescope
