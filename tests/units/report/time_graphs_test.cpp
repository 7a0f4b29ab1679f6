#include "report/time_graphs.h"

#include <cstdio>

#include "units/report/page_text.h"

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

/// A day's column as it begins.
std::string column_start(int day) {
    char text[200];
    std::snprintf(text, sizeof text,
                  "\n   <!-- cell %03d -->\n   <td>\n      <table class=\"tight\" >\n"
                  "         <tr><td class=\"bottom_line_pencil\" width=6 height=2></td></tr>\n",
                  day);
    return text;
}

std::string part(const std::string& part_class, int height, const std::string& title) {
    return "         <tr class=\"hot_row\" ><td class=\"" + part_class +
           "\" height=" + std::to_string(height) + " width=6 title=\"" + title +
           "\" onmouseover=\"ShowTitle(this);\" ></td></tr>\n";
}

const std::string LINE =
    "         <tr class=\"hot_row\" ><td class=\"bottom_line_pencil\" width=6 height=2 "
    "></td></tr>\n";

std::string no_data(int day) {
    return "\n         <tr class=\"hot_row\" ><td height=100 width=6 title=\"No data was "
           "available " +
           std::to_string(day) +
           " day(s) ago...\" onmouseover=\"ShowTitle(this);\" class=\"bottom_line_space\" "
           "></td></tr>\n"
           "         <tr><td width=6 height=2 class=\"bottom_line_pencil\" ></td></tr>\n";
}

/// A day's column as it ends.
std::string column_end(int day, const std::string& block) {
    return "         <tr class=\"hot_row\" ><td class=\"bottom_space_pencil\" width=6 height=1 "
           "></td></tr>\n"
           "         <tr class=\"hot_row\" ><th class=\"time_block\" width=6 height=8 "
           "title=\"day " +
           std::to_string(day) +
           "\" onmouseover=\"ShowTitle(this);\" ><center><table class=\"time_block\" "
           "CELLSPACING=1 ><tr><td class=\"" +
           block +
           "\" ></td></tr></table></center></th></tr>\n"
           "      </table>\n   </td>\n";
}

const std::string TICK = "\n   <td class=\"bottom_line_pencil\" width=2 ></td>\n";

/// The column of a day with its tick, up to the next column or the end of the row.
std::string column(const std::string& page, int day) {
    const std::string next = day > 0 ? column_start(day - 1) : "\n</tr>\n";
    return piece(page, column_start(day), next);
}

/// A twist page of a region whose oldest record is `first_cell` days old.
std::string twist_page(int first_cell) {
    first_cell_read = first_cell;
    for (std::size_t day = 0; day < cell_success.size(); ++day) {
        cell_success_max = std::max(cell_success_max, cell_success[day]);
        cell_denied_max = std::max(cell_denied_max, cell_denied[day]);
    }
    return page_of(Display_Graph__twist);
}

class TwistGraph : public PageText {};
class SingleGraphs : public PageText {};
class TimeGraphs : public PageText {};

TEST_F(TwistGraph, AllowedGrowsUpwardsAndDeniedDownwardsFromTheMiddleLine) {
    cell_success[3] = 60;
    cell_denied[3] = 20;
    cell_success[4] = 80;
    cell_read[3] = 1;
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
    cell_success[0] = 10;
    cell_denied[1] = 40;
    cell_max = 77;
    const std::string page = twist_page(119);
    EXPECT_EQ(cell_max, 40U);
    EXPECT_THAT(column(page, 0), HasSubstr("class=\"cell_success\" height=25 "));
    EXPECT_EQ(times_in(piece(page, "<table class=\"tight\" >", "<!-- cell"), "> 40 <"), 2);

    cell_success[0] = 80;
    EXPECT_THAT(column(twist_page(119), 1), HasSubstr("class=\"cell_failure\" height=50 "));
    EXPECT_EQ(cell_max, 80U);
}

TEST_F(TwistGraph, ADayWithoutCommandsIsAllFiller) {
    cell_success[7] = 1;
    const std::string none = "No matching commands were attempted on day 6";
    EXPECT_EQ(column(twist_page(7), 6), column_start(6) + part("cell_extra", 100, none) + LINE +
                                            part("cell_extra", 100, none) + LINE +
                                            column_end(6, "time_block_unpopulated"));
}

