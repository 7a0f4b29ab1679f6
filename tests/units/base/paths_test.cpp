#include "base/paths.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "support/scratch_directory.h"

namespace gatescope {

namespace fs = std::filesystem;

namespace {

TEST(Paths, DirectoryIsThePathWithoutTheName) {
    EXPECT_EQ(directory_of("name"), ".");
    EXPECT_EQ(directory_of("/name"), "/");
    EXPECT_EQ(directory_of("a/name"), "a");
    EXPECT_EQ(directory_of("/a/b/name"), "/a/b");
    EXPECT_EQ(directory_of("/a/"), "/a");
}

TEST(Paths, RelativePathsAreMadeAbsolute) {
    const ScratchDirectory directory;
    directory.write("file", "");
    fs::create_directory(directory / "folder");
    fs::create_symlink("../file", directory / "folder/link");
    const fs::path real = fs::canonical(directory.path());
    const fs::path before = fs::current_path();
    fs::current_path(directory.path());
    EXPECT_EQ(absolute_path("file"), real / "file");
    EXPECT_EQ(absolute_path("folder/link"), real / "file");
    EXPECT_EQ(absolute_path("folder/../new"), real / "new");
    EXPECT_EQ(absolute_path("new"), real / "new");
    fs::current_path(before);
}

TEST(Paths, FileNameFollowsTheLastSlash) {
    EXPECT_EQ(file_name_of("name"), "name");
    EXPECT_EQ(file_name_of("/name"), "name");
    EXPECT_EQ(file_name_of("a//b/name"), "name");
    EXPECT_EQ(file_name_of("/a/"), "");
}

TEST(Paths, BesideIsInTheSameDirectory) {
    EXPECT_EQ(beside("name", "other"), "other");
    EXPECT_EQ(beside("/name", "other"), "/other");
    EXPECT_EQ(beside("a/b/name", "other"), "a/b/other");
}

TEST(Paths, LinkTargetIsRelativeToTheLinksDirectory) {
    const ScratchDirectory directory;
    fs::create_symlink("../there", directory / "relative");
    fs::create_symlink("/there", directory / "absolute");
    directory.write("file", "");
    EXPECT_EQ(link_target(directory / "relative"), directory / "../there");
    EXPECT_EQ(link_target(directory / "absolute"), "/there");
    EXPECT_EQ(link_target(directory / "file"), std::nullopt);
    EXPECT_EQ(link_target(directory / "none"), std::nullopt);
}

TEST(Paths, ResolvedPathFollowsAllLinksUnlessTheyDangle) {
    const ScratchDirectory directory;
    directory.write("file", "");
    fs::create_symlink("file", directory / "link");
    fs::create_symlink("link", directory / "link_to_link");
    fs::create_symlink("none", directory / "dangling");
    EXPECT_EQ(resolved_path(directory / "link_to_link"), fs::canonical(directory / "file"));
    EXPECT_EQ(resolved_path(directory / "dangling"), directory / "dangling");
}

}  // namespace
}  // namespace gatescope
