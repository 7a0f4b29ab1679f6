#include "actions/actions.h"
#include "actions/requests.h"
#include "actions/tool_settings.h"
#include "main/selections.h"
#include "policy/checker.h"
#include "units/on_stage.h"

namespace {

class Dispatch : public OnStage {
  protected:
    Dispatch()
        : OnStage(a_region()
                      .with_line(2, "W:depot;{stage}/depot;O;")
                      .with_file("a_file", "")
                      .with_file("a_directory/file", "")) {
        GS_VAR[UNIX_CHECKER] = region.checker_path();
        IS_DURING_INSTALL = false;
    }
    ~Dispatch() override { IS_DURING_INSTALL = false; }

    /// What the guard says of action n when its prompt is cancelled with `path` in the field.
    int guard_of_path(int n, RegionLine line, int field, const std::string& path) {
        set_a_field(line, field, path);
        region.cancels();
        const int result = A_X(n);
        EXPECT_EQ(region.shown_so_far().dialogs().size(), 1u) << n << path;
        return result;
    }
};
using DispatchDeathTest = Dispatch;

TEST_F(DispatchDeathTest, TheGuardRefusesWhatIsRunDirectly) {
    for (const int n : {-1, 0, 1, 2, 3, 8, 13, 15, 18, 19, 23, 29, 30}) {
        EXPECT_GRIPE(A_X(n), "incomplete action coding in A_X:main") << n;
    }
}

TEST_F(Dispatch, TheGuardLooksAtUnixPathsOnly) {
    const std::string file = region.path("a_file");
    const std::string directory = region.path("a_directory");
    for (const auto& [n, line] : {std::pair{7, PARENT_LINE}, std::pair{10, NOTIFY_LINE}}) {
        EXPECT_EQ(guard_of_path(n, line, 2, ""), 1) << n;
        EXPECT_EQ(guard_of_path(n, line, 2, file), 1) << n;
        EXPECT_EQ(guard_of_path(n, line, 2, directory), 0) << n;
        EXPECT_EQ(guard_of_path(n, line, 2, "/no/such/file"), 0) << n;
    }
    for (const auto& [n, line] : {std::pair{6, PARENT_LINE}, std::pair{9, NOTIFY_LINE}}) {
        EXPECT_EQ(guard_of_path(n, line, 1, directory), 1) << n;
        EXPECT_EQ(guard_of_path(n, line, 1, "/no/such/file"), 1) << n;
    }
}

TEST_F(Dispatch, TheGuardSaysWhetherTheFileCouldBeChecked) {
    region.cancels();
    EXPECT_EQ(A_X(11), 1);
    GS_VAR[UNIX_CHECKER] = "";
    EMERGENCY_CHECKER = region.path("no_checker");
    region.cancels();
    EXPECT_EQ(A_X(11), 0);
    EMERGENCY_CHECKER = "";
}

TEST_F(Dispatch, OutsideInstallationNothingIsRefused) {
    EXPECT_EQ(A_during_install("A01 - Prune Log Files"), 0);
    EXPECT_TRUE(region.shown_so_far().dialogs().empty());
}

TEST_F(Dispatch, ARefusalNamesTheActionByItsTitle) {
    IS_DURING_INSTALL = true;
    EXPECT_EQ(A_during_install("A01 - Prune Log Files"), 1);
    EXPECT_EQ(A_during_install("A02 - one - two"), 1);
    EXPECT_EQ(A_during_install("Prune-Log-Files"), 1);
    EXPECT_EQ(region.shown_so_far().dialogs(),
              (Dialogs{advised_and_waited("This Action: 'Prune Log Files'\n\nis not available "
                                          "during the installation process..."),
                       advised_and_waited("This Action: 'one - two'\n\nis not available during the "
                                          "installation process..."),
                       advised_and_waited("This Action is not available during the installation "
                                          "process...")}));
}

TEST_F(DispatchDeathTest, SettingsAreAskedForInTwoModesOnly) {
    EXPECT_GRIPE(ask_all_configure('m'), "Internal error in ask_all_configure");
    EXPECT_GRIPE(ask_all_configure('\0'), "Internal error in ask_all_configure");
}

TEST_F(Dispatch, TheWalksHaveTheirTitlesThoughNoMenuShowsThem) {
    EXPECT_STREQ(request_numbered(RequestKind::ACTION, 28)->label,
                 "A28 - Guide through important Gatebits file fields");
    EXPECT_STREQ(request_numbered(RequestKind::ACTION, 29)->label,
                 "A29 - Guide through ALL Gatebits file fields");
}

}  // namespace
