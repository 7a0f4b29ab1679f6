#include "report/graph.h"

#include <cerrno>
#include <cstring>

#include "base/filled.h"
#include "base/startup.h"
#include "dialog/messages.h"
#include "logs/log_files.h"
#include "messages/graph_texts.h"
#include "policy/region.h"
#include "report/bar_lists.h"
#include "report/page_display.h"
#include "report/time_graphs.h"

FILE* DISPLAY_STREAM = nullptr;
std::string graph_title;
std::string browser;

namespace {

std::string page_name(int query) {
    const auto [second, minute, hour, day, month, year] = last_query_time;
    return filled(PAGE_FILE_NAME, year + 1900, month + 1, day, hour, minute, second, query);
}

/// A page of the same second and query is added to, so nothing that was reported gets lost.
void open_page(const std::string& path) {
    DISPLAY_STREAM = std::fopen(path.c_str(), "a+");
    if (DISPLAY_STREAM == nullptr) gripe(filled(CANNOT_OPEN_PAGE, path.c_str()));
}

void write_page(int query) {
    switch (query) {
        case 1:
        case 6:
            return Display_Graph__twist();
        case 2:
            return Display_Graph__success_only("bits");
        case 3:
            return Display_Graph__denied_only("keys");
        case 4:
            return Display_Graph__hbars_Bits();
        case 5:
            return Display_Graph__hbars_Keys();
        default:
            gripe_uncoded("Make_Graph");
    }
}

/// Only here does it show whether everything that was printed has reached the file.
void close_page(const std::string& path) {
    const bool written = std::fflush(DISPLAY_STREAM) == 0 && std::ferror(DISPLAY_STREAM) == 0;
    const int write_error = errno;
    const bool closed = std::fclose(DISPLAY_STREAM) == 0;
    const int reason = written ? errno : write_error;
    DISPLAY_STREAM = nullptr;
    if (!written || !closed) {
        gripe(filled(CANNOT_WRITE_PAGE, path.c_str(), std::strerror(reason)));
    }
}

}  // namespace

void Make_Graph(int query, bool display) {
    const std::string name = page_name(query);
    const std::string path =
        filled(PAGE_FILE_PATH, results_dir.c_str(), DIR_DELIMETER, name.c_str());
    open_page(path);
    write_page(query);
    close_page(path);
    display_page(path, name, display);
}
