#include "report/page_display.h"

#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <optional>

#include "base/child.h"
#include "base/filled.h"
#include "base/standard_streams.h"
#include "dialog/messages.h"
#include "messages/environment.h"
#include "messages/graph_texts.h"
#include "policy/gatebits_file.h"
#include "policy/region.h"
#include "policy/tool_variables.h"
#include "report/graph.h"

namespace {

using Clock = std::chrono::steady_clock;

/// A browser that ran longer than this has been used, so its status means nothing.
constexpr std::chrono::seconds LONGEST_FAILED_START{2};

/// Where the browser is defined, in the words of the message about a missing one.
struct BrowserSource {
    const char* preposition;
    const char* kind;
    std::string name;
};

/// Sets `browser` from the environment, even if it is empty there, or else from the gatebits
/// file; nothing when neither defines one.
std::optional<BrowserSource> choose_browser() {
    browser = GS_VAR[UNIX_BROWSER];
    if (const char* wish = std::getenv(ENV_BROWSER)) {
        browser = wish;
        return BrowserSource{"by", "the environmental variable", ENV_BROWSER};
    }
    if (browser.empty()) return std::nullopt;
    return BrowserSource{"in", "the gatebits file", ENTERPRIZE_PERMISSION_FILE};
}

void run_browser(const std::string& path) {
    const auto start = Clock::now();
    const int status = run_in_shell(filled(BROWSER_LINE, browser.c_str(), path.c_str()));
    if (status != 0 && Clock::now() - start <= LONGEST_FAILED_START) {
        advise(filled(BROWSER_FAILED, status, browser.c_str()));
    }
}

}  // namespace

void display_page(const std::string& path, const std::string& name, bool display) {
    if (!display) {
        write_output(filled(PAGE_STORED, path.c_str(), ENTERPRIZE_NAME.c_str()));
        return;
    }
    const auto source = choose_browser();
    if (!source) {
        return advise(filled(NO_BROWSER_DEFINED, path.c_str(), ENTERPRIZE_PERMISSION_FILE.c_str(),
                             ENTERPRIZE_NAME.c_str()));
    }
    if (access(browser.c_str(), F_OK) != 0) {
        return advise(filled(BROWSER_DOES_NOT_EXIST, path.c_str(), browser.c_str(),
                             ENTERPRIZE_NAME.c_str(), source->preposition, source->kind,
                             source->name.c_str()));
    }
    advise(filled(DISPLAYING_GRAPH, name.c_str()));
    run_browser(path);
}
