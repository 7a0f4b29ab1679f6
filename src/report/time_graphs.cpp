#include "report/time_graphs.h"

#include <algorithm>
#include <array>
#include <span>
#include <string>

#include "report/bars.h"
#include "report/day_titles.h"
#include "report/page_html.h"
#include "report/time_graph_html.h"

namespace gatescope {
namespace {

/// One bar of a day's column.
struct Bar {
    std::array<std::uint32_t, QUERY_DAYS> QueryResult::*counts;
    const char* bar_class;
    std::string (*title)(const QueryResult& result, int day, const char* noun);
    /// Whether the bar extends downwards from the line above it.
    bool is_downward;
};

// From top to bottom. A single bar is red in both graphs.
constexpr std::array<Bar, 2> TWIST_BARS = {
    {{&QueryResult::cell_success, CELL_SUCCESS, title_of_allowed, false},
     {&QueryResult::cell_denied, CELL_FAILURE, title_of_denied, true}}};
constexpr std::array<Bar, 1> SUCCESS_BAR = {
    {{&QueryResult::cell_success, CELL_FAILURE, title_of_invoked, false}}};
constexpr std::array<Bar, 1> DENIED_BAR = {
    {{&QueryResult::cell_denied, CELL_FAILURE, title_of_invoked_to_deny, false}}};

/// The parameters of a graph.
struct TimeGraph {
    const QueryResult& result;
    std::span<const Bar> bars;
    /// The count of a full bar.
    std::uint32_t scale;
    /// The things counted.
    const char* noun;
    Page* page;
};

/// Prints nothing for a height of 0.
void print_part(Page* page, const char* part_class, int height, const std::string& title) {
    if (height > 0) page->print(CELL_PART, part_class, height, title.c_str());
}

void print_bar(const TimeGraph& graph, const Bar& bar, int day) {
    const auto& counts = graph.result.*bar.counts;
    const int height = bar_height(counts.at(static_cast<std::size_t>(day)), graph.scale);
    const std::string title = bar.title(graph.result, day, graph.noun);
    if (bar.is_downward) print_part(graph.page, bar.bar_class, height, title);
    print_part(graph.page, CELL_EXTRA, DAY_BAR_PIXELS - height, title);
    if (!bar.is_downward) print_part(graph.page, bar.bar_class, height, title);
    graph.page->add(ROW_PENCIL);
}

void print_column(const TimeGraph& graph, int day) {
    const auto row = static_cast<std::size_t>(day);
    graph.page->print(CELL_START, day);
    for (const Bar& bar : graph.bars) {
        if (day <= graph.result.first_cell_read) {
            print_bar(graph, bar, day);
        } else {
            graph.page->print(EMPTY_TIME_LINE, day);
        }
    }
    graph.page->add(ROW_SPACE);
    const bool populated = graph.result.cell_read.at(row) != 0;
    graph.page->print(ROW_TIME, graph.result.cell_time.at(row).c_str(),
                      populated ? BLOCK_CLASS_POPULATED : BLOCK_CLASS_UNPOPULATED);
    graph.page->add(END_TABLE_AND_TD);
    if (day % 5 == 0) graph.page->add(ROW_TICK);
}

/// Prints all parts after the opening of the graph.
void print_columns(const TimeGraph& graph) {
    for (int day = QUERY_DAYS - 1; day >= 0; --day) print_column(graph, day);
    const auto& labels = graph.result.cell_time;
    graph.page->print(BOTTOM_TIME_GRAPH, labels.back().c_str(), labels.front().c_str(),
                      DISPLAY_TEXT_WIDGET);
    graph.page->print_block_to_file__tail();
}

void print_single(const TimeGraph& graph) {
    graph.page->print_block_to_file__header();
    graph.page->print(TOP_TIME_GRAPH, graph.scale);
    print_columns(graph);
}

}  // namespace

void Display_Graph__twist(const QueryResult& result, Page* page) {
    const std::uint32_t scale = std::max(result.cell_success_max, result.cell_denied_max);
    page->print_block_to_file__header();
    page->print(TOP_TWIST_GRAPH, scale, scale);
    print_columns({result, TWIST_BARS, scale, "", page});
}

void Display_Graph__success_only(const QueryResult& result, const char* noun, Page* page) {
    print_single({result, SUCCESS_BAR, result.cell_success_max, noun, page});
}

void Display_Graph__denied_only(const QueryResult& result, const char* noun, Page* page) {
    print_single({result, DENIED_BAR, result.cell_denied_max, noun, page});
}

}  // namespace gatescope
