#pragma once

#include <optional>
#include <string>
#include <vector>

#include "logs/query_data.h"
#include "report/page.h"

namespace gatescope {

// The pages of the bar queries: a row with a horizontal bar for every functionality bit or command
// key.

/// The lines of the command keys in the gatebits file, in order; nothing for a missing key.
using KeyLines = std::vector<std::optional<std::string>>;

/// All 24 bits, used or not.
void Display_Graph__hbars_Bits(const QueryResult& result, Page* page);

/// The keys from 1 to the highest one counted, each described by its line.
void Display_Graph__hbars_Keys(const QueryResult& result, const KeyLines& lines, Page* page);

}  // namespace gatescope
