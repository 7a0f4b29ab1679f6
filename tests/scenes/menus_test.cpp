// The main loop: menus, their entries and titles, cancelling, the installer's mode.

#include <gtest/gtest.h>

#include "scenes/region.h"

namespace gatescope {
namespace {

const std::string SEPARATOR = "------------------------------";

const std::string MAIN_ENTRIES =
    "Q01 - Commands/Users (success/denied) over Time,"
    "Q02 - Bits/Users used over Time,"
    "Q03 - Keys/Users/Commands denied over Time,"
    "Q04 - Bit vs. Bit (per user) usage over Time,"
    "Q05 - Key vs. Key (per user/command) usage over Time,"
    "Q06 - Commands/Users (success/denied) over Time by parent policy,"
    "------------------------------,"
    "A01 - Prune Log Files,"
    "------------------------------,"
    "A02 - Modify Current Gatebits file... (A03-A23),"
    "A23 - VERIFY:Run gatewarden {gatebits} -check,"
    "------------------------------,"
    "A24 - Configure Gatescope,"
    "------------------------------,"
    "A25 - Switch to another Gatebits file,"
    "A26 - Create New Gatebits file,"
    "A27 - Copy Existing Gatebits file";

const std::string LITE_MAIN_ENTRIES = [] {
    std::string entries = MAIN_ENTRIES;
    entries.replace(entries.find("Q03 - Keys"), 10, "Q03 - CPDs");
    entries.replace(entries.find("Q05 - Key vs. Key"), 17, "Q05 - CPD vs. CPD");
    return entries;
}();

const std::string SUBMENU_ENTRIES =
    "A04 - View/Change Windows Depot,"
    "A05 - View/Change UNIX Depot,"
    "A06 - View/Change Windows Gatebits Parent,"
    "A07 - View/Change UNIX Gatebits Parent,"
    "A08 - View/Change Region Logging Personality,"
    "A09 - View/Change Region Windows Notify/Script,"
    "A10 - View/Change Region UNIX Notify/Script,"
    "A11 - View/Change Region Inhibited Access,"
    "A12 - View/Change Region Special Access List,"
    "A13 - View/Change Region MOTD String,"
    "A14 - View/Change Region MOTD Restriction List,"
    "A15 - View/Change Per-VOB Functionality Bits Checking,"
    "A16 - View/Change Functionality Bits for region,"
    "A17 - Add Alias Definition to Region,"
    "A18 - Delete Alias Definition from Region,"
    "A19 - Delete References to Alias Definition from Region,"
    "A20 - Update Alias Definition in Region,"
    "------------------------------,"
    "A21 - View/Change/Delete a Command Key in Region,"
    "A22 - Add a Comand Key,"
    "A23 - VERIFY:Run gatewarden {gatebits} -check";
const std::string INSTALL_ENTRIES = SUBMENU_ENTRIES + ",A24 - Configure Gatescope";

Dialog main_menu(const std::string& region = "east") {
    return listed("Select Query or Action for (" + region + ")", MAIN_ENTRIES);
}
const Dialog SUBMENU = listed("Gatebits view/change Action for (east)", SUBMENU_ENTRIES);
const Dialog INSTALL_MENU = listed("Select Install Action for (east)", INSTALL_ENTRIES);

TEST(Menus, EndsWithZeroWhenMainMenuIsCancelled) {
    Region east = a_region();
    east.cancels();
    const Result result = east.run();
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.dialogs(), Dialogs{main_menu()});
}

TEST(Menus, NamesCpdsInLiteEdition) {
    Region east = a_region().lite();
    east.cancels();
    EXPECT_EQ(east.run().dialogs(),
              Dialogs{listed("Select Query or Action for (east)", LITE_MAIN_ENTRIES)});
}

TEST(Menus, ShowsBlankForRegionWithoutName) {
    Region east = a_region().named("");
    east.cancels();
    EXPECT_EQ(east.run().dialogs(), Dialogs{main_menu(" ")});
}

TEST(Menus, ShowsMenuAgainAfterSeparatorOrEmptyPick) {
    Region east = a_region();
    east.operator_picks(SEPARATOR).answers({.kind = "list", .outfile = ""}).cancels();
    const Result result = east.run();
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.dialogs(), (Dialogs{main_menu(), main_menu(), main_menu()}));
}

