#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "logs/query_data.h"
#include "report/page.h"

// What the page writers print, and parts of it.

/// The page of that title that `write` makes.
template <typename Writer>
std::string page_of(Writer write, const std::string& graph_title = "Title") {
    Page page(graph_title);
    write(&page);
    return page.text();
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

/// The piece of `text` from `begin` up to, and without, the next `end` after it; empty when
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
        for (std::size_t day = 0; day < result.cell_time.size(); ++day) {
            result.cell_time[day] = "day " + std::to_string(day);
        }
    }

    QueryResult result;
};
