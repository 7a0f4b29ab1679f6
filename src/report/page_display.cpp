#include "report/page_display.h"

#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <optional>

#include "base/child.h"
#include "base/filled.h"
#include "base/standard_streams.h"
#include "dialog/clearprompt.h"
#include "dialog/messages.h"
#include "messages/environment.h"
#include "messages/graph_texts.h"

namespace gatescope {
namespace {

/// Quoted browser, path of the page.
constexpr char BROWSER_LINE[] = "%s %s";

using Clock = std::chrono::steady_clock;

/// A browser that ran longer than this has started, so its status is ignored.
constexpr std::chrono::seconds LONGEST_FAILED_START{2};

/// A browser, and the variable or file that defines it.
struct Browser {
    std::string path;
    BrowserPlace place;
    std::string source;
};

/// The browser of the environment, even if that is empty, else of the gatebits file; nothing if
/// neither defines one.
std::optional<Browser> choose_browser(const PageRegion& region) {
    if (const char* browser = std::getenv(ENV_BROWSER)) {
        return Browser{browser, BY_THE_ENVIRONMENT, ENV_BROWSER};
    }
    if (region.browser.empty()) return std::nullopt;
    return Browser{region.browser, IN_THE_GATEBITS_FILE, region.ENTERPRIZE_PERMISSION_FILE};
}

void run_browser(const std::string& browser, const std::string& page) {
    const auto start = Clock::now();
    const int status =
        run_in_shell(filled(BROWSER_LINE, quoted(browser).c_str(), path_argument(page).c_str()));
    if (status != 0 && Clock::now() - start <= LONGEST_FAILED_START) {
        advise(filled(BROWSER_FAILED, status, browser.c_str()));
    }
}

}  // namespace

void display_page(const StoredPage& page, const PageRegion& region, bool display) {
    const char* path = page.path.c_str();
    const char* name = region.ENTERPRIZE_NAME.c_str();
    if (!display) return write_output(filled(PAGE_STORED, path, name));
    const auto browser = choose_browser(region);
    if (!browser) {
        return advise(
            filled(NO_BROWSER_DEFINED, path, region.ENTERPRIZE_PERMISSION_FILE.c_str(), name));
    }
    if (access(browser->path.c_str(), F_OK) != 0) {
        return advise(filled(BROWSER_DOES_NOT_EXIST, path, browser->path.c_str(), name,
                             browser->place.preposition, browser->place.kind,
                             browser->source.c_str()));
    }
    advise(filled(DISPLAYING_GRAPH, page.name.c_str()));
    run_browser(browser->path, page.path);
}

}  // namespace gatescope
