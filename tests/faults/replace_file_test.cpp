#include "base/replace_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>

#include "base/signals.h"
#include "base/temporary_files.h"
#include "faults/append_only.h"
#include "faults/in_child.h"
#include "faults/small_disk.h"
#include "policy/write_failure.h"
#include "support/needs.h"
#include "support/scratch_directory.h"

namespace gatescope {
namespace {

using Names = std::set<std::string>;

constexpr char OLD[] = "old line one\nold line two\n";
constexpr char NEW[] = "new line one\nnew line two\nnew line three\n";
constexpr char SHORTER[] = "new\n";

struct stat status_of(const std::string& path) {
    struct stat status = {};
    EXPECT_EQ(lstat(path.c_str(), &status), 0) << path;
    return status;
}

/// A file with the old text in a directory, and the backup copy in another.
class ReplaceFile : public testing::Test {
  protected:
    void SetUp() override { write_file(file, OLD); }

    /// Replaces as the program does: writes the copy first, then the file.
    void replace(const std::string& path, const std::string& text) const {
        write_file(copy, text);
        remember_temporary_file(copy);
        if (const auto failure = replace_file(path, text, copy)) {
            gripe_not_replaced(*failure, path, copy);
        }
    }
    Ended replaced(const std::string& text = NEW) const {
        return in_child([&] { replace(file, text); });
    }
    Ended replaced_by_nobody(const std::string& text = NEW) const {
        return in_child_of_nobody([&] { replace(file, text); });
    }

    /// Gives the file and both directories to the user nobody.
    void give_to_nobody() const {
        for (const std::string& path : {file, directory / "", temporary / ""}) {
            ASSERT_EQ(chown(path.c_str(), 65534, 65534), 0);
        }
    }

    void expect_nothing_left(const Names& in_directory = {"file"}) const {
        EXPECT_EQ(directory.names(), in_directory);
        EXPECT_EQ(temporary.names(), Names());
    }

