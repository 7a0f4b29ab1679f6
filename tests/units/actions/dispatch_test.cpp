#include <gtest/gtest.h>

#include "actions/actions.h"
#include "policy/tool_variables.h"
#include "units/on_stage.h"

namespace gatescope {
namespace {

/// Dialogs get no answer, which aborts them.
class Dispatch : public OnStage {
  protected:
    Dispatch() {
        east.settings.ENTERPRIZE_PERMISSION_FILE = gatebits_file;
        east.settings.tools.GS_VAR[UNIX_CHECKER] = region.checker_path();
        east.settings.tools.EMERGENCY_CHECKER = path("none");
        ZUL_PREFER_GUI = 0;
    }

    Options options;
    RegionInUse east;
};

TEST_F(Dispatch, GripesAboutActionsThatAreNotGuarded) {
    for (const int number : {0, 1, 2, 3, 8, 13, 15, 18, 19, 23, 24, 25, 26, 27, 28, 29, 30}) {
        EXPECT_GRIPE(A_X(options, east, number), "incomplete action coding in A_X:main");
    }
}

TEST_F(Dispatch, RunsTheActionOnceAndAdvisesWithoutAChecker) {
    east.settings.tools.GS_VAR[UNIX_CHECKER] = path("none");
    const std::string not_found = "#!gatescope_unix_gatewarden_check=" + path("none") +
                                  " \ndefined in  could not be found..\n";
    EXPECT_EQ(printed_by([&] { A_X(options, east, 11); }), not_found + not_found);
}

TEST_F(Dispatch, EndsAfterThreeRunsWithoutAChange) {
    region.checker_ends_with({3, 3, 3, 3, 3, 3, 3, 3, 3});
    const std::string reenter =
        "That change would introduced an error in the gatebits file.  Please reenter the value.\n";
    EXPECT_EQ(printed_by([&] { A_X(options, east, 11); }), reenter + reenter);
}

TEST_F(Dispatch, RefusesActionsByNameDuringAnInstallation) {
    EXPECT_EQ(printed_by([] { EXPECT_FALSE(A_during_install(false, "A01 - Prune Log Files")); }),
              "");
    EXPECT_EQ(printed_by([] { EXPECT_TRUE(A_during_install(true, "A01 - Prune Log Files")); }),
              "This Action: 'Prune Log Files'\n\nis not available during the installation "
              "process...\n");
    EXPECT_EQ(printed_by([] { EXPECT_TRUE(A_during_install(true, "Prune - Log - Files")); }),
              "This Action: 'Log - Files'\n\nis not available during the installation "
              "process...\n");
    EXPECT_EQ(printed_by([] { EXPECT_TRUE(A_during_install(true, "Prune")); }),
              "This Action is not available during the installation process...\n");
}

}  // namespace
}  // namespace gatescope
