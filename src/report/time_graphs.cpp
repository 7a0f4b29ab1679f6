#include "report/time_graphs.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <span>
#include <string>

#include "logs/query_data.h"
#include "messages/page_texts.h"
#include "messages/time_graph_texts.h"
#include "report/bars.h"
#include "report/day_titles.h"
#include "report/graph.h"
#include "report/page.h"

namespace {

/// One bar of a day's column.
struct Bar {
    const std::array<std::uint32_t, QUERY_DAYS>* counts;
    const char* bar_class;
    std::string (*title)(int day, const char* what);
    /// Whether it hangs from the line above it instead of standing on the one below.
    bool hangs;
};

/// What tells the time graphs apart.
struct TimeGraph {
    std::uint32_t (*scale)();
    void (*print_opening)(std::uint32_t scale);
    /// From top to bottom.
    std::span<const Bar> bars;
};

std::uint32_t larger_maximum() {
    return std::max(cell_success_max, cell_denied_max);
}
std::uint32_t success_maximum() {
    return cell_success_max;
}
std::uint32_t denied_maximum() {
    return cell_denied_max;
}

void open_twist(std::uint32_t scale) {
    std::fprintf(DISPLAY_STREAM, TOP_TWIST_GRAPH, scale, scale);
}
void open_single(std::uint32_t scale) {
    std::fprintf(DISPLAY_STREAM, TOP_TIME_GRAPH, scale);
}

// A single bar is red, whatever it counts.
constexpr std::array<Bar, 2> TWIST_BARS = {{{&cell_success, CELL_SUCCESS, title_of_allowed, false},
                                            {&cell_denied, CELL_FAILURE, title_of_denied, true}}};
constexpr std::array<Bar, 1> SUCCESS_BAR = {
    {{&cell_success, CELL_FAILURE, title_of_invoked, false}}};
constexpr std::array<Bar, 1> DENIED_BAR = {
    {{&cell_denied, CELL_FAILURE, title_of_invoked_to_deny, false}}};

constexpr TimeGraph TWIST = {larger_maximum, open_twist, TWIST_BARS};
constexpr TimeGraph SUCCESS_ONLY = {success_maximum, open_single, SUCCESS_BAR};
constexpr TimeGraph DENIED_ONLY = {denied_maximum, open_single, DENIED_BAR};

/// A part without height is left out.
void print_part(const char* part_class, int height, const std::string& title) {
    if (height > 0) std::fprintf(DISPLAY_STREAM, CELL_PART, part_class, height, title.c_str());
}

void print_bar(const Bar& bar, int day, const char* what) {
    const int height = bar_height(bar.counts->at(static_cast<std::size_t>(day)), cell_max);
    const std::string title = bar.title(day, what);
    if (bar.hangs) print_part(bar.bar_class, height, title);
    print_part(CELL_EXTRA, DAY_BAR_PIXELS - height, title);
    if (!bar.hangs) print_part(bar.bar_class, height, title);
    std::fputs(ROW_PENCIL, DISPLAY_STREAM);
}

void print_column(const TimeGraph& graph, int day, const char* what) {
    const auto row = static_cast<std::size_t>(day);
    std::fprintf(DISPLAY_STREAM, CELL_START, day);
    for (const Bar& bar : graph.bars) {
        if (day <= first_cell_read) {
            print_bar(bar, day, what);
        } else {
            std::fprintf(DISPLAY_STREAM, EMPTY_TIME_LINE, day);
        }
    }
    std::fputs(ROW_SPACE, DISPLAY_STREAM);
    std::fprintf(DISPLAY_STREAM, ROW_TIME, cell_time.at(row).c_str(),
                 cell_read.at(row) != 0 ? BLOCK_CLASS_POPULATED : BLOCK_CLASS_UNPOPULATED);
    std::fputs(END_TABLE_AND_TD, DISPLAY_STREAM);
    if (day % 5 == 0) std::fputs(ROW_TICK, DISPLAY_STREAM);
}

void print_page(const TimeGraph& graph, const char* what) {
    cell_max = graph.scale();
    print_block_to_file__header();
    graph.print_opening(cell_max);
    for (int day = QUERY_DAYS - 1; day >= 0; --day) print_column(graph, day, what);
    std::fprintf(DISPLAY_STREAM, BOTTOM_TIME_GRAPH, cell_time.back().c_str(),
                 cell_time.front().c_str(), DISPLAY_TEXT_WIDGET);
    print_block_to_file__tail();
}

}  // namespace

void Display_Graph__twist() {
    print_page(TWIST, "");
}

void Display_Graph__success_only(const char* what) {
    print_page(SUCCESS_ONLY, what);
}

void Display_Graph__denied_only(const char* what) {
    print_page(DENIED_ONLY, what);
}