TEST(Menus, IgnoresPickThatIsInNoMenu) {
    Region east = a_region();
    east.answers({.kind = "list", .outfile = "A28"}).cancels();
    const Result result = east.run();
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.dialogs().size(), 2u);
}

TEST(Menus, TakesEveryNonZeroStatusAsCancel) {
    for (const int status : {1, 2, 10, 127, 255}) {
        Region east = a_region();
        east.answers({.kind = "list", .status = status});
        EXPECT_EQ(east.run().status, 0) << status;
    }
}

TEST(Menus, TakesMenuThatCannotBeShownAsCancel) {
    Region east = a_region().with_env("PATH", "/usr/bin:/bin");
    const Result result = east.run();
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(result.calls.empty());
}

TEST(Menus, OpensSubmenuAndReturnsToMainMenuOnCancel) {
    Region east = a_region();
    east.operator_picks("A02 - Modify Current Gatebits file... (A03-A23)")
        .operator_picks(SEPARATOR)
        .cancels()
        .cancels();
    const Result result = east.run();
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.dialogs(), (Dialogs{main_menu(), SUBMENU, SUBMENU, main_menu()}));
}

TEST(Menus, OpensSubmenuForActionTwoOfCommandLine) {
    Region east = a_region();
    east.cancels().cancels();
    const Result result = east.run({"A=2"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.dialogs(), (Dialogs{SUBMENU, main_menu()}));
}

TEST(Menus, EndsWithZeroWhenSubmenuOfSingleRequestIsCancelled) {
    Region east = a_region();
    east.cancels();
    const Result result = east.run({"A=2", "R=n"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.dialogs(), Dialogs{SUBMENU});
}

TEST(Menus, ShowsNoMainMenuToInstaller) {
    Region east = a_region();
    const Result result = east.run({"-during_install"});
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(result.calls.empty());
}

TEST(Menus, AcceptsMinusForEqualsFromInstallerAndShowsItsMenu) {
    for (const Args& args : {Args{"-during_install", "A-2"}, Args{"A-2", "-during_install"},
                             Args{"A=2", "-during_install"}}) {
        Region east = a_region();
        east.cancels();
        const Result result = east.run(args);
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.dialogs(), Dialogs{INSTALL_MENU});
    }
}

TEST(Menus, RefusesMinusForEqualsWithoutInstaller) {
    Region east = a_region().without_dialogs();
    EXPECT_EQ(east.run({"A-2"}).out, "ERROR: Unknown parameter (A-2) invalid.\n");
}

TEST(Menus, ShowsMenuByDialogEvenWithoutDialogs) {
    Region east = a_region().without_dialogs();
    east.cancels();
    const Result result = east.run();
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.dialogs(), Dialogs{main_menu()});
}

TEST(Menus, ExpandsRegionNameInShell) {
    Region east = a_region().named("a $(echo b) `echo c` $HOME d");
    east.cancels();
    EXPECT_EQ(east.run().dialogs(), Dialogs{main_menu("a b c " + east.path("home") + " d")});
}

TEST(Menus, PassesRegionNameUnchangedWithStrictQuoting) {
    const std::string name = "a $(touch x) `touch x` \"b\" \\n c\\";
    Region east = a_region().named(name).with_env("ZUL_GATESCOPE_STRICT_QUOTING", "YES");
    east.cancels();
    EXPECT_EQ(east.run().dialogs(), Dialogs{main_menu(name)});
    EXPECT_FALSE(east.has_file("x"));
}

}  // namespace
}  // namespace gatescope
