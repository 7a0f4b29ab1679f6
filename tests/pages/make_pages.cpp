// Writes report pages with invented counts, and these counts as JSON, to compare with what a
// browser shows.
//
//     make_pages DIRECTORY
//
// The pages are named as by queries of 7 January 2026, 08:09:05; counts.json has the counts of
// each.

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include "base/filled.h"
#include "dialog/messages.h"
#include "logs/query_data.h"
#include "report/graph.h"

namespace gatescope {
namespace {

QueryResult no_counts() {
    QueryResult result;
    result.asked.period.last_query_time = {5, 9, 8, 7, 0, 126};
    for (std::size_t day = 0; day < result.cell_time.size(); ++day) {
        result.cell_time[day] = filled("Wed Jan  7 2026 - %zu days ago", day);
    }
    return result;
}

/// Counts of all sizes: zero, one, the largest, and others between.
QueryResult count_days() {
    QueryResult result = no_counts();
    result.first_cell_read = 99;
    for (std::size_t day = 0; day <= 99; ++day) {
        const auto number = static_cast<std::uint32_t>(day);
        result.cell_success[day] = day % 7 == 0 ? 0 : number * number * 3 % 1000;
        result.cell_denied[day] = day % 5 == 0 ? 0 : number * 37 % 613;
        result.cell_read[day] = result.cell_success[day] + result.cell_denied[day] > 0 ? 1 : 0;
    }
    result.cell_success[1] = 1;
    result.cell_success[2] = 1000;
    result.cell_denied[3] = 613;
    result.cell_success_max =
        *std::max_element(result.cell_success.begin(), result.cell_success.end());
    result.cell_denied_max =
        *std::max_element(result.cell_denied.begin(), result.cell_denied.end());
    return result;
}

QueryResult count_numbers(std::size_t numbers) {
    QueryResult result = no_counts();
    for (std::size_t number = 0; number < numbers; ++number) {
        result.cell_success[number] = static_cast<std::uint32_t>(number * number * number % 500);
    }
    result.cell_success[2] = 1;
    result.cell_success[3] = 2000;
    result.cell_max = 2000;
    result.highest_key_read = static_cast<std::int32_t>(numbers) - 1;
    result.cell_time[0] = "Wed Sep 10 2025";
    result.cell_time[1] = "Wed Jan  7 2026";
    return result;
}

KeyLines key_lines() {
    KeyLines lines;
    for (int key = 1; key <= 10; ++key) lines.push_back(filled("lock;key <%d> & more;", key));
    return lines;
}

template <typename Counts>
std::string json_of(const Counts& counts) {
    std::string list = "[";
    for (const auto count : counts) list += (list.size() > 1 ? "," : "") + std::to_string(count);
    return list + "]";
}

void make_page(int query, const std::string& title, QueryResult result,
               const std::string& directory, std::ofstream& json) {
    result.asked.query = query;
    Make_Graph({title, result, key_lines()}, {"east", "gatebits.txt", directory, ""}, false);
    json << (query > 1 ? ",\n" : "{\n") << '"' << query << R"(": {"success": )"
         << json_of(result.cell_success) << R"(, "denied": )" << json_of(result.cell_denied)
         << R"(, "read": )" << json_of(result.cell_read) << R"(, "first_cell_read": )"
         << result.first_cell_read << R"(, "highest_key_read": )" << result.highest_key_read << "}";
}

}  // namespace
}  // namespace gatescope

int main(int argc, char** argv) {
    using namespace gatescope;
    if (argc != 2) {
        std::fputs("usage: make_pages DIRECTORY\n", stderr);
        return EXIT_FAILURE;
    }
    const std::string directory = argv[1];
    ZUL_PREFER_GUI = 0;
    std::ofstream json(directory + "/counts.json");

    make_page(1, "Allowed and denied", count_days(), directory, json);
    make_page(2, "Bits", count_days(), directory, json);
    make_page(3, "Keys", count_days(), directory, json);
    make_page(4, "Bit vs. bit", count_numbers(24), directory, json);
    make_page(5, "Key vs. key", count_numbers(13), directory, json);
    // A region without a single record.
    make_page(6, "Nothing", no_counts(), directory, json);
    json << "}\n";
    json.close();
    return json ? EXIT_SUCCESS : EXIT_FAILURE;
}
