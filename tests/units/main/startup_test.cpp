#include "main/startup.h"

#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>

#include "base/operator_name.h"
#include "base/run_identity.h"
#include "base/text.h"
#include "dialog/messages.h"
#include "dialog/toolkit.h"
#include "policy/checker.h"
#include "units/on_stage.h"

namespace gatescope {
namespace {

class Startup : public OnStage {
  protected:
    Startup() {
        for (const char* name :
             {"CLEARCASE_USER", "AUTH_USER", "LOGON_USER", "REMOTE_USER", "UNMAPPED_REMOTE_USER",
              "HTTP_COOKIE", "CLEARCASE_VIEW_KIND", "ZUL_USING_CCRC", "ATRIA_WEB_CLEARPROMPT",
              "ZUL_PREFER_NO_GUI", "tmp", "temp"}) {
            unsetenv(name);
        }
        ZUL_REMOTE_CLIENT_USER = 0;
    }
    ~Startup() override { region.enter(); }

    static void set(const char* name, const std::string& value) { setenv(name, value.c_str(), 1); }
    static std::string user() { return calculated_user().value_or("(null)"); }
};
using StartupDeathTest = Startup;

TEST_F(Startup, UserIsFromTheFirstVariableThatIsSet) {
    set("UNMAPPED_REMOTE_USER", "Fifth");
    EXPECT_EQ(user(), "fifth");
    set("REMOTE_USER", "Fourth");
    EXPECT_EQ(user(), "fourth");
    set("LOGON_USER", "Third");
    EXPECT_EQ(user(), "third");
    set("AUTH_USER", "Second");
    EXPECT_EQ(user(), "second");
    set("CLEARCASE_USER", "First");
    EXPECT_EQ(user(), "first");
}

TEST_F(Startup, UserIsEmptyFromAnEmptyVariable) {
    set("CLEARCASE_USER", "");
    set("AUTH_USER", "second");
    EXPECT_EQ(user(), "");
}

TEST_F(Startup, UserIsInTheCookieUpToASemicolon) {
    set("HTTP_COOKIE", "sid=7; user=Ann; x=y");
    EXPECT_EQ(user(), "ann");
    set("HTTP_COOKIE", "user=Bob");
    EXPECT_EQ(user(), "bob");
}

TEST_F(Startup, UserIsAlsoInACookieWhoseNameEndsInUser) {
    set("HTTP_COOKIE", "superuser=Eve;user=Ann");
    EXPECT_EQ(user(), "eve");
}

TEST_F(Startup, UserIsEmptyFromAnEmptyCookieWithMoreAfterIt) {
    set("HTTP_COOKIE", "user=;sid=7");
    EXPECT_EQ(user(), "");
}

TEST_F(Startup, UserIsFromThePasswordDatabaseWithoutOneInTheCookie) {
    const passwd* entry = getpwuid(geteuid());
    ASSERT_NE(entry, nullptr);
    std::string name = entry->pw_name;
    STRING_LOWER(name);
    EXPECT_EQ(user(), name);
    set("HTTP_COOKIE", "sid=7");
    EXPECT_EQ(user(), name);
    set("HTTP_COOKIE", "user=");
    EXPECT_EQ(user(), name);
}

TEST_F(Startup, UserHasNoDomain) {
    const std::pair<const char*, const char*> names[] = {{"DOM\\Sub\\Op", "op"},
                                                         {"/dom/Op", "op"},
                                                         {"a/b\\c/d", "c/d"},
                                                         {"Op", "op"},
                                                         {"dom\\", ""}};
    for (const auto& [given, kept] : names) {
        set("CLEARCASE_USER", given);
        EXPECT_EQ(clean_start()._CALCULATED_USER, kept) << given;
    }
}

TEST_F(Startup, DialogsAreOffOnlyForYesInAnyCase) {
    for (const char* value : {"yes", "YES", "yEs"}) {
        set("ZUL_PREFER_NO_GUI", value);
        clean_start();
        EXPECT_EQ(ZUL_PREFER_GUI, 0) << value;
    }
    for (const char* value : {"", "y", "no", "yes ", "yess"}) {
        set("ZUL_PREFER_NO_GUI", value);
        clean_start();
        EXPECT_EQ(ZUL_PREFER_GUI, 1) << value;
    }
    unsetenv("ZUL_PREFER_NO_GUI");
    clean_start();
    EXPECT_EQ(ZUL_PREFER_GUI, 1);
}

TEST_F(Startup, SnapshotAndWebClientsAreKnownByTheKindOfView) {
    set("CLEARCASE_VIEW_KIND", "a snapshot view");
    Operator who = clean_start();
    EXPECT_TRUE(who.ZUL_SNAPSHOT_USER);
    EXPECT_FALSE(who.REAL_ZUL_WEB_USER);
    set("CLEARCASE_VIEW_KIND", "web");
    who = clean_start();
    EXPECT_FALSE(who.ZUL_SNAPSHOT_USER);
    EXPECT_TRUE(who.REAL_ZUL_WEB_USER);
    EXPECT_EQ(ZUL_REMOTE_CLIENT_USER, 0);
}

TEST_F(Startup, RemoteClientsAreKnownByEitherVariable) {
    for (const char* name : {"ZUL_USING_CCRC", "ATRIA_WEB_CLEARPROMPT"}) {
        ZUL_REMOTE_CLIENT_USER = 0;
        set(name, "");
        const Operator who = clean_start();
        EXPECT_EQ(ZUL_REMOTE_CLIENT_USER, 1) << name;
        EXPECT_TRUE(who.REAL_ZUL_WEB_USER) << name;
        EXPECT_TRUE(who.REAL_ZUL_REMOTE_CLIENT_USER) << name;
        unsetenv(name);
    }
}

TEST_F(Startup, TempDirIsFromTmpElseTempElseSlashTmp) {
    verify_set_tempdir();
    EXPECT_EQ(TEMP_DIR, "/tmp");
    set("temp", region.path("home"));
    verify_set_tempdir();
    EXPECT_EQ(TEMP_DIR, region.path("home"));
    set("tmp", region.path("tmp"));
    verify_set_tempdir();
    EXPECT_EQ(TEMP_DIR, region.path("tmp"));
    EXPECT_TRUE(region.files_in("tmp").empty());
    EXPECT_TRUE(region.files_in("home").empty());
    EXPECT_EQ(GLOBAL_PID_STRING, std::to_string(getpid()));
}

TEST_F(Startup, TempDirIsNotFromUpperCaseVariables) {
    set("TMP", region.path("home"));
    verify_set_tempdir();
    EXPECT_EQ(TEMP_DIR, "/tmp");
    unsetenv("TMP");
}

TEST_F(StartupDeathTest, UnwritableTempDirIsFatalWithoutTryingTheNext) {
    set("temp", region.path("tmp"));
    set("tmp", "/no/such/dir");
    EXPECT_GRIPE(verify_set_tempdir(),
                 "ERROR: gatescope using TMP directory (/no/such/dir) but it is not required "
                 "writable... exiting");
    unsetenv("tmp");
    set("temp", "/no/other/dir");
    EXPECT_GRIPE(verify_set_tempdir(),
                 "ERROR: gatescope using TEMP directory (/no/other/dir) but it is not required "
                 "writable... exiting");
}

TEST_F(StartupDeathTest, TempDirIsUnwritableWhenTheProbesNameIsTaken) {
    set("tmp", region.temporary_directory());
    const auto verify_with_name_taken = [&] {
        const std::string name = "junk_test_gatescope_" + std::to_string(getpid()) + ".txt";
        region.write_file("tmp/" + name + "/in_the_way", "");
        verify_set_tempdir();
    };
    EXPECT_GRIPE(verify_with_name_taken(), "ERROR: gatescope using TMP directory (" +
                                               region.temporary_directory() +
                                               ") but it is not required writable... exiting");
}

TEST_F(Startup, TemporaryNamesHaveThreeParts) {
    TEMP_DIR = "/t";
    EXPECT_EQ(make_tfile("tag", "two", "three"), "/t/tag_two_three.txt");
    EXPECT_EQ(make_tfile("gatewarden_prompt_result", "123", nullptr),
              "/t/gatewarden_prompt_result_123_.txt");
    EXPECT_EQ(make_tfile("tag", nullptr, "9"), "/t/tag__9.txt");
    EXPECT_EQ(make_tfile(nullptr, nullptr, nullptr), "/t/__.txt");
    EXPECT_EQ(make_cache_file("one", "two"), "/t/cache_one_two.txt");
    EXPECT_EQ(make_cache_file(nullptr, "x"), "/t/cache__x.txt");
}

TEST_F(Startup, SleepReturnsTheRemainingSeconds) {
    EXPECT_EQ(zul_sleep(0), 0u);
}

TEST(EmergencyChecker, IsBesideTheProgram) {
    const std::pair<const char*, const char*> paths[] = {
        {"/opt/x/bin/gatescope", "/opt/x/bin/gatewarden"},
        {"gatescope", "gatewarden"},
        {"./gatescope", "./gatewarden"},
        {"/opt/x/tool", "gatewarden"},
        {"", "gatewarden"},
        // The last such letter is replaced, also in the name of a directory.
        {"/opt/gs/tool", "/opt/gatewarden"},
        {"/opt/x/bin/gatescope-debug", "/opt/x/bin/gatescope-debugatewarden"}};
    for (const auto& [program, checker] : paths) {
        EXPECT_EQ(emergency_checker(program), checker) << program;
    }
}

}  // namespace
}  // namespace gatescope
