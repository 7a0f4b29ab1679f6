#include "queries/commands.h"

#include <gtest/gtest.h>

#include "messages/command_names.h"

namespace gatescope {
namespace {

TEST(CommandNumber, IsThePositionInTheList) {
    EXPECT_EQ(command_number("chbl"), 1);
    EXPECT_EQ(command_number("checkin"), 2);
    EXPECT_EQ(command_number("mkbl"), 52);
    EXPECT_EQ(command_number("mkbl_complete"), 53);
    EXPECT_EQ(command_number("setactivity_none"), 54);
}

TEST(CommandNumber, IsZeroForUnknownCommands) {
    for (const char* name : {"", "*", "Checkin", "check", "mkbl_", ",", "setactivity_none,"}) {
        EXPECT_EQ(command_number(name), 0) << name;
    }
}

TEST(CommandNumber, IsThatOfTheFirstOfTwoJoinedCommands) {
    EXPECT_EQ(command_number("checkin,checkout"), 2);
}

TEST(CommandNumber, IsInTheMapForEveryCommand) {
    EXPECT_EQ(ALL_TRIGGERABLE_COMMANDS().size(), ALL_TRIGGERABLE_COMMANDS_MAP().size());
    EXPECT_EQ(
        ALL_TRIGGERABLE_COMMANDS(),
        ",chbl,checkin,checkout,chevent,chfolder,chmaster,chproject,chtype,lock,lnname,mkattr,"
        "mkbranch,mkcomp,mkelem,mkfolder,mkhlink,mklabel,mkproject,mkslink,mktype,mktrigger,"
        "modtype,protect,reserve,rmattr,rmbl,rmbranch,rmcomp,rmelem,rmfolder,rmhlink,rmlabel,"
        "rmname,rmproject,rmtrigger,rmtype,rmver,rntype,uncheckout,unlock,unreserve,"
        "rebase_start,rebase_cancel,rebase_complete,mkactivity,setactivity,chactivity,"
        "rmactivity,mkstream,chstream,rmstream,mkbl,mkbl_complete,setactivity_none,");
    int number = 0;
    for (const auto name : TRIGGERABLE_COMMANDS) {
        EXPECT_EQ(command_number(std::string(name)), ++number);
    }
    EXPECT_EQ(number, 54);
    EXPECT_EQ(ALL_TRIGGERABLE_COMMANDS_MAP().substr(0, 16), ",1,,,,2,,,,,,,3,");
}

}  // namespace
}  // namespace gatescope
