#include "actions/actions.h"
#include "actions/requests.h"
#include "actions/tool_settings.h"
#include "main/selections.h"
#include "units/on_stage.h"

namespace {

class Dispatch : public OnStage {
  protected:
    Dispatch() {
        GS_VAR[UNIX_CHECKER] = region.checker_path();
        IS_DURING_INSTALL = false;
    }
    ~Dispatch() override { IS_DURING_INSTALL = false; }
};
using DispatchDeathTest = Dispatch;

TEST_F(DispatchDeathTest, TheGuardRefusesWhatIsRunDirectly) {
    for (const int n : {-1, 0, 1, 2, 3, 8, 13, 15, 18, 19, 23, 29, 30}) {
        EXPECT_GRIPE(A_X(n), "incomplete action coding in A_X:main") << n;
    }
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
