#include "units/report/time_graph_pieces.h"

using testing::HasSubstr;
using testing::Not;

namespace {

class TwistGraph : public TimeGraphText {};

TEST_F(TwistGraph, AllowedGrowsUpwardsAndDeniedDownwardsFromTheMiddleLine) {
    result.cell_success[3] = 60;
    result.cell_denied[3] = 20;
    result.cell_success[4] = 80;
    result.cell_read[3] = 1;
    const std::string up =
        "60 (75%) of 80 matching commands were allowed through Gatewarden policy on day 3";
    const std::string down =
        "20 (25%) of 80 matching commands were denied by Gatewarden Policy on day 3";
    EXPECT_EQ(column(twist_page(10), 3),
              column_start(3) + part("cell_extra", 25, up) + part("cell_success", 75, up) + LINE +
                  part("cell_failure", 25, down) + part("cell_extra", 75, down) + LINE +
                  column_end(3, "time_block_populated"));
}

TEST_F(TwistGraph, BothHalvesShareTheLargerScale) {
    result.cell_success[0] = 10;
    result.cell_denied[1] = 40;
    result.cell_max = 77;
    const std::string page = twist_page(119);
    EXPECT_THAT(column(page, 0), HasSubstr("class=\"cell_success\" height=25 "));
    EXPECT_EQ(times_in(piece(page, "<table class=\"tight\" >", "<!-- cell"), "> 40 <"), 2);

    result.cell_success[0] = 80;
    EXPECT_THAT(column(twist_page(119), 1), HasSubstr("class=\"cell_failure\" height=50 "));
}

TEST_F(TwistGraph, ADayWithoutCommandsIsAllFiller) {
    result.cell_success[7] = 1;
    const std::string none = "No matching commands were attempted on day 6";
    EXPECT_EQ(column(twist_page(7), 6), column_start(6) + part("cell_extra", 100, none) + LINE +
                                            part("cell_extra", 100, none) + LINE +
                                            column_end(6, "time_block_unpopulated"));
}

TEST_F(TwistGraph, AFullBarHasNoFiller) {
    result.cell_success[2] = 5;
    const std::string column_2 = column(twist_page(2), 2);
    EXPECT_EQ(times_in(column_2, "cell_extra"), 1);
    EXPECT_THAT(column_2, HasSubstr("class=\"cell_success\" height=100 "));
}

TEST_F(TwistGraph, OneOfAThousandShowsAPixel) {
    result.cell_success[0] = 1;
    result.cell_success[1] = 1000;
    const std::string column_0 = column(twist_page(1), 0);
    EXPECT_THAT(column_0, HasSubstr("class=\"cell_extra\" height=99 "));
    EXPECT_THAT(column_0, HasSubstr("class=\"cell_success\" height=1 "));
}

TEST_F(TwistGraph, OnlyAllowedSaysThatNoneWereDenied) {
    result.cell_success[0] = 1;
    const std::string column_0 = column(twist_page(0), 0);
    EXPECT_THAT(column_0, HasSubstr("\"1 (100%) of 1 matching commands were allowed through "
                                    "Gatewarden policy on day 0\""));
    EXPECT_THAT(column_0, HasSubstr("\"None of the 1 matching commands(s) were denied by "
                                    "Gatewarden policy on day 0\""));
}

TEST_F(TwistGraph, OnlyDeniedSaysThatNoneWereAllowed) {
    result.cell_denied[0] = 4;
    const std::string column_0 = column(twist_page(0), 0);
    EXPECT_EQ(times_in(column_0,
                       "\"None of the 4 matching commands(s) were allowed through "
                       "Gatewarden policy on day 0\""),
              1);
    EXPECT_THAT(column_0, HasSubstr("\"4 (100%) of 4 matching commands were denied by Gatewarden "
                                    "Policy on day 0\""));
}

TEST_F(TwistGraph, TheRoundedPointStandsInTheTitle) {
    result.cell_success[0] = 1;
    result.cell_denied[0] = 2;
    const std::string column_0 = column(twist_page(0), 0);
    EXPECT_THAT(column_0, HasSubstr("\"1 (33%) of 3 "));
    EXPECT_THAT(column_0, HasSubstr("\"2 (67%) of 3 "));
}

TEST_F(TwistGraph, DaysOlderThanAnyRecordSayOnceAHalfThatThereWasNoData) {
    result.cell_success[5] = 1;
    const std::string page = twist_page(5);
    EXPECT_EQ(column(page, 6),
              column_start(6) + no_data(6) + no_data(6) + column_end(6, "time_block_unpopulated"));
    EXPECT_THAT(column(page, 5), Not(HasSubstr("No data was available")));
    EXPECT_EQ(times_in(page, "No data was available"), 2 * 114);
}

TEST_F(TwistGraph, WithoutAnyRecordNothingIsDividedAndTheScaleIsZero) {
    const std::string page = twist_page(-1);
    EXPECT_EQ(times_in(page, "No data was available"), 240);
    EXPECT_EQ(times_in(piece(page, "<table class=\"tight\" >", "<!-- cell"), "> 0 <"), 2);
    EXPECT_THAT(page, HasSubstr("title=\"No data was available 0 day(s) ago...\""));
}

TEST_F(TwistGraph, RecordsOlderThanThePeriodMakeAllDaysBars) {
    const std::string page = twist_page(125);
    EXPECT_EQ(times_in(page, "No data was available"), 0);
    EXPECT_EQ(times_in(page, "class=\"cell_extra\" height=100 "), 240);
}

TEST_F(TwistGraph, TheScaleColumnIsAsHighAsTheBars) {
    result.cell_success[0] = 9;
    const std::string scale =
        piece(twist_page(0), "<table class=\"tight\" >\n<tr>\n   <td valign=top >", "<!-- cell");
    EXPECT_THAT(scale, HasSubstr("class=\"top_right_line_pencil\" height=2 "));
    EXPECT_THAT(scale, HasSubstr("<td rowspan=3 align=right >0</td>"));
    EXPECT_EQ(times_in(scale, "height=49 "), 4);
    EXPECT_EQ(times_in(scale, " 9 "), 2);
    EXPECT_EQ(times_in(scale, "height=2 "), 5);
    EXPECT_TRUE(
        scale.ends_with("   <td class=\"bottom_line_pencil\" height=100 width=2 ></td>\n\n   "))
        << scale;
}

}  // namespace
