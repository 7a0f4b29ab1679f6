#pragma once

#include <algorithm>
#include <cstdio>
#include <string>

#include "report/time_graphs.h"
#include "units/report/page_text.h"

// The pieces of a time graph as they stand in a page.

/// A day's column as it begins.
inline std::string column_start(int day) {
    char text[200];
    std::snprintf(text, sizeof text,
                  "\n   <!-- cell %03d -->\n   <td>\n      <table class=\"tight\" >\n"
                  "         <tr><td class=\"bottom_line_pencil\" width=6 height=2></td></tr>\n",
                  day);
    return text;
}

inline std::string part(const std::string& part_class, int height, const std::string& title) {
    return "         <tr class=\"hot_row\" ><td class=\"" + part_class +
           "\" height=" + std::to_string(height) + " width=6 title=\"" + title +
           "\" onmouseover=\"ShowTitle(this);\" ></td></tr>\n";
}

inline const std::string LINE =
    "         <tr class=\"hot_row\" ><td class=\"bottom_line_pencil\" width=6 height=2 "
    "></td></tr>\n";

inline std::string no_data(int day) {
    return "\n         <tr class=\"hot_row\" ><td height=100 width=6 title=\"No data was "
           "available " +
           std::to_string(day) +
           " day(s) ago...\" onmouseover=\"ShowTitle(this);\" class=\"bottom_line_space\" "
           "></td></tr>\n"
           "         <tr><td width=6 height=2 class=\"bottom_line_pencil\" ></td></tr>\n";
}

/// A day's column as it ends.
inline std::string column_end(int day, const std::string& block) {
    return "         <tr class=\"hot_row\" ><td class=\"bottom_space_pencil\" width=6 height=1 "
           "></td></tr>\n"
           "         <tr class=\"hot_row\" ><th class=\"time_block\" width=6 height=8 "
           "title=\"day " +
           std::to_string(day) +
           "\" onmouseover=\"ShowTitle(this);\" ><center><table class=\"time_block\" "
           "CELLSPACING=1 ><tr><td class=\"" +
           block +
           "\" ></td></tr></table></center></th></tr>\n"
           "      </table>\n   </td>\n";
}

inline const std::string TICK = "\n   <td class=\"bottom_line_pencil\" width=2 ></td>\n";

/// The column of a day with its tick, up to the next column or the end of the row.
inline std::string column(const std::string& page, int day) {
    const std::string next = day > 0 ? column_start(day - 1) : "\n</tr>\n";
    return piece(page, column_start(day), next);
}

/// A test of time graphs.
class TimeGraphText : public PageText {
  protected:
    /// A twist page of a region whose oldest record is `first_cell` days old.
    std::string twist_page(int first_cell) {
        result.first_cell_read = first_cell;
        for (std::size_t day = 0; day < result.cell_success.size(); ++day) {
            result.cell_success_max = std::max(result.cell_success_max, result.cell_success[day]);
            result.cell_denied_max = std::max(result.cell_denied_max, result.cell_denied[day]);
        }
        return page_of([&](Page* page) { Display_Graph__twist(result, page); });
    }
    std::string bits_page() const {
        return page_of([&](Page* page) { Display_Graph__success_only(result, "bits", page); });
    }
    std::string keys_page() const {
        return page_of([&](Page* page) { Display_Graph__denied_only(result, "keys", page); });
    }
};
