#include "logs/log_files.h"

#include <gtest/gtest.h>

#include <string>

namespace gatescope {
namespace {

TEST(LogFilePaths, FollowTheirPatterns) {
    EXPECT_EQ(log_file_path("/region/log", 0), "/region/log/logging_0.txt");
    EXPECT_EQ(log_file_path("/region/log", 20), "/region/log/logging_20.txt");
    EXPECT_EQ(pruning_companion_path("/region/log", 7), "/region/log/logging__7.txt");
    EXPECT_EQ(pruning_scratch_path("/region/log"), "/region/log/pruning_.txt");
    EXPECT_EQ(pruning_token_path("/region/log"), "/region/log/logging_pruning_token.txt");
}

TEST(LogFilePaths, KeepLongDirectoriesWhole) {
    const std::string directory = "/" + std::string(2000, 'd');
    EXPECT_EQ(log_file_path(directory, 3), directory + "/logging_3.txt");
}

}  // namespace
}  // namespace gatescope
