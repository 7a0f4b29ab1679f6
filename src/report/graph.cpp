#include "report/graph.h"

#include "base/filled.h"
#include "base/run_identity.h"
#include "dialog/messages.h"
#include "messages/graph_texts.h"
#include "report/csv.h"
#include "report/page.h"
#include "report/page_file.h"
#include "report/time_graphs.h"

namespace gatescope {
namespace {

/// Year, month, day, hour, minute, second, query number.
constexpr char PAGE_FILE_NAME[] = "%04d%02d%02d_%02d%02d%02d_Q%02d.html";
/// Directory, delimiter, name.
constexpr char PAGE_FILE_PATH[] = "%s%c%s";

/// Second, minute, hour, day, month and year, as a QueryPeriod has them.
using Moment = decltype(QueryPeriod::last_query_time);

/// The path and the name of the page of a query of that moment.
StoredPage page_of(int query, const Moment& moment, const std::string& results_dir) {
    const auto [second, minute, hour, day, month, year] = moment;
    const std::string name =
        filled(PAGE_FILE_NAME, year + 1900, month + 1, day, hour, minute, second, query);
    return {filled(PAGE_FILE_PATH, results_dir.c_str(), DIR_DELIMETER, name.c_str()), name};
}

/// Stores a page under the name of its query's moment. If a page of the same second and query
/// exists, appends to it, so that no report is lost.
StoredPage store_page(const RecordQuery& asked, const std::string& results_dir,
                      const std::string& text) {
    StoredPage page = page_of(asked.query, asked.period.last_query_time, results_dir);
    append_page(page.path, text);
    return page;
}

/// Stores a page that has a CSV file, under the name of the first second that no page has yet.
StoredPage store_page_with_csv(const RecordQuery& asked, const std::string& results_dir,
                               const std::string& text) {
    StoredPage page = page_of(asked.query, asked.period.last_query_time, results_dir);
    create_page(page.path, text, [&] {
        page = page_of(asked.query, set_time_values().last_query_time, results_dir);
        return page.path;
    });
    return page;
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
    Page page(graph.graph_title);
    write_page(graph, &page);
    const bool with_csv = csv_is_requested();
    const StoredPage stored = (with_csv ? store_page_with_csv : store_page)(
        graph.result.asked, region.results_dir, page.text());
    if (with_csv) store_csv(csv_path(stored.path), csv_of(graph.result, graph.key_lines));
    display_page(stored, region, display);
}

}  // namespace gatescope
