#include "actions/requests.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "actions/menus.h"

namespace gatescope {
namespace {

std::set<int> numbers_where(bool (*holds)(const Request& request)) {
    std::set<int> numbers;
    for (const Request& request : all_requests()) {
        if (request.kind == RequestKind::ACTION && holds(request)) numbers.insert(request.number);
    }
    return numbers;
}

TEST(Requests, AreActionsForAllNumbersExceptThree) {
    std::set<int> expected;
    for (int n = 1; n <= 29; ++n) {
        if (n != 3) expected.insert(n);
    }
    EXPECT_EQ(numbers_where([](const Request&) { return true; }), expected);
    EXPECT_EQ(request_numbered(RequestKind::ACTION, 3), nullptr);
    EXPECT_EQ(request_numbered(RequestKind::ACTION, 0), nullptr);
    EXPECT_EQ(request_numbered(RequestKind::ACTION, 30), nullptr);
}

TEST(Requests, AreGuardedWhenTheyCanDamageTheFile) {
    EXPECT_EQ(numbers_where([](const Request& request) { return request.guarded; }),
              (std::set<int>{4, 5, 6, 7, 9, 10, 11, 12, 14, 16, 17, 20, 21, 22}));
}

TEST(Requests, AreRefusedDuringAnInstallationWhenTheyNeedARegion) {
    EXPECT_EQ(numbers_where([](const Request& request) { return !request.during_install; }),
              (std::set<int>{1, 25, 26, 27}));
    Options options;
    for (const Request& request : all_requests())
        EXPECT_FALSE(refuse_during_install(request, options));
}

TEST(Requests, HaveHighestNumbers) {
    EXPECT_EQ(highest_number(RequestKind::QUERY), 6);
    EXPECT_EQ(highest_number(RequestKind::ACTION), 29);
}

TEST(Requests, AreFoundByTheirLabels) {
    for (const Request& request : all_requests()) {
        EXPECT_EQ(request_labelled(request.label), &request);
        EXPECT_EQ(request_numbered(request.kind, request.number), &request);
    }
    EXPECT_EQ(request_labelled("A22 - Add a Command Key"), nullptr);
}

TEST(Requests, HaveLabelsForWalksThatNoMenuShows) {
    EXPECT_STREQ(request_numbered(RequestKind::ACTION, 28)->label,
                 "A28 - Guide through important Gatebits file fields");
    EXPECT_STREQ(request_numbered(RequestKind::ACTION, 29)->label,
                 "A29 - Guide through ALL Gatebits file fields");
}

TEST(Menus, SubmenuHasAnEntryMoreForTheInstaller) {
    const std::string entries =
        "A04 - View/Change Windows Depot,A05 - View/Change UNIX Depot,A06 - View/Change Windows "
        "Gatebits Parent,A07 - View/Change UNIX Gatebits Parent,A08 - View/Change Region Logging "
        "Personality,A09 - View/Change Region Windows Notify/Script,A10 - View/Change Region UNIX "
        "Notify/Script,A11 - View/Change Region Inhibited Access,A12 - View/Change Region Special "
        "Access List,A13 - View/Change Region MOTD String,A14 - View/Change Region MOTD "
        "Restriction List,A15 - View/Change Per-VOB Functionality Bits Checking,A16 - View/Change "
        "Functionality Bits for region,A17 - Add Alias Definition to Region,A18 - Delete Alias "
        "Definition from Region,A19 - Delete References to Alias Definition from Region,A20 - "
        "Update Alias Definition in Region,------------------------------,A21 - View/Change/Delete "
        "a Command Key in Region,A22 - Add a Comand Key,A23 - VERIFY:Run gatewarden {gatebits} "
        "-check";
    EXPECT_EQ(submenu_entries(false), entries);
    EXPECT_EQ(submenu_entries(true), entries + ",A24 - Configure Gatescope");
}

TEST(Menus, MainMenuNamesKeysByEdition) {
    const std::string line = ",------------------------------,";
    const std::string actions =
        line + "A01 - Prune Log Files" + line +
        "A02 - Modify Current Gatebits file... (A03-A23),A23 - VERIFY:Run gatewarden {gatebits} "
        "-check" +
        line + "A24 - Configure Gatescope" + line +
        "A25 - Switch to another Gatebits file,A26 - Create New Gatebits file,A27 - Copy Existing "
        "Gatebits file";
    EXPECT_EQ(main_menu_entries(1),
              "Q01 - Commands/Users (success/denied) over Time,Q02 - Bits/Users used over Time,Q03 "
              "- Keys/Users/Commands denied over Time,Q04 - Bit vs. Bit (per user) usage over "
              "Time,Q05 - Key vs. Key (per user/command) usage over Time,Q06 - Commands/Users "
              "(success/denied) over Time by parent policy" +
                  actions);
    EXPECT_EQ(main_menu_entries(0),
              "Q01 - Commands/Users (success/denied) over Time,Q02 - Bits/Users used over Time,Q03 "
              "- CPDs/Users/Commands denied over Time,Q04 - Bit vs. Bit (per user) usage over "
              "Time,Q05 - CPD vs. CPD (per user/command) usage over Time,Q06 - Commands/Users "
              "(success/denied) over Time by parent policy" +
                  actions);
}

TEST(Menus, TitlesNameTheRegion) {
    EXPECT_EQ(main_menu_title("east"), "Select Query or Action for (east)");
    EXPECT_EQ(submenu_title("east", false), "Gatebits view/change Action for (east)");
    EXPECT_EQ(submenu_title("east", true), "Select Install Action for (east)");
}

TEST(Menus, SeparatorsAreRecognizedByFiveDashes) {
    EXPECT_TRUE(is_separator("------------------------------"));
    EXPECT_TRUE(is_separator("-----x"));
    EXPECT_FALSE(is_separator("----"));
    EXPECT_FALSE(is_separator(""));
    EXPECT_FALSE(is_separator("A01 - Prune Log Files"));
}

}  // namespace
}  // namespace gatescope
