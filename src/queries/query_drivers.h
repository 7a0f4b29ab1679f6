#pragma once

#include <array>
#include <optional>
#include <string>

#include "queries/options.h"
#include "report/page_display.h"

namespace gatescope {

/// The parameters of a query, as filters and as the heading of its page.
struct AskedQuery {
    /// A record must contain all of them; unused slots have a filter that every record passes.
    std::array<std::string, 4> filters;
    /// The heading of the page.
    std::string graph_title;
};

/// Asks for the parameters of query 1 to 6 that are not in the options, in the wording of the
/// edition; nothing if the operator cancels a dialog.
std::optional<AskedQuery> ask_for_query(int number, const Options& options, int edition);

/// The region of a query.
struct QueriedRegion {
    /// See read_edition.
    int edition;
    /// Directory of the logs, without a trailing delimiter.
    std::string logging_dir;
    PageRegion page;
};

/// The six queries of the menu: each asks for the parameters that are not in the options, reads the
/// logs and makes the page. A cancelled dialog ends it before the logs are read.
void Q_1(const Options& options, const QueriedRegion& region);
void Q_2(const Options& options, const QueriedRegion& region);
void Q_3(const Options& options, const QueriedRegion& region);
void Q_4(const Options& options, const QueriedRegion& region);
void Q_5(const Options& options, const QueriedRegion& region);
void Q_6(const Options& options, const QueriedRegion& region);

/// Returns `during_install`, and if it is true, tells the operator that there is nothing to query
/// yet.
bool Q_during_install(bool during_install);

}  // namespace gatescope