TEST_F(TwistGraph, AFullBarHasNoFiller) {
    cell_success[2] = 5;
    const std::string column_2 = column(twist_page(2), 2);
    EXPECT_EQ(times_in(column_2, "cell_extra"), 1);
    EXPECT_THAT(column_2, HasSubstr("class=\"cell_success\" height=100 "));
}

TEST_F(TwistGraph, OneOfAThousandShowsAPixel) {
    cell_success[0] = 1;
    cell_success[1] = 1000;
    const std::string column_0 = column(twist_page(1), 0);
    EXPECT_THAT(column_0, HasSubstr("class=\"cell_extra\" height=99 "));
    EXPECT_THAT(column_0, HasSubstr("class=\"cell_success\" height=1 "));
}

TEST_F(TwistGraph, OnlyAllowedSaysThatNoneWereDenied) {
    cell_success[0] = 1;
    const std::string column_0 = column(twist_page(0), 0);
    EXPECT_THAT(column_0, HasSubstr("\"1 (100%) of 1 matching commands were allowed through "
                                    "Gatewarden policy on day 0\""));
    EXPECT_THAT(column_0, HasSubstr("\"None of the 1 matching commands(s) were denied by "
                                    "Gatewarden policy on day 0\""));
}

TEST_F(TwistGraph, OnlyDeniedSaysThatNoneWereAllowed) {
    cell_denied[0] = 4;
    const std::string column_0 = column(twist_page(0), 0);
    EXPECT_EQ(times_in(column_0,
                       "\"None of the 4 matching commands(s) were allowed through "
                       "Gatewarden policy on day 0\""),
              1);
    EXPECT_THAT(column_0, HasSubstr("\"4 (100%) of 4 matching commands were denied by Gatewarden "
                                    "Policy on day 0\""));
}

TEST_F(TwistGraph, TheRoundedPointStandsInTheTitle) {
    cell_success[0] = 1;
    cell_denied[0] = 2;
    const std::string column_0 = column(twist_page(0), 0);
    EXPECT_THAT(column_0, HasSubstr("\"1 (33%) of 3 "));
    EXPECT_THAT(column_0, HasSubstr("\"2 (67%) of 3 "));
}

