#pragma once

#include <gtest/gtest.h>
#include <regex.h>

#include <array>
#include <string>
#include <vector>

namespace gatescope {

/// All matches of an extended regular expression in `text`, in order: the first group if there is
/// one, else the whole match. It uses regcomp, since std::regex does not compile without warnings
/// under the sanitizers.
inline std::vector<std::string> matches(const std::string& text, const std::string& expression) {
    regex_t compiled;
    EXPECT_EQ(regcomp(&compiled, expression.c_str(), REG_EXTENDED | REG_NEWLINE), 0) << expression;
    std::vector<std::string> found;
    std::array<regmatch_t, 2> place{};
    const char* at = text.c_str();
    while (regexec(&compiled, at, place.size(), place.data(), 0) == 0) {
        const regmatch_t& wanted = place[1].rm_so == -1 ? place[0] : place[1];
        found.emplace_back(at + wanted.rm_so, at + wanted.rm_eo);
        at += place[0].rm_eo > 0 ? place[0].rm_eo : 1;
    }
    regfree(&compiled);
    return found;
}

}  // namespace gatescope