    ScratchDirectory directory;
    ScratchDirectory temporary;
    const std::string file = directory / "file";
    const std::string copy = temporary / "copy";
};

/// The same as the ordinary user nobody.
class ReplaceFileAsUser : public ReplaceFile {
  protected:
    void SetUp() override {
        if (!can_become_nobody()) GTEST_SKIP() << "needs root, to become another user";
        ReplaceFile::SetUp();
        give_to_nobody();
    }
};

TEST_F(ReplaceFile, WritesNewTextAndLeavesNoOtherFile) {
    EXPECT_EQ(replaced().status, 0);
    EXPECT_EQ(file_text(file), NEW);
    expect_nothing_left();
}

TEST_F(ReplaceFile, KeepsOldTextForReadersOfOldFile) {
    std::ifstream reader(file);
    EXPECT_EQ(replaced().status, 0);
    std::string line;
    std::getline(reader, line);
    EXPECT_EQ(line, "old line one");
}

TEST_F(ReplaceFile, ReplacesTargetOfSymbolicLink) {
    const std::string link = directory / "link";
    const std::string link_to_link = directory / "link_to_link";
    ASSERT_EQ(symlink("file", link.c_str()), 0);
    ASSERT_EQ(symlink(link.c_str(), link_to_link.c_str()), 0);
    EXPECT_EQ(in_child([&] { replace(link_to_link, NEW); }).status, 0);
    EXPECT_TRUE(S_ISLNK(status_of(link).st_mode));
    EXPECT_TRUE(S_ISLNK(status_of(link_to_link).st_mode));
    EXPECT_TRUE(S_ISREG(status_of(file).st_mode));
    EXPECT_EQ(file_text(file), NEW);
    expect_nothing_left({"file", "link", "link_to_link"});
}

TEST_F(ReplaceFile, ReplacesFileOfRelativePath) {
    EXPECT_EQ(in_child([&] {
                  ASSERT_EQ(chdir((directory / "").c_str()), 0);
                  replace("file", NEW);
              }).status,
              0);
    EXPECT_EQ(file_text(file), NEW);
    expect_nothing_left();
}

TEST_F(ReplaceFile, ReplacesFileWithNameOf255Characters) {
    const std::string longest = directory / std::string(255, 'n');
    write_file(longest, OLD);
    const auto before = status_of(longest).st_ino;
    EXPECT_EQ(in_child([&] { replace(longest, NEW); }).status, 0);
    EXPECT_EQ(file_text(longest), NEW);
    EXPECT_NE(status_of(longest).st_ino, before) << "it was not replaced by a rename";
}

TEST_F(ReplaceFile, RewritesHardLinkedFileInPlace) {
    const std::string other = directory / "other";
    for (const std::string text : {NEW, SHORTER}) {
        write_file(file, OLD);
        ASSERT_EQ(link(file.c_str(), other.c_str()), 0);
        const auto before = status_of(file).st_ino;
        EXPECT_EQ(replaced(text).status, 0);
        EXPECT_EQ(file_text(file), text);
        EXPECT_EQ(file_text(other), text);
        EXPECT_EQ(status_of(file).st_ino, before);
        expect_nothing_left({"file", "other"});
        unlink(other.c_str());
    }
}

// Data written to a file without a name is lost.
TEST_F(ReplaceFile, WritesToNamedFileNotToUnlinkedOpenFile) {
    const std::string second_name = directory / "second_name";
    for (const bool in_place : {false, true}) {
        const Descriptor open_file(open(file.c_str(), O_RDWR | O_CLOEXEC));
        std::filesystem::remove(file);
        write_file(file, OLD);
        if (in_place) std::filesystem::create_hard_link(file, second_name);
        write_file(copy, NEW);
        EXPECT_FALSE(replace_file(file, NEW, copy, open_file));
        EXPECT_EQ(file_text(file), NEW) << in_place;
    }
    EXPECT_EQ(file_text(second_name), NEW);
    expect_nothing_left({"file", "second_name"});
}

TEST_F(ReplaceFile, RewritesMountPointInPlace) {
    const std::string place = directory / "place";
    write_file(place, "");
    if (mount(file.c_str(), place.c_str(), nullptr, MS_BIND, nullptr) != 0) {
        GTEST_SKIP() << "needs the right to mount";
    }
    const Ended ended = in_child([&] { replace(place, NEW); });
    EXPECT_EQ(ended.status, 0) << ended.said;
    EXPECT_EQ(file_text(file), NEW);
    umount2(place.c_str(), MNT_DETACH);
    expect_nothing_left({"file", "place"});
}

TEST_F(ReplaceFile, KeepsModeDespiteUmask) {
    for (const mode_t mode : {0640U, 0666U, 0755U, 0600U}) {
        ASSERT_EQ(chmod(file.c_str(), mode), 0);
        EXPECT_EQ(in_child([&] {
                      umask(077);
                      replace(file, NEW);
                  }).status,
                  0);
        EXPECT_EQ(status_of(file).st_mode & 07777U, mode);
    }
}

TEST_F(ReplaceFile, KeepsOwnerAndGroup) {
    if (!can_become_nobody()) GTEST_SKIP() << "needs root";
    ASSERT_EQ(chown(file.c_str(), 12345, 23456), 0);
    EXPECT_EQ(replaced().status, 0);
    EXPECT_EQ(status_of(file).st_uid, 12345U);
    EXPECT_EQ(status_of(file).st_gid, 23456U);
    EXPECT_EQ(file_text(file), NEW);
}

TEST_F(ReplaceFile, KeepsExtendedAttributes) {
    NEEDS(GATESCOPE_HAS_ATTRIBUTES, "extended attributes");
    if (setxattr(file.c_str(), "user.note", "kept", 4, 0) != 0) {
        GTEST_SKIP() << "the file system has no extended attributes";
    }
    ASSERT_EQ(setxattr(file.c_str(), "user.empty", "", 0, 0), 0);
    const auto before = status_of(file).st_ino;
    EXPECT_EQ(replaced().status, 0);
    EXPECT_NE(status_of(file).st_ino, before) << "it was not replaced by a rename";
    std::array<char, 16> value = {};
    EXPECT_EQ(getxattr(file.c_str(), "user.note", value.data(), value.size()), 4);
    EXPECT_STREQ(value.data(), "kept");
    EXPECT_EQ(getxattr(file.c_str(), "user.empty", value.data(), value.size()), 0);
}

// An access control list in the kernel's format: version 2, then tag, permissions and id of each
// entry. This one adds read permission for user 10 to "rw- r-- ---".
struct AclEntry {
    std::uint16_t tag;
    std::uint16_t permissions;
    std::uint32_t id;
};
struct Acl {
    std::uint32_t version = 2;
    std::array<AclEntry, 5> entries = {
        {{0x01, 6, ~0U}, {0x02, 4, 10}, {0x04, 4, ~0U}, {0x10, 4, ~0U}, {0x20, 0, ~0U}}};
};
constexpr char ACCESS_LIST[] = "system.posix_acl_access";
constexpr char DEFAULT_LIST[] = "system.posix_acl_default";

bool set_list(const std::string& path, const char* which) {
    const Acl acl;
    return setxattr(path.c_str(), which, &acl, sizeof(acl), 0) == 0;
}
ssize_t size_of_list(const std::string& path) {
    return getxattr(path.c_str(), ACCESS_LIST, nullptr, 0);
}

TEST_F(ReplaceFile, KeepsAccessControlList) {
    NEEDS(GATESCOPE_HAS_ATTRIBUTES, "extended attributes");
    if (!set_list(file, ACCESS_LIST)) GTEST_SKIP() << "the file system has no such lists";
    const mode_t mode = status_of(file).st_mode;
    EXPECT_EQ(replaced().status, 0);
    Acl acl;
    ASSERT_EQ(getxattr(file.c_str(), ACCESS_LIST, &acl, sizeof(acl)),
              static_cast<ssize_t>(sizeof(acl)));
    EXPECT_EQ(std::memcmp(&acl, std::array{Acl()}.data(), sizeof(acl)), 0);
    EXPECT_EQ(status_of(file).st_mode, mode);
}

TEST_F(ReplaceFile, IgnoresDirectorysDefaultAccessControlList) {
    NEEDS(GATESCOPE_HAS_ATTRIBUTES, "extended attributes");
    ASSERT_EQ(chmod(file.c_str(), 0640), 0);
    if (!set_list(directory / "", DEFAULT_LIST)) GTEST_SKIP() << "no such lists here";
    ASSERT_LT(size_of_list(file), 0);
    EXPECT_EQ(replaced().status, 0);
    EXPECT_LT(size_of_list(file), 0) << "the new file has a list, the old one had none";
    EXPECT_EQ(status_of(file).st_mode & 07777U, 0640U);
}

TEST_F(ReplaceFileAsUser, ReplacesOwnFileWithoutPrivileges) {
    const Ended ended = replaced_by_nobody();
    EXPECT_EQ(ended.status, 0) << ended.said;
    EXPECT_EQ(file_text(file), NEW);
    expect_nothing_left();
}

TEST_F(ReplaceFileAsUser, RewritesInPlaceInReadOnlyDirectory) {
    ASSERT_EQ(chmod((directory / "").c_str(), 0555), 0);
    const auto before = status_of(file).st_ino;
    for (const std::string text : {NEW, SHORTER}) {
        const Ended ended = replaced_by_nobody(text);
        EXPECT_EQ(ended.status, 0) << ended.said;
        EXPECT_EQ(file_text(file), text);
    }
    EXPECT_EQ(status_of(file).st_ino, before);
    expect_nothing_left();
}

TEST_F(ReplaceFileAsUser, ReplacesFileInUnreadableDirectory) {
    ASSERT_EQ(chmod((directory / "").c_str(), 0333), 0);
    const Ended ended = replaced_by_nobody();
    EXPECT_EQ(ended.status, 0) << ended.said;
    EXPECT_EQ(file_text(file), NEW);
    expect_nothing_left();
}

TEST_F(ReplaceFileAsUser, KeepsOwnerOfFileOfAnotherUser) {
    ASSERT_EQ(chown(file.c_str(), 12345, 65534), 0);
    ASSERT_EQ(chmod(file.c_str(), 0660), 0);
    const Ended ended = replaced_by_nobody();
    EXPECT_EQ(ended.status, 0) << ended.said;
    EXPECT_EQ(file_text(file), NEW);
    EXPECT_EQ(status_of(file).st_uid, 12345U);
    EXPECT_EQ(status_of(file).st_mode & 07777U, 0660U);
    expect_nothing_left();
}

TEST_F(ReplaceFileAsUser, RewritesFileOfAnotherUserInStickyDirectoryInPlace) {
    ASSERT_EQ(chown((directory / "").c_str(), 0, 0), 0);
    ASSERT_EQ(chmod((directory / "").c_str(), 01777), 0);
    ASSERT_EQ(chown(file.c_str(), 12345, 65534), 0);
    ASSERT_EQ(chmod(file.c_str(), 0664), 0);
    const Ended ended = replaced_by_nobody();
    EXPECT_EQ(ended.status, 0) << ended.said;
    EXPECT_EQ(file_text(file), NEW);
    EXPECT_EQ(status_of(file).st_uid, 12345U);
    expect_nothing_left();
}

TEST_F(ReplaceFileAsUser, RefusesReadOnlyFile) {
    ASSERT_EQ(chmod(file.c_str(), 0444), 0);
    const Ended ended = replaced_by_nobody();
    EXPECT_EQ(ended.status, 99);
    EXPECT_EQ(ended.said, "#1 Could not move (" + copy + ") to (" + file + ") with " +
                              std::to_string(EACCES) + "\n");
    EXPECT_EQ(file_text(file), OLD);
    expect_nothing_left();
}

TEST_F(ReplaceFile, RefusesReadOnlyFileForRoot) {
    ASSERT_EQ(chmod(file.c_str(), 0444), 0);
    const Ended ended = replaced();
    EXPECT_EQ(ended.status, 99);
    EXPECT_EQ(ended.said, "#1 Could not move (" + copy + ") to (" + file + ") with " +
                              std::to_string(EACCES) + "\n");
    EXPECT_EQ(file_text(file), OLD);
    expect_nothing_left();
}

TEST_F(ReplaceFile, RefusesMissingFile) {
    unlink(file.c_str());
    const Ended ended = replaced();
    EXPECT_EQ(ended.status, 99);
    EXPECT_EQ(ended.said, "#1 Could not move (" + copy + ") to (" + file + ") with " +
                              std::to_string(ENOENT) + "\n");
    expect_nothing_left({});
}

TEST_F(ReplaceFile, RewritesInPlaceInAppendOnlyDirectory) {
    NEEDS(GATESCOPE_HAS_STATX, "statx");
    const AppendOnly kept(directory / "");
    if (!kept.is_set())
        GTEST_SKIP() << "needs root, and a file system with append-only directories";
    const ino_t before = status_of(file).st_ino;
    for (const char* text : {NEW, SHORTER}) {
        EXPECT_EQ(replaced(text).status, 0);
        EXPECT_EQ(file_text(file), text);
    }
    EXPECT_EQ(status_of(file).st_ino, before);
    expect_nothing_left();
}

TEST_F(ReplaceFile, RefusesDirectoryFifoAndDanglingLink) {
    const std::string fifo = directory / "fifo";
    const std::string link = directory / "link";
    const std::string folder = directory / "folder";
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    ASSERT_EQ(symlink("nowhere", link.c_str()), 0);
    ASSERT_EQ(mkdir(folder.c_str(), 0700), 0);
    for (const std::string& path : {fifo, link, folder}) {
        const mode_t before = status_of(path).st_mode;
        const Ended ended = in_child([&] { replace(path, NEW); });
        EXPECT_EQ(ended.status, 99) << path;
        EXPECT_NE(ended.said.find(path), std::string::npos) << ended.said;
        EXPECT_EQ(status_of(path).st_mode, before);
    }
    EXPECT_EQ(file_text(file), OLD);
    expect_nothing_left({"fifo", "file", "folder", "link"});
}

void expect_says_unchanged(const Ended& ended, const std::string& path, int error) {
    EXPECT_EQ(ended.status, 99);
    EXPECT_EQ(ended.said, "ERROR: Could not write the file (" + path +
                              "): " + std::strerror(error) + ".  (" + path + ") is unchanged.\n");
}

class ReplaceFileOnAFullDisk : public ReplaceFile {
  protected:
    ReplaceFileOnAFullDisk() : disk(directory / "", 32768) {}
    void SetUp() override {
        if (!disk.is_mounted()) GTEST_SKIP() << "needs the right to mount";
        ReplaceFile::SetUp();
    }
    SmallDisk disk;
    const std::string long_text = std::string(20000, 'n') + "\n";
};

TEST_F(ReplaceFileOnAFullDisk, KeepsOldFileAndReportsError) {
    fill_up(directory / "filler");
    expect_says_unchanged(replaced(long_text), file, ENOSPC);
    EXPECT_EQ(file_text(file), OLD);
    expect_nothing_left({"file", "filler"});
}

TEST_F(ReplaceFileOnAFullDisk, KeepsHardLinkedFileWhenTextDoesNotFit) {
    ASSERT_EQ(link(file.c_str(), (directory / "other").c_str()), 0);
    fill_up(directory / "filler");
    expect_says_unchanged(replaced(long_text), file, ENOSPC);
    EXPECT_EQ(file_text(file), OLD);
    expect_nothing_left({"file", "filler", "other"});
}

TEST_F(ReplaceFileOnAFullDisk, RewritesHardLinkedFileWhenTextFits) {
    ASSERT_EQ(link(file.c_str(), (directory / "other").c_str()), 0);
    fill_up(directory / "filler");
    EXPECT_EQ(replaced().status, 0);
    EXPECT_EQ(file_text(file), NEW);
    EXPECT_EQ(file_text(directory / "other"), NEW);
}

/// Limits the size of files, without ignoring SIGXFSZ.
void limit_files_to(rlim_t bytes) {
    const rlimit limit = {bytes, bytes};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
}

TEST_F(ReplaceFile, ReportsFileSizeLimit) {
    const Ended ended = in_child([&] {
        install_signal_cleanup();
        write_file(copy, NEW);
        remember_temporary_file(copy);
        limit_files_to(30);
        if (const auto failure = replace_file(file, NEW, copy))
            gripe_not_replaced(*failure, file, copy);
    });
    expect_says_unchanged(ended, file, EFBIG);
    EXPECT_EQ(file_text(file), OLD);
    expect_nothing_left();
}

TEST_F(ReplaceFile, KeepsHardLinkedFileAtFileSizeLimit) {
    ASSERT_EQ(link(file.c_str(), (directory / "other").c_str()), 0);
    const Ended ended = in_child([&] {
        install_signal_cleanup();
        write_file(copy, NEW);
        remember_temporary_file(copy);
        limit_files_to(30);
        if (const auto failure = replace_file(file, NEW, copy))
            gripe_not_replaced(*failure, file, copy);
    });
    expect_says_unchanged(ended, file, EFBIG);
    EXPECT_EQ(file_text(file), OLD);
    expect_nothing_left({"file", "other"});
}

}  // namespace
}  // namespace gatescope
