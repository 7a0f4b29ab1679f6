#include "scenes/actions.h"

#include <gtest/gtest.h>

namespace gatescope {

std::string with_replaced(const std::string& text, const std::string& from, const std::string& to) {
    const std::size_t at = text.find(from);
    EXPECT_NE(at, std::string::npos) << "no " << from << " in " << text;
    if (at == std::string::npos) return text;
    EXPECT_EQ(text.find(from, at + 1), std::string::npos) << "more than one " << from;
    return text.substr(0, at) + to + text.substr(at + from.size());
}

Dialog asked_to_change(const std::string& item, const std::string& from, const std::string& to,
                       const std::string& warnings) {
    return asked("Confirm change of: " + item + "\n\nchange from:  " + from +
                     "\n                 to:  " + to + warnings,
                 "no");
}

Dialog reported_change(const std::string& item, const std::string& from, const std::string& to) {
    return asked("Successfully changed " + item + "\n\nchange from:  " + from +
                     "\n                 to:  " + to,
                 "yes", "yes");
}

Dialog told_to_reenter() {
    return advised_and_waited(
        "That change would introduced an error in the gatebits file.  Please reenter the value.");
}

std::vector<std::string> checks_of(const Region& region, const Result& result) {
    std::vector<std::string> words;
    for (const Args& call : result.calls_of("gatewarden")) {
        EXPECT_EQ(call.size(), 2u);
        if (call.size() != 2) continue;
        EXPECT_EQ(call[0], region.gatebits_path());
        words.push_back(call[1]);
    }
    return words;
}

}  // namespace gatescope
