#include <algorithm>

#include "units/queries/query_region.h"

using testing::ElementsAre;
using testing::StartsWith;

namespace {

/// A query whose parameters all come from the command line.
class GivenQuery : public QueryRegion {
  protected:
    GivenQuery() {
        command_line_gives_command("checkin");
        command_line_gives_user("ann");
        command_line_gives_bit(5);
        command_line_gives_key(7);
    }
    ~GivenQuery() override { EXPECT_THAT(asked(), testing::Not(testing::HasSubstr("[text]"))); }

    /// All commands, users, bits and keys.
    void all_of_everything() {
        command_line_gives_command("*");
        command_line_gives_user("*");
        command_line_gives_bit(-1);
        command_line_gives_key(-1);
    }
};

TEST_F(GivenQuery, OneIsOfOneCommand) {
    run(Q_1);
    EXPECT_EQ(graph_title,
              "ClearCase command success/denied usage for:<br><dd>the (checkin) command for the "
              "user (ann)");
    EXPECT_THAT(filters(), ElementsAre("[2]", ":ann[", ":", ":"));
}

TEST_F(GivenQuery, OneIsOfAllCommands) {
    all_of_everything();
    run(Q_1);
    EXPECT_EQ(graph_title,
              "ClearCase command success/denied usage for:<br>(all) commands for (all) users");
    EXPECT_THAT(filters(), ElementsAre("[", ":", ":", ":"));
}

TEST_F(GivenQuery, TwoIsOfOneBit) {
    run(Q_2);
    EXPECT_EQ(graph_title,
              "ClearCase Functionality Bit usage for:<br>bit #5 (BIT__VOB_OWNER_CI_MAIN) for the "
              "user (ann)");
    EXPECT_THAT(filters(), ElementsAre(":B:", "<5>", ":ann[", ":"));
}

TEST_F(GivenQuery, TwoIsOfAllBits) {
    all_of_everything();
    run(Q_2);
    EXPECT_EQ(graph_title, "ClearCase Functionality Bit usage for:<br>(all) bits for (all) users");
    EXPECT_THAT(filters(), ElementsAre(":B:", ":", ":", ":"));
}

TEST_F(GivenQuery, ThreeIsOfOneKey) {
    run(Q_3);
    EXPECT_EQ(graph_title,
              "ClearCase Comand Key usage for:<br>key #7 for the user (ann) for the (checkin)");
    EXPECT_THAT(filters(), ElementsAre("]K<", "<7>", ":ann[", "[2]"));
}

TEST_F(GivenQuery, ThreeIsOfAllKeys) {
    all_of_everything();
    run(Q_3);
    EXPECT_EQ(graph_title,
              "ClearCase Command Key denials for:<br>(all) keys for (all) users for (all) "
              "commands");
    EXPECT_THAT(filters(), ElementsAre("]K<", ":", ":", ":"));
}

TEST_F(GivenQuery, ThreeOfTheLiteEditionIsOfCpds) {
    GATEWARDEN_IS = 0;
    run(Q_3);
    EXPECT_EQ(graph_title,
              "ClearCase CPD usage for:<br>CPD #7 for the user (ann) for the (checkin)");
    EXPECT_THAT(filters(), ElementsAre("]C<", "<7>", ":ann[", "[2]"));

    all_of_everything();
    run(Q_3);
    EXPECT_EQ(graph_title,
              "ClearCase CPD denials for:<br>(all) keys for (all) users for (all) commands");
    EXPECT_THAT(filters(), ElementsAre("]C<", ":", ":", ":"));
}

TEST_F(GivenQuery, FourIsOfAUser) {
    run(Q_4);
    EXPECT_EQ(graph_title,
              "ClearCase Functionality Bit Vs. Bit usage for:<br>(all) bits for the user (ann)");
    EXPECT_THAT(filters(), ElementsAre(":B:", ":ann[", ":", ":"));

    all_of_everything();
    run(Q_4);
    EXPECT_EQ(graph_title,
              "ClearCase Functionality Bit Vs. Bit usage for:<br>(all) bits for (all) users");
    EXPECT_THAT(filters(), ElementsAre(":B:", ":", ":", ":"));
}

TEST_F(GivenQuery, FiveIsOfAUserAndACommand) {
    run(Q_5);
    EXPECT_EQ(graph_title,
              "ClearCase Comand Key vs. Key usage for:<br>(all) Keys for the user (ann) for the "
              "(checkin)");
    EXPECT_THAT(filters(), ElementsAre("]K<", ":ann[", "[2]", ":"));

    all_of_everything();
    run(Q_5);
    EXPECT_EQ(graph_title,
              "ClearCase Comand Key vs. Key usage for:<br>(all) Keys for (all) users for (all) "
              "commands");
    EXPECT_THAT(filters(), ElementsAre("]K<", ":", ":", ":"));
}

TEST_F(GivenQuery, FiveOfTheLiteEditionIsOfCpds) {
    GATEWARDEN_IS = 0;
    run(Q_5);
    EXPECT_EQ(graph_title,
              "ClearCase CPD vs. CPD usage for:<br>(all) CPDs for the user (ann) for the "
              "(checkin)");
    EXPECT_THAT(filters(), ElementsAre("]C<", ":ann[", "[2]", ":"));
}

TEST_F(GivenQuery, SixIsOfTheParentPolicy) {
    run(Q_6);
    EXPECT_EQ(graph_title,
              "ClearCase command allowed/denied by parent policy for:<br><dd>the (checkin) "
              "command for the user (ann)");
    EXPECT_THAT(filters(), ElementsAre("[2]", ":ann[", ":", ":"));

    all_of_everything();
    run(Q_6);
    EXPECT_EQ(graph_title,
              "ClearCase command allowed/denied by parent policy for:<br>(all) commands for (all) "
              "users");
    EXPECT_THAT(filters(), ElementsAre("[", ":", ":", ":"));
}

TEST_F(GivenQuery, TheLastCommandHasTheLastNumber) {
    command_line_gives_command("setactivity_none");
    run(Q_1);
    EXPECT_THAT(graph_title, testing::HasSubstr("the (setactivity_none) command"));
    EXPECT_EQ(GLOBAL_TEST_STRING_1, "[54]");
}

TEST_F(GivenQuery, KeyZeroIsAKey) {
    command_line_gives_key(0);
    run(Q_3);
    EXPECT_EQ(GLOBAL_TEST_STRING_2, "<0>");
    EXPECT_THAT(graph_title, StartsWith("ClearCase Comand Key usage for:<br>key #0 "));
}

TEST_F(GivenQuery, AKeyBeyond32BitsStaysItself) {
    command_line_gives_key(5000000000);
    run(Q_3);
    EXPECT_EQ(GLOBAL_TEST_STRING_2, "<5000000000>");
}

TEST_F(GivenQuery, CountsTheRecordsOfTheGivenBit) {
    command_line_gives_user("*");
    logged({":B:ann[3]-<5>", ":B:bob[4]-<5>", ":B:ann[3]-<6>", ":S:ann[3]-<->", ":D:ann[3]B<5>",
            ":B:ann[3]-<15>"});
    run(Q_2);
    EXPECT_EQ(cell_success[0], 2U);
    EXPECT_EQ(cell_denied[0], 0U);
    EXPECT_EQ(pages(), 1);
}

TEST_F(GivenQuery, CountsEveryBitRecordWhenAllAreChosen) {
    all_of_everything();
    logged({":B:ann[3]-<5>", ":B:bob[4]-<23>", ":S:ann[3]-<->"});
    run(Q_2);
    EXPECT_EQ(cell_success[0], 2U);
}

TEST_F(GivenQuery, EachDriverReadsTheDataOfItsOwnNumber) {
    all_of_everything();
    logged({":S:ann[1]-<->", ":D:ann[1]K<3>", ":D:ann[1]K<3>", ":B:ann[1]-<4>", ":B:ann[1]-<4>",
            ":B:ann[1]-<4>", ":P:ann[1]a<->", ":P:ann[1]a<->", ":P:ann[1]a<->", ":P:ann[1]a<->",
            ":P:ann[1]d<->"});
    run(Q_1);
    EXPECT_EQ(cell_success[0], 1U);
    EXPECT_EQ(cell_denied[0], 2U);
    run(Q_2);
    EXPECT_EQ(cell_success[0], 3U);
    run(Q_3);
    EXPECT_EQ(cell_success[0], 0U);
    EXPECT_EQ(cell_denied[0], 2U);
    run(Q_4);
    EXPECT_EQ(cell_success[4], 3U);
    run(Q_5);
    EXPECT_EQ(cell_success[3], 2U);
    EXPECT_EQ(highest_key_read, 3);
    run(Q_6);
    EXPECT_EQ(cell_success[0], 4U);
    EXPECT_EQ(cell_denied[0], 1U);
}

TEST_F(GivenQuery, ThePageCarriesTheNumberOfTheQuery) {
    void (*const drivers[])(const Options&) = {Q_1, Q_2, Q_3, Q_4, Q_5, Q_6};
    for (const auto driver : drivers) run(driver);
    std::vector<std::string> names;
    for (const auto& page : std::filesystem::directory_iterator(path("results"))) {
        names.push_back(page.path().filename().string().substr(15));
    }
    std::sort(names.begin(), names.end());
    EXPECT_THAT(names, ElementsAre("_Q01.html", "_Q02.html", "_Q03.html", "_Q04.html", "_Q05.html",
                                   "_Q06.html"));
}

}  // namespace
