#include "pruning/left_overs.h"

#include <algorithm>
#include <array>
#include <cinttypes>
#include <cstdio>
#include <utility>

namespace gatescope {
namespace {

/// In the order of the kinds.
constexpr std::array<const char*, 3> MARKS = {".taken_", ".old_", ".ready_"};

}  // namespace

LeftOver left_over(LeftOver::Kind kind, const std::string& log, off_t number,
                   std::uint64_t fingerprint) {
    std::string name = log + MARKS.at(static_cast<std::size_t>(kind)) + std::to_string(number);
    if (kind == LeftOver::READY) name += "_" + std::to_string(fingerprint);
    return {kind, name, number, fingerprint};
}

std::vector<LeftOver> left_overs_of(const std::string& log, const Directory& logs) {
    std::vector<std::string> names;
    need(logs.list(log + ".", &names));
    std::vector<LeftOver> found;
    for (const std::string& name : names) {
        const std::size_t numbers = std::min(name.find('_', log.size()), name.size());
        long long number = -1;
        std::uint64_t fingerprint = 0;
        std::sscanf(&name[numbers], "_%lld_%" SCNu64, &number, &fingerprint);
        // One that cannot be examined now is found out when it is opened.
        const Directory::Entry entry = logs.look(name);
        if (number < 0 || (entry.exists() && !entry.is_regular())) continue;
        for (const LeftOver::Kind kind : {LeftOver::TAKEN, LeftOver::OLD, LeftOver::READY}) {
            LeftOver one = left_over(kind, log, number, fingerprint);
            if (one.name == name) found.push_back(std::move(one));
        }
    }
    std::ranges::sort(found, {}, &LeftOver::number);
    return found;
}

}  // namespace gatescope
