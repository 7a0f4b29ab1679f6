#include "actions/actions.h"
#include "pruning/pruning.h"
#include "records/query_period.h"

namespace gatescope {

void A_1(const RegionSettings& region, bool display) {
    prune_logging_files({region.logging_dir, region.ENTERPRIZE_NAME, display}, QUERY_DAYS);
}

}  // namespace gatescope
