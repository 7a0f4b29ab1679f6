#pragma once

#include <string>

namespace gatescope {

/// The region of a page, with the directory of its pages and its name in messages.
struct PageRegion {
    std::string ENTERPRIZE_NAME;
    std::string ENTERPRIZE_PERMISSION_FILE;
    /// Directory of the pages, without a trailing delimiter.
    std::string results_dir;
    /// The browser that the gatebits file names; may be empty.
    std::string browser;
};

/// A page on the disk: its path, and the last component of it.
struct StoredPage {
    std::string path;
    std::string name;
};

/// Shows a finished page in the browser or, without `display`, prints its path on standard output.
/// Errors of the browser are reported to the operator; the page is kept.
void display_page(const StoredPage& page, const PageRegion& region, bool display);

}  // namespace gatescope
