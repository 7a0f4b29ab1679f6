#include "queries/commands.h"
#include "units/queries/query_region.h"

namespace gatescope {

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

class QueryDialogs : public QueryRegion {
  protected:
    // The shell removes the inner quotes of two prompts.
    static Dialog command_dialog() {
        const std::string names = ALL_TRIGGERABLE_COMMANDS();
        return listed("Select triggerable command to display usage for...",
                      "*" + names.substr(0, names.size() - 1));
    }
    static Dialog user_dialog() {
        return prompted("Input user to display usage for or * for all users:", "*");
    }
    static Dialog bit_dialog() {
        return listed("Select Functionility Bit to display usage for...", BITS);
    }
    static Dialog key_dialog() {
        return prompted("Input Command Key Number to display denials for (* for all keys):", "*");
    }

    static constexpr char BITS[] =
        "* - <ALL BITS>,00 - BIT__AUTO_BRANCH_REMOVAL,01 - BIT__CHOWN_VOB_OWNER,"
        "02 - BIT__EVIL_TWIN,03 - BIT__ONE_CO_PER_BRANCH,04 - BIT__CHECK_BRANCH_LABEL_NAMES,"
        "05 - BIT__VOB_OWNER_CI_MAIN,06 - BIT__RECURSIVE_CI_CO_UNCO,07 - BIT__CHECK_MAGIC_PATH,"
        "08 - BIT__NO_SPACES_IN_ELEMENT_NAMES,09 - BIT__NO_MULTIPLE_MERGES,10 - BIT__SMART_CHECKIN,"
        "11 - BIT__CASE_CHECKING,12 - BIT__ATOMIC_CHANGE,13 - BIT__REQUIRE_EXTENSION,"
        "14 - BIT__NOTIFY_PARENT_CHANGE_ON_CO,15 - BIT__NOTIFY_PARENT_CHANGE_ON_CI,"
        "16 - BIT__PREVENT_DATA_LOSS,17 - BIT__AUTO_EXEC_BIT,18 - BIT__PREVENT_CORE_ELEMENTS,"
        "19 - BIT__AUTO_DIRECTORY_PROTECT,20 - BIT__AUTO_CONTRIB_REMOVAL,"
        "21 - BIT__WARN_LOST_AND_FOUND,22 - BIT__OWN_LIKE_PARENT_DIR,"
        "23 - BIT__FORCE_CHECKOUTS_UNRESERVED";
};

TEST_F(QueryDialogs, QueryOneAsksForCommandAndUser) {
    operator_answers({"rmelem", "Ann.B"});
    ask(1);
    EXPECT_EQ(questions(), (Dialogs{command_dialog(), user_dialog()}));
    EXPECT_EQ(graph_title,
              "ClearCase command success/denied usage for:<br><dd>the (rmelem) command for the "
              "user (Ann.B)");
    EXPECT_THAT(filters,
                ElementsAre(filled("[%d]", command_number("rmelem")), ":ann.b[", ":", ":"));
}

TEST_F(QueryDialogs, QueryTwoAsksForBitAndUser) {
    operator_answers({"09 - BIT__NO_MULTIPLE_MERGES", "*"});
    ask(2);
    EXPECT_EQ(questions(), (Dialogs{bit_dialog(), user_dialog()}));
    EXPECT_THAT(graph_title, HasSubstr("<br>bit #9 (BIT__NO_MULTIPLE_MERGES) for (all) users"));
    EXPECT_THAT(filters, ElementsAre(":B:", "<9>", ":", ":"));
}

TEST_F(QueryDialogs, QueryThreeAsksForKeyUserAndCommand) {
    operator_answers({"012", "*", "*"});
    ask(3);
    EXPECT_EQ(questions(), (Dialogs{key_dialog(), user_dialog(), command_dialog()}));
    EXPECT_THAT(graph_title, HasSubstr("<br>key #12 for (all) users for (all) commands"));
    EXPECT_THAT(filters, ElementsAre("]K<", "<12>", ":", ":"));
}

TEST_F(QueryDialogs, QueryFourAsksForTheUser) {
    operator_answers({"ann"});
    ask(4);
    EXPECT_EQ(questions(), (Dialogs{user_dialog()}));
}

TEST_F(QueryDialogs, QueryFiveAsksForUserAndCommand) {
    operator_answers({"ann", "checkin"});
    ask(5);
    EXPECT_EQ(questions(), (Dialogs{user_dialog(), command_dialog()}));
}

TEST_F(QueryDialogs, QuerySixAsksForCommandAndUser) {
    operator_answers({"*", "*"});
    ask(6);
    EXPECT_EQ(questions(), (Dialogs{command_dialog(), user_dialog()}));
}

TEST_F(QueryDialogs, AskOnlyForParametersMissingInTheOptions) {
    command_line_gives_user("ann");
    operator_answers({"*", "lock"});
    ask(3);
    EXPECT_EQ(questions(), (Dialogs{key_dialog(), command_dialog()}));
}

TEST_F(QueryDialogs, AskForACpdInTheLiteEdition) {
    GATEWARDEN_IS = 0;
    operator_answers({"4", "*", "*"});
    ask(3);
    EXPECT_EQ(questions(),
              (Dialogs{prompted("Input CPD Number to display denials for (* for all CPD):", "*"),
                       user_dialog(), command_dialog()}));
}

TEST_F(QueryDialogs, OfferAllBitsAsTheFirstEntry) {
    operator_answers({"* - <ALL BITS>", "*"});
    ask(2);
    EXPECT_THAT(graph_title, HasSubstr("<br>(all) bits for (all) users"));
    EXPECT_THAT(filters, ElementsAre(":B:", ":", ":", ":"));
}

TEST_F(QueryDialogs, RepeatTheQuestionAfterAnEmptyAnswer) {
    operator_answers({"", "*", "", "", "ann"});
    ask(1);
    EXPECT_EQ(questions(), (Dialogs{command_dialog(), command_dialog(), user_dialog(),
                                    user_dialog(), user_dialog()}));
    EXPECT_EQ(filters[1], ":ann[");
}

TEST_F(QueryDialogs, RepeatTheQuestionAfterAnEmptyBit) {
    operator_answers({"", "00 - BIT__AUTO_BRANCH_REMOVAL", "*"});
    ask(2);
    EXPECT_EQ(questions(), (Dialogs{bit_dialog(), bit_dialog(), user_dialog()}));
    EXPECT_EQ(filters[1], "<0>");
}

TEST_F(QueryDialogs, RepeatTheQuestionAfterAKeyWithOtherThanDigits) {
    operator_answers({"12a", "-1", "**", "1 2", "", "12", "*", "*"});
    ask(3);
    Dialogs expected(6, key_dialog());
    expected.push_back(user_dialog());
    expected.push_back(command_dialog());
    EXPECT_EQ(questions(), expected);
    EXPECT_EQ(filters[1], "<12>");
}

TEST_F(QueryDialogs, TakeAStarAsAllKeys) {
    operator_answers({"*", "*", "*"});
    ask(3);
    EXPECT_THAT(filters, ElementsAre("]K<", ":", ":", ":"));
    EXPECT_THAT(graph_title, HasSubstr("<br>(all) keys for"));
}

TEST_F(QueryDialogs, EndTheQueryWithoutAPageIfCancelled) {
    struct Case {
        void (*driver)(const Options&, const QueriedRegion&);
        std::vector<std::string> answers;
    };
    const std::vector<Case> cases = {{Q_1, {}}, {Q_1, {"*"}}, {Q_2, {}},         {Q_2, {"* - all"}},
                                     {Q_3, {}}, {Q_3, {"*"}}, {Q_3, {"*", "*"}}, {Q_4, {}},
                                     {Q_5, {}}, {Q_5, {"*"}}, {Q_6, {}},         {Q_6, {"*"}}};
    for (const Case& query : cases) {
        operator_answers(query.answers);
        region.cancels();
        run(query.driver);
        EXPECT_TRUE(region.pages().empty());
        // There is no message about the data either.
        const Dialogs shown = asked();
        EXPECT_EQ(shown.size(), query.answers.size() + 1);
        for (const Dialog& one : shown) EXPECT_NE(one.args.front(), "yes_no");
    }
}

TEST_F(QueryDialogs, AcceptAnyTextAsUserAndEscapeIt) {
    operator_answers({"*", "100%s & <b>X</b>"});
    ask(1);
    EXPECT_THAT(graph_title, HasSubstr(" for the user (100%s &amp; &lt;b&gt;X&lt;/b&gt;)"));
    EXPECT_EQ(filters[1], ":100%s & <b>x</b>[");
}

TEST_F(QueryDialogs, EscapeThePickedCommandInTheTitle) {
    operator_answers({"\"<checkin>\" & co", "ann"});
    ask(6);
    EXPECT_THAT(graph_title, HasSubstr("the (&quot;&lt;checkin&gt;&quot; &amp; co) command for"));
}

TEST_F(QueryDialogs, LeaveOrdinaryNamesUnchanged) {
    operator_answers({"checkin", "o'neil.DOMAIN\\x-1_ü"});
    ask(1);
    EXPECT_THAT(graph_title,
                HasSubstr("the (checkin) command for the user (o'neil.DOMAIN\\x-1_ü)"));
}

TEST_F(QueryDialogs, GripeForABitThatIsNotInTheList) {
    operator_answers({"24 - BIT__NONE"});
    EXPECT_GRIPE(Q_2(options, queried()),
                 "Internal Error: Inform ZUL: Unexpected case in gatescope:Q_2\n");
}

TEST_F(QueryDialogs, RefuseQueriesDuringAnInstallation) {
    EXPECT_EQ(Q_during_install(false), 0);
    EXPECT_EQ(asked(), Dialogs());
    EXPECT_EQ(Q_during_install(true), 1);
    EXPECT_EQ(asked(),
              Dialogs{advised_and_waited(
                  "Query functions are not available during the installation process...")});
}

}  // namespace
}  // namespace gatescope
