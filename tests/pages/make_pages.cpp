// Writes report pages with invented counts, and the counts beside them, so that what a browser
// shows can be held against what was counted.
//
//     make_pages DIRECTORY
//
// The pages get the names that a query of 7 January 2026, 08:09:05, gives them; counts.json holds
// what each of them was made from.

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include "base/filled.h"
#include "dialog/messages.h"
#include "logs/query_data.h"
#include "policy/gatebits_file.h"
#include "policy/region.h"
#include "report/graph.h"

namespace {

void clear_counts() {
    cell_success.fill(0);
    cell_denied.fill(0);
    cell_read.fill(0);
    cell_success_max = cell_denied_max = cell_max = 0;
    first_cell_read = highest_key_read = -1;
    for (std::size_t day = 0; day < cell_time.size(); ++day) {
        cell_time[day] = filled("Wed Jan  7 2026 - %zu days ago", day);
    }
}

/// Counts of all sizes: none, one, the largest, and what lies between.
void count_days() {
    first_cell_read = 99;
    for (std::size_t day = 0; day <= 99; ++day) {
        const auto number = static_cast<std::uint32_t>(day);
        cell_success[day] = day % 7 == 0 ? 0 : number * number * 3 % 1000;
        cell_denied[day] = day % 5 == 0 ? 0 : number * 37 % 613;
        cell_read[day] = cell_success[day] + cell_denied[day] > 0 ? 1 : 0;
    }
    cell_success[1] = 1;
    cell_success[2] = 1000;
    cell_denied[3] = 613;
    cell_success_max = *std::max_element(cell_success.begin(), cell_success.end());
    cell_denied_max = *std::max_element(cell_denied.begin(), cell_denied.end());
}

void count_numbers(std::size_t numbers) {
    for (std::size_t number = 0; number < numbers; ++number) {
        cell_success[number] = static_cast<std::uint32_t>(number * number * number % 500);
    }
    cell_success[2] = 1;
    cell_success[3] = 2000;
    cell_max = 2000;
    highest_key_read = static_cast<std::int32_t>(numbers) - 1;
    cell_time[0] = "Wed Sep 10 2025";
    cell_time[1] = "Wed Jan  7 2026";
}

template <typename Counts>
std::string json_of(const Counts& counts) {
    std::string list = "[";
    for (const auto count : counts) list += (list.size() > 1 ? "," : "") + std::to_string(count);
    return list + "]";
}

void make_page(int query, const std::string& title, std::ofstream& json) {
    graph_title = title;
    Make_Graph(query, false);
    json << (query > 1 ? ",\n" : "{\n") << '"' << query << R"(": {"success": )"
         << json_of(cell_success) << R"(, "denied": )" << json_of(cell_denied) << R"(, "read": )"
         << json_of(cell_read) << R"(, "first_cell_read": )" << first_cell_read
         << R"(, "highest_key_read": )" << highest_key_read << "}";
}

void write_gatebits_file(const std::string& path) {
    ENTERPRIZE_PERMISSION_FILE = path;
    std::ofstream file(path);
    for (int line = 1; line <= 8; ++line) file << "region;\n";
    for (int key = 1; key <= 10; ++key) file << "lock;key <" << key << "> & more;\n";
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("usage: make_pages DIRECTORY\n", stderr);
        return EXIT_FAILURE;
    }
    results_dir = argv[1];
    ENTERPRIZE_NAME = "east";
    ZUL_PREFER_GUI = 0;
    last_query_time = {5, 9, 8, 7, 0, 126};
    write_gatebits_file(results_dir + "/gatebits.txt");
    std::ofstream json(results_dir + "/counts.json");

    clear_counts();
    count_days();
    make_page(1, "Allowed and denied", json);
    make_page(2, "Bits", json);
    make_page(3, "Keys", json);
    clear_counts();
    count_numbers(24);
    make_page(4, "Bit vs. bit", json);
    clear_counts();
    count_numbers(13);
    make_page(5, "Key vs. key", json);
    // A region without a single record.
    clear_counts();
    make_page(6, "Nothing", json);
    json << "}\n";
    json.close();
    return json ? EXIT_SUCCESS : EXIT_FAILURE;
}
