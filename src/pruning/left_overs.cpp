#include "pruning/left_overs.h"

#include <array>
#include <cinttypes>
#include <cstdio>
#include <utility>

namespace gatescope {
namespace {

/// By LeftOver::Kind.
constexpr std::array<const char*, 3> MARKS = {".taken_", ".old_", ".ready_"};

}  // namespace

LeftOver left_over(LeftOver::Kind kind, const std::string& log, off_t number,
                   std::uint64_t fingerprint) {
    std::string name = log + MARKS.at(static_cast<std::size_t>(kind)) + std::to_string(number);
    if (kind == LeftOver::Kind::READY) name.append("_").append(std::to_string(fingerprint));
    return {kind, number, name};
}

std::set<LeftOver> left_overs_of(const std::string& log, const std::vector<std::string>& names) {
    std::set<LeftOver> found;
    for (const std::string& name : names) {
        if (!name.starts_with(log)) continue;
        long long number = -1;
        std::uint64_t fingerprint = 0;
        std::sscanf(&name[log.size()], ".%*[a-z]_%lld_%" SCNu64, &number, &fingerprint);
        for (auto kind : {LeftOver::Kind::TAKEN, LeftOver::Kind::OLD, LeftOver::Kind::READY}) {
            LeftOver one = left_over(kind, log, number, fingerprint);
            if (number >= 0 && one.name == name) found.insert(std::move(one));
        }
    }
    return found;
}

}  // namespace gatescope
