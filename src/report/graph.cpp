#include "report/graph.h"

#include "base/filled.h"
#include "base/run_identity.h"
#include "dialog/messages.h"
#include "messages/graph_texts.h"
#include "report/csv.h"
#include "report/page.h"
#include "report/page_file.h"
#include "report/time_graphs.h"

namespace {

/// Year, month, day, hour, minute, second, query number.
constexpr char PAGE_FILE_NAME[] = "%04d%02d%02d_%02d%02d%02d_Q%02d.html";
/// Directory, delimiter, name.
constexpr char PAGE_FILE_PATH[] = "%s%c%s";

/// The page's file is named after the moment of its query.
std::string page_name(const RecordQuery& asked) {
    const auto [second, minute, hour, day, month, year] = asked.period.last_query_time;
    return filled(PAGE_FILE_NAME, year + 1900, month + 1, day, hour, minute, second, asked.query);
}

void write_page(const QueryGraph& graph, Page* page) {
    switch (graph.result.asked.query) {
        case 1:
        case 6:
            return Display_Graph__twist(graph.result, page);
        case 2:
            return Display_Graph__success_only(graph.result, "bits", page);
        case 3:
            return Display_Graph__denied_only(graph.result, "keys", page);
        case 4:
            return Display_Graph__hbars_Bits(graph.result, page);
        case 5:
            return Display_Graph__hbars_Keys(graph.result, graph.key_lines, page);
        default:
            gripe_uncoded("Make_Graph");
    }
}

}  // namespace

void Make_Graph(const QueryGraph& graph, const PageRegion& region, bool display) {
    const std::string name = page_name(graph.result.asked);
    const std::string path =
        filled(PAGE_FILE_PATH, region.results_dir.c_str(), DIR_DELIMETER, name.c_str());
    Page page(graph.graph_title);
    write_page(graph, &page);
    // A page of the same second and query is added to, so nothing that was reported gets lost.
    append_page(path, page.text());
    if (csv_is_wanted()) store_csv(csv_path(path), csv_of(graph.result, graph.key_lines));
    display_page({path, name}, region, display);
}
