#include "records/record_scan.h"

#include <algorithm>
#include <cinttypes>

#include "base/filled.h"

namespace gatescope {

std::uint64_t first_digits(std::int64_t time) {
    const auto hundreds = std::clamp<std::int64_t>(time / 100, 0, 99999999);
    return first_digits(filled("%08" PRId64, hundreds).c_str());
}

}  // namespace gatescope
