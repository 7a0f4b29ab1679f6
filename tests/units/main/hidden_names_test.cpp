// The names of the client's variables are composed at run time only.

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

namespace gatescope {
namespace {

constexpr std::size_t SHORTEST = 6;

std::string bytes_of(const char* path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

/// Whether the piece also occurs in a name that the program contains as text, or in a symbol of the
/// object file.
bool is_in_other_name(const std::string& piece) {
    return std::string("CLEARCASE").find(piece) != std::string::npos ||
           std::string("ERROR_USING_SLASH_TMP").find(piece) != std::string::npos;
}

TEST(HiddenNames, AreNotInTheOptimizedProgram) {
    const std::string bytes = bytes_of(OPTIMIZED_STARTUP);
    ASSERT_NE(bytes.find("junk_test"), std::string::npos) << "the search finds nothing";
    for (const std::string name :
         {"CLEARCASE_VIEW_KIND", "ZUL_USING_CCRC", "ATRIA_WEB_CLEARPROMPT"}) {
        for (std::size_t at = 0; at + SHORTEST <= name.size(); ++at) {
            const std::string piece = name.substr(at, SHORTEST);
            EXPECT_TRUE(is_in_other_name(piece) || bytes.find(piece) == std::string::npos) << piece;
        }
    }
}

}  // namespace
}  // namespace gatescope
