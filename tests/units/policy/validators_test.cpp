#include "policy/validators.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "dialog/process_end.h"
#include "policy/aliases.h"
#include "units/on_stage.h"

namespace gatescope {
namespace {

class Validators : public OnStage {
  protected:
    /// A subdirectory whose path has `length` bytes.
    std::string directory_of_length(std::size_t length) const {
        std::string made = path("");
        while (made.size() < length) {
            const std::size_t left = length - made.size();
            made += std::string(left > 101 ? 100 : left, 'd');
            if (made.size() < length) made += '/';
        }
        std::filesystem::create_directories(made);
        return made;
    }

    void depot_is(const std::string& depot) {
        gatebits = Gatebits("gatewarden;;;east;\n;" + depot + ";O;\n;;\n");
    }

    Gatebits gatebits{std::string()};
};

std::string verdict(const Validity& validity) {
    return validity.accepted() ? "accepted" : validity.message();
}

TEST_F(Validators, AcceptEmptyValuesExceptForAliases) {
    for (const char* os : {"UNIX", "Windows"}) {
        EXPECT_EQ(verdict(region_depot_is_ok("", os)), "accepted");
        EXPECT_EQ(verdict(region_parent_is_ok("", os)), "accepted");
        EXPECT_EQ(verdict(region_notify_is_ok("", os, gatebits)), "accepted");
    }
    EXPECT_EQ(verdict(region_list_is_ok("")), "accepted");
    EXPECT_EQ(verdict(region_MOTD_is_ok("")), "accepted");
    EXPECT_EQ(verdict(region_MOTDL_is_ok("")), "accepted");
    EXPECT_EQ(verdict(alias_value_is_ok("")), "RETRY: alias value is empty");
    EXPECT_EQ(verdict(alias_name_is_ok("", {})), "RETRY: alias name is empty");
}

TEST_F(Validators, AcceptDepotsOfUpTo256Characters) {
    EXPECT_EQ(verdict(region_depot_is_ok(directory_of_length(256), "UNIX")), "accepted");
    EXPECT_EQ(verdict(region_depot_is_ok(directory_of_length(257), "UNIX")),
              "RETRY: depot alue value exceeds 256 character max");
}

TEST_F(Validators, RejectDepotsWithPoisonousCharacters) {
    EXPECT_EQ(verdict(region_depot_is_ok("/a;b", "UNIX")),
              "RETRY: depot may not contain commas (,) semi-colons (;) or slash (\\) "
              "characters\\nInvalid directory '/a;b' disallowed");
    for (const char* value : {"/a,b", "/a\\b"}) {
        EXPECT_NE(region_depot_is_ok(value, "UNIX").message().find("slash (\\) characters"),
                  std::string::npos)
            << value;
    }
    EXPECT_EQ(verdict(region_depot_is_ok("\\\\m\\s/d", "Windows")),
              "RETRY: depot may not contain commas (,) semi-colons (;) or slash (/) "
              "characters\\nInvalid directory '\\\\m\\s/d' disallowed");
    for (const char* value : {"a,b", "a;b"}) {
        EXPECT_NE(region_depot_is_ok(value, "Windows").message().find("slash (/) characters"),
                  std::string::npos)
            << value;
    }
}

TEST_F(Validators, RejectDepotsThatEndInASeparator) {
    EXPECT_EQ(verdict(region_depot_is_ok(path(""), "UNIX")),
              "RETRY: depot may not end in the (/) character\\nInvalid depot '" + path("") +
                  "' disallowed");
    EXPECT_EQ(verdict(region_depot_is_ok("C:\\depot\\", "Windows")),
              "RETRY: depot may not end in the (\\) character\\nInvalid depot 'C:\\depot\\' "
              "disallowed");
}

TEST_F(Validators, RejectUnixDepotsThatAreNotADirectory) {
    region.write_file("file", "");
    EXPECT_EQ(verdict(region_depot_is_ok(path("none"), "UNIX")),
              "RETRY: the input directory (" + path("none") + ") does not exist and is disallowed");
    EXPECT_EQ(
        verdict(region_depot_is_ok(path("file"), "UNIX")),
        "RETRY: the input directory (" + path("file") + ") is actually a FILE and is disallowed");
}

TEST_F(Validators, CheckOnlyTheFormOfWindowsPaths) {
    depot_is("");
    EXPECT_EQ(verdict(region_depot_is_ok("C:\\none", "Windows")), "accepted");
    EXPECT_EQ(verdict(region_parent_is_ok("C:\\none.txt", "Windows")), "accepted");
    EXPECT_EQ(verdict(region_notify_is_ok("none.bat", "Windows", gatebits)), "accepted");
}

TEST_F(Validators, GiveTheMessagesForParents) {
    std::filesystem::create_directory(path("directory"));
    region.write_file("parent.txt", "");
    EXPECT_EQ(verdict(region_parent_is_ok(path("parent.txt"), "UNIX")), "accepted");
    EXPECT_EQ(verdict(region_parent_is_ok(std::string(257, 'x'), "UNIX")),
              "RETRY: parent gatebits file value value exceeds 256 character max");
    EXPECT_EQ(verdict(region_parent_is_ok("a,b", "UNIX")),
              "RETRY: parent gatebits file may not contain commas (,) semi-colons (;) or slash "
              "(\\) characters\\nInvalid file 'a,b' disallowed");
    EXPECT_EQ(verdict(region_parent_is_ok("/a/", "UNIX")),
              "RETRY: parent gatebits_file may not end in the (/) character\\nInvalid parent "
              "gatebits_file '/a/' disallowed");
    EXPECT_EQ(verdict(region_parent_is_ok("/none", "UNIX")),
              "RETRY: the input parent gatebits file (/none) does not exist and is disallowed");
    EXPECT_EQ(verdict(region_parent_is_ok(path("directory"), "UNIX")),
              "RETRY: the input parent gatebits file (" + path("directory") +
                  ") is actually a DIRECTORY and is disallowed");
}

TEST_F(Validators, AcceptValuesOfUpTo256Characters) {
    const std::string value(256, 'x');
    EXPECT_EQ(verdict(region_parent_is_ok(value, "Windows")), "accepted");
    EXPECT_EQ(verdict(region_notify_is_ok(value, "Windows", gatebits)), "accepted");
    EXPECT_EQ(verdict(region_list_is_ok(value)), "accepted");
    EXPECT_EQ(verdict(region_MOTD_is_ok(value)), "accepted");
    EXPECT_EQ(verdict(region_MOTDL_is_ok(value)), "accepted");
    EXPECT_EQ(verdict(alias_value_is_ok(value)), "accepted");
}

TEST_F(Validators, FindNotifyProgramsInTheDepot) {
    std::filesystem::create_directories(path("depot/directory"));
    region.write_file("depot/script.sh", "");
    depot_is(path("depot"));
    EXPECT_EQ(verdict(region_notify_is_ok("script.sh", "UNIX", gatebits)), "accepted");
    EXPECT_EQ(verdict(region_notify_is_ok("none.sh", "UNIX", gatebits)),
              "RETRY: the input notify program (none.sh) does not exist in the depot and is "
              "disallowed");
    EXPECT_EQ(verdict(region_notify_is_ok("directory", "UNIX", gatebits)),
              "RETRY: the input notify program (directory) in the depot, but is actually a "
              "DIRECTORY and is disallowed");
    EXPECT_FALSE(region_notify_is_ok(path("depot/script.sh"), "UNIX", gatebits).accepted());
}

TEST_F(Validators, FindNotifyProgramsAtTheRootWithoutADepot) {
    gatebits = Gatebits(std::string("gatewarden;;;east;\n"));
    EXPECT_EQ(verdict(region_notify_is_ok("etc/passwd", "UNIX", gatebits)), "accepted");
}

TEST_F(Validators, GiveTheMessagesForTheFormOfNotifyPrograms) {
    gatebits = Gatebits(std::string("gatewarden;;;east;\n"));
    EXPECT_EQ(verdict(region_notify_is_ok(std::string(257, 'x'), "UNIX", gatebits)),
              "RETRY: notify program value value exceeds 256 character max");
    EXPECT_EQ(verdict(region_notify_is_ok("a\\b", "UNIX", gatebits)),
              "RETRY: notify program may not contain commas (,) semi-colons (;) or slash (\\) "
              "characters\\nInvalid file 'a\\b' disallowed");
    EXPECT_EQ(verdict(region_notify_is_ok("a/", "UNIX", gatebits)),
              "RETRY: notify program may not end in the (/) character\\nInvalid notify program "
              "'a/' disallowed");
}

TEST_F(Validators, RejectListsWithCommasOrSemicolons) {
    EXPECT_EQ(verdict(region_list_is_ok("(a) <b> ~c")), "accepted");
    for (const char* value : {"a,b", "a;b"}) {
        EXPECT_EQ(verdict(region_list_is_ok(value)),
                  "RETRY: list value may not contain commas (,) or semi-colons (;)");
    }
    EXPECT_EQ(verdict(region_list_is_ok(std::string(257, 'x'))),
              "RETRY: list value value exceeds 256 character max");
}

TEST_F(Validators, RejectMotdsWithSemicolonsOnly) {
    EXPECT_EQ(verdict(region_MOTD_is_ok("a, b")), "accepted");
    EXPECT_EQ(verdict(region_MOTD_is_ok("a; b")),
              "RETRY: MOTD values may not contain semi-colons (;)");
    EXPECT_EQ(verdict(region_MOTD_is_ok(std::string(257, 'x'))),
              "RETRY: MOTD value value exceeds 256 character max");
}

TEST_F(Validators, RejectMotdListsWithSemicolonsOnly) {
    EXPECT_EQ(verdict(region_MOTDL_is_ok("a, b")), "accepted");
    EXPECT_EQ(verdict(region_MOTDL_is_ok("a; b")),
              "RETRY: MOTD Restriction List values may not contain semi-colons (;)");
    EXPECT_EQ(verdict(region_MOTDL_is_ok(std::string(257, 'x'))),
              "RETRY: MOTD Restriction List value value exceeds 256 character max");
}

TEST_F(Validators, CheckAliasValues) {
    EXPECT_EQ(verdict(alias_value_is_ok("(a) (b)")), "accepted");
    EXPECT_EQ(verdict(alias_value_is_ok(std::string(257, ','))),
              "RETRY: alias value value exceeds 256 character max");
    for (const char* value : {"a,b", "a;b"}) {
        EXPECT_EQ(verdict(alias_value_is_ok(value)),
                  "RETRY: alias value may not contain commas (,) or semi-colons (;)");
    }
}

TEST_F(Validators, CheckAliasNames) {
    Aliases aliases;
    aliases.number_of_aliases = 2;
    aliases.ALIAS_NAME[0] = "One";
    aliases.ALIAS_NAME[1] = "Two";
    aliases.ALIAS_NAME[2] = "stale";
    EXPECT_EQ(verdict(alias_name_is_ok("some_Alias_09", aliases)), "accepted");
    EXPECT_EQ(verdict(alias_name_is_ok(std::string(50, 'n'), aliases)), "accepted");
    EXPECT_EQ(verdict(alias_name_is_ok("two", aliases)), "accepted");
    EXPECT_EQ(verdict(alias_name_is_ok("stale", aliases)), "accepted");
    EXPECT_EQ(verdict(alias_name_is_ok(std::string(51, '-'), aliases)),
              "RETRY: alias name value exceeds 50 character max");
    EXPECT_EQ(verdict(alias_name_is_ok("a-b", aliases)),
              "RETRY: alias names must only contain [a..z,A..Z,0..9,_]");
    EXPECT_EQ(verdict(alias_name_is_ok("Two", aliases)),
              "RETRY: alias name Two already exist.  You should edit that one or input another "
              "alias name");
}

TEST_F(Validators, CheckSinglePropertiesOfValues) {
    EXPECT_TRUE(item_value_exceeds_max_character_size("thing", "abc", 3).accepted());
    EXPECT_TRUE(value_contains_file_dir_OS_posion("a/b", "thing", "file", "UNIX").accepted());
    EXPECT_TRUE(value_contains_file_dir_OS_posion("a\\b", "thing", "file", "Windows").accepted());
    EXPECT_TRUE(value_has_comma_or_semi("a b", "thing").accepted());
    EXPECT_TRUE(value_ends_in_OS_dir_char("a\\", "thing", "UNIX").accepted());
    EXPECT_TRUE(value_ends_in_OS_dir_char("a/", "thing", "Windows").accepted());
    EXPECT_TRUE(value_ends_in_OS_dir_char("", "thing", "UNIX").accepted());
    EXPECT_EQ(verdict(item_value_exceeds_max_character_size("thing", "abcd", 3)),
              "RETRY: thing value exceeds 3 character max");
    EXPECT_EQ(verdict(value_has_comma_or_semi("a;b", "thing")),
              "RETRY: thing value may not contain commas (,) or semi-colons (;)");
}

}  // namespace
}  // namespace gatescope
