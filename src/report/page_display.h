#pragma once

#include <string>

namespace gatescope {

/// The region of a page: where pages go, and how messages about one name it.
struct PageRegion {
    std::string ENTERPRIZE_NAME;
    std::string ENTERPRIZE_PERMISSION_FILE;
    /// Directory of the pages, without a delimiter at its end.
    std::string results_dir;
    /// The browser that the gatebits file names; may be empty.
    std::string browser;
};

/// A page on the disk, and the last part of its path.
struct StoredPage {
    std::string path;
    std::string name;
};

/// Shows a finished page: in the browser, or, without `display`, as a line on standard output that
/// names it. Whatever goes wrong with the browser is told to the operator; the page stays.
void display_page(const StoredPage& page, const PageRegion& region, bool display);

}  // namespace gatescope
