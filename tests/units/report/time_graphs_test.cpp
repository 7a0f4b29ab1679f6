#include "units/report/time_graph_pieces.h"

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

class TimeGraphs : public TimeGraphText {};

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