TEST_F(TwistGraph, DaysOlderThanAnyRecordSayOnceAHalfThatThereWasNoData) {
    cell_success[5] = 1;
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
    cell_success[0] = 9;
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

TEST_F(SingleGraphs, UsesAreOneRedBarADay) {
    cell_success[2] = 3;
    cell_denied[2] = 99;
    cell_success_max = 4;
    cell_denied_max = 99;
    cell_max = 102;
    cell_read[2] = 1;
    first_cell_read = 2;
    const std::string title =
        "Matching bits were invoked 3 times through Gatewarden policy on day 2";
    const std::string page = page_of([] { Display_Graph__success_only("bits"); });
    EXPECT_EQ(column(page, 2), column_start(2) + part("cell_extra", 25, title) +
                                   part("cell_failure", 75, title) + LINE +
                                   column_end(2, "time_block_populated"));
    EXPECT_EQ(cell_max, 4U);
    EXPECT_THAT(page, Not(HasSubstr("class=\"cell_success\"")));
}

TEST_F(SingleGraphs, DenialsAreOneRedBarADay) {
    cell_success[2] = 99;
    cell_denied[2] = 3;
    cell_success_max = 99;
    cell_denied_max = 4;
    first_cell_read = 2;
    const std::string title = "Matching keys were invoked 3 times to deny command usage on day 2";
    const std::string page = page_of([] { Display_Graph__denied_only("keys"); });
    EXPECT_EQ(column(page, 2), column_start(2) + part("cell_extra", 25, title) +
                                   part("cell_failure", 75, title) + LINE +
                                   column_end(2, "time_block_unpopulated"));
    EXPECT_EQ(cell_max, 4U);
}

TEST_F(SingleGraphs, ADayWithoutUsesHasItsTitleToo) {
    first_cell_read = 0;
    const std::string page = page_of([] { Display_Graph__success_only("bits"); });
    EXPECT_THAT(column(page, 0),
                HasSubstr(part("cell_extra", 100,
                               "Matching bits were invoked 0 times through Gatewarden policy on "
                               "day 0")));
}

TEST_F(SingleGraphs, OlderDaysSayOnceThatThereWasNoData) {
    const std::string page = page_of([] { Display_Graph__denied_only("keys"); });
    EXPECT_EQ(column(page, 119),
              column_start(119) + no_data(119) + column_end(119, "time_block_unpopulated"));
    EXPECT_EQ(times_in(page, "No data was available"), 120);
}

TEST_F(SingleGraphs, TheScaleColumnIsAsHighAsTheBars) {
    cell_success_max = 12;
    const std::string page = page_of([] { Display_Graph__success_only("bits"); });
    const std::string scale =
        piece(page, "<table class=\"tight\" >\n<tr>\n   <td valign=top >", "<!-- cell");
    EXPECT_THAT(scale, HasSubstr("class=\"cell_text_top\" height=49 align=right > 12 </td>"));
    EXPECT_THAT(scale, HasSubstr("class=\"cell_text_bottom\" height=49 align=right > 0 </td>"));
    EXPECT_EQ(times_in(scale, "class=\"bottom_line_pencil\" height=2 "), 3);
    EXPECT_TRUE(
        scale.ends_with("   <td class=\"bottom_line_pencil\" height=100 width=2 ></td>\n\n   "))
        << scale;
}

TEST_F(TimeGraphs, HaveOneColumnADayTheOldestOnTheLeft) {
    const std::string page = twist_page(0);
    EXPECT_EQ(times_in(page, "<!-- cell "), 120);
    std::size_t at = 0;
    for (int day = 119; day >= 0; --day) {
        const std::size_t found = page.find(column_start(day));
        ASSERT_NE(found, std::string::npos) << day;
        EXPECT_GT(found, at) << day;
        at = found;
    }
}

TEST_F(TimeGraphs, ATickFollowsEveryFifthDay) {
    const std::string page = twist_page(0);
    EXPECT_EQ(times_in(page, TICK), 24);
    for (int day = 0; day < 120; ++day) {
        EXPECT_EQ(column(page, day).ends_with(TICK), day % 5 == 0) << day;
    }
}

TEST_F(TimeGraphs, EndWithDayNumbersLabelsAndTheTextBox) {
    const std::string page = twist_page(0);
    const std::string bottom = page.substr(page.find("\n</tr>\n<tr>\n"));
    std::size_t at = 0;
    for (const char* number :
         {"115", "105", "95", "85", "75", "65", "55", "45", "35", "25", "15"}) {
        const std::size_t found =
            bottom.find(" colspan=12 align=center >" + std::string(number) + "</td>");
        ASSERT_NE(found, std::string::npos) << number;
        EXPECT_GT(found, at);
        at = found;
    }
    EXPECT_THAT(bottom, HasSubstr(" colspan=11 align=center >05</td>\n</tr>\n"));
    EXPECT_THAT(bottom, HasSubstr(" colspan=72 align=left >^--day 119</td>\n"));
    EXPECT_THAT(bottom, HasSubstr(" colspan=71 align=right >day 0--^</td>\n"));
    EXPECT_THAT(bottom, HasSubstr("</table>\n<br>\n<pre>     <input type=\"text\" size=120 "
                                  "maxlength=120 id=display_text name=display_text readonly>"
                                  "</pre>\n</form>\n<br>For help visit "));
}

TEST_F(TimeGraphs, NameClassesInStyleAttributes) {
    const std::string page = twist_page(0);
    for (const char* name : {"cell_left", "cell_top_pencil", "top_left_line_pencil"}) {
        EXPECT_THAT(page, HasSubstr("<td style=\"" + std::string(name) + "\" "));
        EXPECT_THAT(page, Not(HasSubstr("class=\"" + std::string(name) + "\"")));
    }
}

TEST_F(TimeGraphs, StandBetweenHeadAndTail) {
    const std::string page = twist_page(0);
    EXPECT_THAT(page, StartsWith("<!doctype html>\n"));
    EXPECT_THAT(page, HasSubstr("<h1>Title for the last 120 days.</h1>\n\n<table "));
    EXPECT_TRUE(page.ends_with("</body>\n</html>\n"));
}

}  // namespace
