#include <algorithm>

#include "units/queries/query_region.h"

namespace gatescope {

using testing::ElementsAre;
using testing::StartsWith;

namespace {

/// A test with all parameters in the options.
class QueryFromOptions : public QueryRegion {
  protected:
    QueryFromOptions() {
        command_line_gives_command("checkin");
        command_line_gives_user("ann");
        command_line_gives_bit(5);
        command_line_gives_key(7);
    }
    ~QueryFromOptions() override { EXPECT_EQ(questions(), Dialogs()); }

    /// All commands, users, bits and keys.
    void all_of_everything() {
        command_line_gives_command("*");
        command_line_gives_user("*");
        command_line_gives_bit(-1);
        command_line_gives_key(-1);
    }
};

// ONE: checkin, ann, bit 5 and key 7, as set by the fixture.
enum class Values { ONE, ALL };
constexpr auto ONE = Values::ONE;
constexpr auto ALL_OF_THEM = Values::ALL;
constexpr int FULL = 1;
constexpr int LITE = 0;

struct Given {
    int query;
    int edition;
    Values values;
    const char* title;
    /// Separated by blanks.
    const char* filters;
};

constexpr Given GIVEN[] = {
    {1, FULL, ONE,
     "ClearCase command success/denied usage for:<br><dd>the (checkin) command for the user (ann)",
     "[2] :ann[ : :"},
    {1, FULL, ALL_OF_THEM,
     "ClearCase command success/denied usage for:<br>(all) commands for (all) users", "[ : : :"},
    {2, FULL, ONE,
     "ClearCase Functionality Bit usage for:<br>bit #5 (BIT__VOB_OWNER_CI_MAIN) for the user (ann)",
     ":B: <5> :ann[ :"},
    {2, FULL, ALL_OF_THEM, "ClearCase Functionality Bit usage for:<br>(all) bits for (all) users",
     ":B: : : :"},
    {3, FULL, ONE, "ClearCase Comand Key usage for:<br>key #7 for the user (ann) for the (checkin)",
     "]K< <7> :ann[ [2]"},
    {3, FULL, ALL_OF_THEM,
     "ClearCase Command Key denials for:<br>(all) keys for (all) users for (all) commands",
     "]K< : : :"},
    {3, LITE, ONE, "ClearCase CPD usage for:<br>CPD #7 for the user (ann) for the (checkin)",
     "]C< <7> :ann[ [2]"},
    {3, LITE, ALL_OF_THEM,
     "ClearCase CPD denials for:<br>(all) keys for (all) users for (all) commands", "]C< : : :"},
    {4, FULL, ONE,
     "ClearCase Functionality Bit Vs. Bit usage for:<br>(all) bits for the user (ann)",
     ":B: :ann[ : :"},
    {4, FULL, ALL_OF_THEM,
     "ClearCase Functionality Bit Vs. Bit usage for:<br>(all) bits for (all) users", ":B: : : :"},
    {5, FULL, ONE,
     "ClearCase Comand Key vs. Key usage for:<br>(all) Keys for the user (ann) for the (checkin)",
     "]K< :ann[ [2] :"},
    {5, FULL, ALL_OF_THEM,
     "ClearCase Comand Key vs. Key usage for:<br>(all) Keys for (all) users for (all) commands",
     "]K< : : :"},
    {5, LITE, ONE,
     "ClearCase CPD vs. CPD usage for:<br>(all) CPDs for the user (ann) for the (checkin)",
     "]C< :ann[ [2] :"},
    {6, FULL, ONE,
     "ClearCase command allowed/denied by parent policy for:<br><dd>the (checkin) command for the "
     "user (ann)",
     "[2] :ann[ : :"},
    {6, FULL, ALL_OF_THEM,
     "ClearCase command allowed/denied by parent policy for:<br>(all) commands for (all) users",
     "[ : : :"},
};

TEST_F(QueryFromOptions, HasItsTitleAndFilters) {
    const Options one = options;
    all_of_everything();
    const Options all = options;
    for (const Given& given : GIVEN) {
        options = given.values == ONE ? one : all;
        GATEWARDEN_IS = given.edition;
        ask(given.query);
        EXPECT_EQ(graph_title, given.title);
        EXPECT_EQ(filters[0] + ' ' + filters[1] + ' ' + filters[2] + ' ' + filters[3],
                  given.filters)
            << given.title;
    }
}

TEST_F(QueryFromOptions, FiltersTheLastCommandByItsNumber) {
    command_line_gives_command("setactivity_none");
    ask(1);
    EXPECT_THAT(graph_title, testing::HasSubstr("the (setactivity_none) command"));
    EXPECT_EQ(filters[0], "[54]");
}

TEST_F(QueryFromOptions, AcceptsKeyZero) {
    command_line_gives_key(0);
    ask(3);
    EXPECT_EQ(filters[1], "<0>");
    EXPECT_THAT(graph_title, StartsWith("ClearCase Comand Key usage for:<br>key #0 "));
}

TEST_F(QueryFromOptions, AcceptsAKeyBeyond32Bits) {
    command_line_gives_key(5000000000);
    ask(3);
    EXPECT_EQ(filters[1], "<5000000000>");
}

TEST_F(QueryFromOptions, CountsTheRecordsOfTheGivenBit) {
    command_line_gives_user("*");
    write_log({":B:ann[3]-<5>", ":B:bob[4]-<5>", ":B:ann[3]-<6>", ":S:ann[3]-<->", ":D:ann[3]B<5>",
               ":B:ann[3]-<15>"});
    ask(2);
    EXPECT_EQ(result.cell_success[0], 2U);
    EXPECT_EQ(result.cell_denied[0], 0U);
}

TEST_F(QueryFromOptions, CountsTheRecordsOfAllBits) {
    all_of_everything();
    write_log({":B:ann[3]-<5>", ":B:bob[4]-<23>", ":S:ann[3]-<->"});
    ask(2);
    EXPECT_EQ(result.cell_success[0], 2U);
}

TEST_F(QueryFromOptions, CountsTheRecordsOfItsNumber) {
    all_of_everything();
    write_log({":S:ann[1]-<->", ":D:ann[1]K<3>", ":D:ann[1]K<3>", ":B:ann[1]-<4>", ":B:ann[1]-<4>",
               ":B:ann[1]-<4>", ":P:ann[1]a<->", ":P:ann[1]a<->", ":P:ann[1]a<->", ":P:ann[1]a<->",
               ":P:ann[1]d<->"});
    ask(1);
    EXPECT_EQ(result.cell_success[0], 1U);
    EXPECT_EQ(result.cell_denied[0], 2U);
    ask(2);
    EXPECT_EQ(result.cell_success[0], 3U);
    ask(3);
    EXPECT_EQ(result.cell_success[0], 0U);
    EXPECT_EQ(result.cell_denied[0], 2U);
    ask(4);
    EXPECT_EQ(result.cell_success[4], 3U);
    ask(5);
    EXPECT_EQ(result.cell_success[3], 2U);
    EXPECT_EQ(result.highest_key_read, 3);
    ask(6);
    EXPECT_EQ(result.cell_success[0], 4U);
    EXPECT_EQ(result.cell_denied[0], 1U);
}

TEST_F(QueryFromOptions, DescribesKeysByTheirLinesUpToKey119) {
    all_of_everything();
    std::string gatebits =
        "gatewarden;;;east;\n;;O;\n#comment\n;;\n;;\n; ;\n; ;\n;;;\nD;0;\n"
        "pre_checkin;one;\n# not a key\n\n  mkbranch;two;\n";
    for (int key = 3; key <= 119; ++key) gatebits += "key " + std::to_string(key) + ";\n";
    use_gatebits(gatebits);
    write_log({":D:ann[1]K<119>"});
    run(Q_5);
    const std::string page = region.page();
    for (const char* description : {"pre_checkin;one;", "  mkbranch;two;", "key 3;", "key 119;"}) {
        EXPECT_THAT(page, testing::HasSubstr("<td>" + std::string(description) + "</td>"));
    }
}

TEST_F(QueryFromOptions, IsIndependentOfTheQueryBefore) {
    all_of_everything();
    write_log({":S:ann[1]-<->", ":D:ann[1]K<3>"});
    ask(5);
    EXPECT_EQ(result.highest_key_read, 3);
    command_line_gives_user("nobody");
    ask(1);
    EXPECT_EQ(result.cell_max, 0U);
    EXPECT_EQ(result.highest_key_read, -1);
    EXPECT_THAT(filters, ElementsAre("[", ":nobody[", ":", ":"));
}

TEST_F(QueryFromOptions, WritesAPageWithItsNumberInTheName) {
    void (*const drivers[])(const Options&, const QueriedRegion&) = {Q_1, Q_2, Q_3, Q_4, Q_5, Q_6};
    for (const auto driver : drivers) run(driver);
    std::vector<std::string> names;
    for (const std::string& page : region.pages()) names.push_back(page.substr(15));
    std::sort(names.begin(), names.end());
    EXPECT_THAT(names, ElementsAre("_Q01.html", "_Q02.html", "_Q03.html", "_Q04.html", "_Q05.html",
                                   "_Q06.html"));
}

}  // namespace
}  // namespace gatescope
