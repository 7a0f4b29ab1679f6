#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "logs/query_data.h"
#include "report/graph.h"

// What the page writers print, and parts of it.

/// What `write` prints to DISPLAY_STREAM.
template <typename Writer>
std::string page_of(Writer write) {
    char* bytes = nullptr;
    std::size_t size = 0;
    DISPLAY_STREAM = open_memstream(&bytes, &size);
    write();
    std::fclose(DISPLAY_STREAM);
    DISPLAY_STREAM = nullptr;
    const std::string page(bytes, size);
    std::free(bytes);
    return page;
}

/// How often `part` stands in `text`.
inline int times_in(std::string_view text, std::string_view part) {
    int times = 0;
    for (std::size_t at = text.find(part); at != std::string_view::npos;
         at = text.find(part, at + part.size())) {
        ++times;
    }
    return times;
}

/// The piece of `text` from `begin` up to, and without, the next `end` behind it; empty when
/// either is missing.
inline std::string piece(const std::string& text, const std::string& begin,
                         const std::string& end) {
    const std::size_t from = text.find(begin);
    if (from == std::string::npos) return "";
    const std::size_t to = text.find(end, from + begin.size());
    return to == std::string::npos ? "" : text.substr(from, to - from);
}

/// A test that begins with what an empty region leaves: no counts, and plain labels.
class PageText : public testing::Test {
  protected:
    PageText() {
        cell_success.fill(0);
        cell_denied.fill(0);
        cell_read.fill(0);
        cell_success_max = cell_denied_max = cell_max = 0;
        first_cell_read = highest_key_read = -1;
        for (std::size_t day = 0; day < cell_time.size(); ++day) {
            cell_time[day] = "day " + std::to_string(day);
        }
        graph_title = "Title";
    }
};
