// Every action that edits the gatebits file, with an arbitrary file and arbitrary answers.

#include <algorithm>

#include "actions/requests.h"
#include "fuzz/fuzz_world.h"
#include "policy/edition.h"
#include "policy/gatebits_file.h"
#include "policy/region.h"

namespace gatescope {
namespace {

/// Actions that change only the gatebits file.
constexpr int ACTIONS[] = {2,  4,  5,  6,  7,  8,  9,  10, 11, 12, 13, 14,
                           15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 28, 29};

void run_actions(FuzzedDataProvider& data, const Options& options) {
    RegionInUse region;
    const Gatebits file = read_gatebits(gatebits_path());
    region.settings = interrogate_the_enterprise(gatebits_path(), file, {});
    region.GATEWARDEN_IS = read_edition(file);
    for (int actions = data.ConsumeIntegralInRange(1, 3); actions > 0; --actions) {
        request_numbered(RequestKind::ACTION, data.PickValueInArray(ACTIONS))
            ->execute(options, region);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    FuzzedDataProvider data(bytes, size);
    use_gatebits(some_gatebits(data));
    const std::size_t old_size = gatebits().size();
    Options options;
    options.selected_repeat = data.ConsumeBool() ? "n" : "y";
    options.IS_DURING_INSTALL = data.ConsumeBool();
    answer_dialogs_from(&data);
    until_the_end([&] { run_actions(data, options); });
    answer_dialogs_from(nullptr);
    must(gatebits().size() <= std::max(old_size, GATEBITS_FILE_LIMIT),
         "a written file can be read");
    must(files_in("tmp") == 0, "no temporary file is left behind");
    return 0;
}

}  // namespace gatescope
