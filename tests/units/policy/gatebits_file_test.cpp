#include "policy/gatebits_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "base/descriptor.h"
#include "base/platform.h"
#include "units/on_stage.h"

namespace gatescope {
namespace {

const std::string DEPOT_BLOCK =
    "gatewarden;;;east;\n;/depot;O;\n;;\n;;\n; ;\n; ;\n;;;\nD;000000000000000000000000;\n";

class GatebitsFile : public OnStage {
  protected:
    /// Sets the line without a precondition.
    ChangeResult set_line(int n, const std::string& text) const {
        return change(gatebits_file, {Gatebits(std::string()), no_part},
                      [&](const Gatebits& now) { return set_a_line(now, n, text); }, {})
            .result;
    }
    ChangeResult set_field(const FieldValue& value) const {
        return change(gatebits_file, {Gatebits(std::string()), no_part},
                      [&](const Gatebits& now) { return set_a_field(now, value); }, {})
            .result;
    }
};
using GatebitsFileDeathTest = GatebitsFile;

/// A precondition: the text of line n.
auto line_number(int n) {
    return [n](const Gatebits& gatebits) {
        return std::vector<std::string>{get_a_line(gatebits, n).value_or("(none)")};
    };
}

TEST_F(GatebitsFile, IsReadAsAValue) {
    use_gatebits("one;\n\ntwo;");
    const Gatebits gatebits = read_gatebits(gatebits_file);
    use_gatebits("three;\n");
    EXPECT_EQ(gatebits.text(), "one;\n\ntwo;");
    EXPECT_EQ(gatebits.lines(), (std::vector<std::string>{"one;", "two;"}));
    EXPECT_EQ(read_gatebits(gatebits_file).text(), "three;\n");
}

TEST_F(GatebitsFile, IsReadAgainForAnEdit) {
    use_gatebits("one;\ntwo;\n");
    const Gatebits shown = read_gatebits(gatebits_file);
    use_gatebits("one;\n\ntwo;\nthree;\n");
    const Changed changed =
        change(gatebits_file, {shown, line_number(2)},
               [](const Gatebits& now) { return set_a_line(now, 2, DELETION_TOKEN); }, {});
    EXPECT_EQ(changed.result, ChangeResult::WRITTEN);
    EXPECT_EQ(changed.before.text(), "one;\n\ntwo;\nthree;\n");
    EXPECT_EQ(region.gatebits(), "one;\n\nthree;\n");
    EXPECT_EQ(changed.now.text(), region.gatebits());
    EXPECT_EQ(changed.now.lines(), (std::vector<std::string>{"one;", "three;"}));
}

TEST_F(GatebitsFile, IsNotEditedIfTheShownPartHasChanged) {
    use_gatebits("one;\ntwo;\n");
    const Gatebits shown = read_gatebits(gatebits_file);
    const std::string theirs = "zero;\n\none;\ntwo;\n";
    use_gatebits(theirs);
    const Changed changed = change(gatebits_file, {shown, line_number(2)},
                                   [](const Gatebits& now) -> Rewrite {
                                       ADD_FAILURE() << "the edit was made";
                                       return {ChangeResult::WRITTEN, now};
                                   },
                                   {});
    EXPECT_EQ(changed.result, ChangeResult::CHANGED_MEANWHILE);
    EXPECT_EQ(changed.before.text(), theirs);
    EXPECT_EQ(changed.now.text(), theirs);
    EXPECT_EQ(region.gatebits(), theirs);
}

TEST_F(GatebitsFile, IsNotWrittenIfAnEditHasNoText) {
    const std::string text = "one;\n\ntwo;\n";
    use_gatebits(text);
    EXPECT_EQ(set_field({3, 1, "x"}), ChangeResult::NO_SUCH_LINE);
    EXPECT_EQ(set_field({1, 5, "x"}), ChangeResult::NO_SUCH_FIELD);
    EXPECT_EQ(region.gatebits(), text);
    // An edit with a text, which drops the blank line.
    EXPECT_EQ(set_line(3, "x"), ChangeResult::NO_SUCH_LINE);
    EXPECT_EQ(region.gatebits(), "one;\ntwo;\n");
}

TEST_F(GatebitsFile, IsLockedFromTheReadToTheWrite) {
    use_gatebits("one;\n");
    const auto is_locked = [this] {
        const Descriptor file(open(gatebits_file.c_str(), O_RDWR | O_CLOEXEC));
        return lock_exclusively(file.get()) == EWOULDBLOCK;
    };
    EXPECT_FALSE(is_locked());
    change(gatebits_file, {Gatebits(std::string()), no_part},
           [&](const Gatebits& now) {
               EXPECT_TRUE(is_locked());
               return set_a_line(now, 1, "two;");
           },
           {});
    EXPECT_FALSE(is_locked());
    EXPECT_EQ(region.gatebits(), "two;\n");
}

TEST_F(GatebitsFile, MayHave30000Bytes) {
    const std::string largest = "x;" + std::string(GATEBITS_FILE_LIMIT - 3, 'y') + "\n";
    use_gatebits(largest);
    EXPECT_EQ(read_gatebits(gatebits_file).text(), largest);
    EXPECT_EQ(set_field({1, 1, "z"}), ChangeResult::WRITTEN);
}

TEST_F(GatebitsFileDeathTest, GripesOfAFileAboveTheLimit) {
    use_gatebits("x;" + std::string(GATEBITS_FILE_LIMIT - 2, 'y') + "\n");
    EXPECT_GRIPE(read_gatebits(gatebits_file), "ERROR: The enterprise permissions file (" +
                                                   gatebits_file +
                                                   ") is larger than the limit of 30000 bytes.");
}

TEST_F(GatebitsFileDeathTest, GripesOfAFileThatCannotBeRead) {
    gatebits_file = region.path("none");
    const std::string cannot_open = "ERROR: Can't open the enterprise permissions file.....";
    EXPECT_GRIPE(read_gatebits(gatebits_file), cannot_open);
    EXPECT_GRIPE(set_line(1, "x"), cannot_open);
    gatebits_file = "";
    EXPECT_GRIPE(read_gatebits(gatebits_file), cannot_open);
    gatebits_file = region.path("depot");
    const std::string cannot_read = "ERROR: Read failure on enterprise permissions file...";
    EXPECT_GRIPE(read_gatebits(gatebits_file), cannot_read);
    EXPECT_GRIPE(set_line(1, "x"), cannot_read);
}

TEST_F(GatebitsFileDeathTest, GripesOfAFileWithoutALine) {
    for (const char* empty : {"", "\n\n\n"}) {
        use_gatebits(empty);
        const std::string is_empty =
            "ERROR: The enterprise permissions file (" + gatebits_file + ") is empty.";
        EXPECT_GRIPE(read_gatebits(gatebits_file), is_empty);
        EXPECT_GRIPE(set_line(0, "x"), is_empty);
    }
}

TEST_F(GatebitsFileDeathTest, GripesOfAChangeThatCouldNotBeReadBack) {
    const std::string text = DEPOT_BLOCK + "key;\n";
    use_gatebits(text);
    const std::string too_long = std::to_string(DEPOT_BLOCK.size() + GATEBITS_FILE_LIMIT + 1);
    EXPECT_GRIPE(set_line(9, std::string(GATEBITS_FILE_LIMIT, 'x')),
                 "ERROR: The change would make the enterprise permissions file (" + gatebits_file +
                     ") " + too_long + " bytes long, but at most 30000 bytes can be read.  " +
                     "The change was not made in (" + gatebits_file + ").");
    const std::string line_break =
        "ERROR: The value entered for the enterprise permissions file (" + gatebits_file +
        ") holds a line break.  The change was not made.";
    EXPECT_GRIPE(set_line(9, "two\nlines"), line_break);
    EXPECT_GRIPE(set_field({2, 2, "two\nlines"}), line_break);
    EXPECT_EQ(region.gatebits(), text);
}

TEST_F(GatebitsFileDeathTest, GripesOfAChangeOfAFileWithANul) {
    const std::string text = DEPOT_BLOCK + std::string("\0more;\n", 7);
    use_gatebits(text);
    EXPECT_GRIPE(set_line(1, "x"),
                 "ERROR: The enterprise permissions file (" + gatebits_file +
                     ") holds a NUL byte, and what follows it would be lost in a change.  The "
                     "change was not made.");
    EXPECT_EQ(region.gatebits(), text);
}

TEST_F(GatebitsFileDeathTest, GripesWithoutAScratchFile) {
    use_gatebits(DEPOT_BLOCK);
    TEMP_DIR = "/no/such/dir";
    EXPECT_GRIPE(set_line(1, "x"), "Could not create needed temp file");
    EXPECT_EQ(region.gatebits(), DEPOT_BLOCK);
}

TEST_F(GatebitsFile, KeepsModeAndSymbolicLinksInAChange) {
    use_gatebits(";;O;\n");
    ASSERT_EQ(chmod(region.gatebits_path().c_str(), 0640), 0);
    ASSERT_EQ(symlink("gatebits.txt", region.path("link.txt").c_str()), 0);
    gatebits_file = region.path("link.txt");
    const std::vector<std::string> before = region.files_in(".");
    set_field({1, 3, "S"});
    EXPECT_EQ(region.gatebits(), ";;S;\n");
    struct stat status = {};
    ASSERT_EQ(lstat(region.path("link.txt").c_str(), &status), 0);
    EXPECT_TRUE(S_ISLNK(status.st_mode));
    ASSERT_EQ(stat(region.gatebits_path().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, mode_t{0640});
    EXPECT_EQ(region.files_in("."), before);
    EXPECT_TRUE(region.files_in("tmp").empty());
}

TEST_F(GatebitsFile, KeepsHardLinksInAChange) {
    use_gatebits(";;O;\n");
    ASSERT_EQ(link(region.gatebits_path().c_str(), region.path("other.txt").c_str()), 0);
    set_field({1, 3, "S"});
    EXPECT_EQ(region.file("other.txt"), ";;S;\n");
    EXPECT_EQ(region.gatebits(), ";;S;\n");
    EXPECT_TRUE(region.files_in("tmp").empty());
}

}  // namespace
}  // namespace gatescope
