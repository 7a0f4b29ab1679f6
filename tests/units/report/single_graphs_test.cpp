#include "units/report/time_graph_pieces.h"

using testing::HasSubstr;
using testing::Not;

namespace {

class SingleGraphs : public TimeGraphText {};

TEST_F(SingleGraphs, UsesAreOneRedBarADay) {
    result.cell_success[2] = 3;
    result.cell_denied[2] = 99;
    result.cell_success_max = 4;
    result.cell_denied_max = 99;
    result.cell_max = 102;
    result.cell_read[2] = 1;
    result.first_cell_read = 2;
    const std::string title =
        "Matching bits were invoked 3 times through Gatewarden policy on day 2";
    const std::string page = bits_page();
    EXPECT_EQ(column(page, 2), column_start(2) + part("cell_extra", 25, title) +
                                   part("cell_failure", 75, title) + LINE +
                                   column_end(2, "time_block_populated"));
    EXPECT_THAT(page, Not(HasSubstr("class=\"cell_success\"")));
}

TEST_F(SingleGraphs, DenialsAreOneRedBarADay) {
    result.cell_success[2] = 99;
    result.cell_denied[2] = 3;
    result.cell_success_max = 99;
    result.cell_denied_max = 4;
    result.first_cell_read = 2;
    const std::string title = "Matching keys were invoked 3 times to deny command usage on day 2";
    const std::string page = keys_page();
    EXPECT_EQ(column(page, 2), column_start(2) + part("cell_extra", 25, title) +
                                   part("cell_failure", 75, title) + LINE +
                                   column_end(2, "time_block_unpopulated"));
}

TEST_F(SingleGraphs, ADayWithoutUsesHasItsTitleToo) {
    result.first_cell_read = 0;
    const std::string page = bits_page();
    EXPECT_THAT(column(page, 0),
                HasSubstr(part("cell_extra", 100,
                               "Matching bits were invoked 0 times through Gatewarden policy on "
                               "day 0")));
}

TEST_F(SingleGraphs, OlderDaysSayOnceThatThereWasNoData) {
    const std::string page = keys_page();
    EXPECT_EQ(column(page, 119),
              column_start(119) + no_data(119) + column_end(119, "time_block_unpopulated"));
    EXPECT_EQ(times_in(page, "No data was available"), 120);
}

TEST_F(SingleGraphs, TheScaleColumnIsAsHighAsTheBars) {
    result.cell_success_max = 12;
    const std::string page = bits_page();
    const std::string scale =
        piece(page, "<table class=\"tight\" >\n<tr>\n   <td valign=top >", "<!-- cell");
    EXPECT_THAT(scale, HasSubstr("class=\"cell_text_top\" height=49 align=right > 12 </td>"));
    EXPECT_THAT(scale, HasSubstr("class=\"cell_text_bottom\" height=49 align=right > 0 </td>"));
    EXPECT_EQ(times_in(scale, "class=\"bottom_line_pencil\" height=2 "), 3);
    EXPECT_TRUE(
        scale.ends_with("   <td class=\"bottom_line_pencil\" height=100 width=2 ></td>\n\n   "))
        << scale;
}

}  // namespace
