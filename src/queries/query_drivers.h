#pragma once

#include <array>
#include <optional>
#include <string>

#include "queries/options.h"
#include "report/page_display.h"

namespace gatescope {

/// What a query asks for, in the words of the logs and of its page.
struct AskedQuery {
    /// What a record must hold; a slot without a filter has the one that every record passes.
    std::array<std::string, 4> filters;
    /// The heading of the page.
    std::string graph_title;
};

/// Asks for the parameters of query 1 to 6 that the command line did not give, in the wording of
/// the edition; nothing when the operator cancelled a dialog.
std::optional<AskedQuery> ask_for_query(int number, const Options& options, int edition);

/// The region that a query looks at.
struct QueriedRegion {
    /// As read_edition says it.
    int edition;
    /// Directory of the logs, without a delimiter at its end.
    std::string logging_dir;
    PageRegion page;
};

/// The six queries of the menu: each asks for the parameters that the command line did not give,
/// reads the logs and makes the page. A cancelled dialog ends it without reading anything.
void Q_1(const Options& options, const QueriedRegion& region);
void Q_2(const Options& options, const QueriedRegion& region);
void Q_3(const Options& options, const QueriedRegion& region);
void Q_4(const Options& options, const QueriedRegion& region);
void Q_5(const Options& options, const QueriedRegion& region);
void Q_6(const Options& options, const QueriedRegion& region);

/// Whether the installer started the program; the operator has then been told that there is nothing
/// to query yet.
bool Q_during_install(bool during_install);

}  // namespace gatescope
