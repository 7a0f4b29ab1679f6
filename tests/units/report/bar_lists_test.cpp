#include "report/bar_lists.h"

#include "units/report/page_text.h"

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

const std::string SIDE = "   <td width=2 class=\"bottom_line_pencil\" ></td>\n";

std::string opening(const std::string& noun) {
    return "\n<table class=\"tight\" >\n<tr BORDER=0 >\n"
           "   <td colspan=8 height=2 class=\"bottom_line_pencil\" ></td></tr>\n</tr>\n"
           "<tr BORDER=0 >\n" +
           SIDE + "   <th>" + noun + "#</th>\n" + SIDE + "   <th>" + noun + " Description</th>\n" +
           SIDE + "   <th colspan=2 align=center width=400>Usage from: first - last</th>\n" + SIDE +
           "</tr>\n<tr BORDER=0 >\n"
           "   <td colspan=8 height=2 class=\"bottom_line_pencil\"></td></tr>\n</tr>\n\n";
}

std::string row_start(const std::string& title, const std::string& number,
                      const std::string& description) {
    return "<tr BORDER=0 class=\"hot_row\" title=\"" + title +
           "\" onmouseover=\"ShowTitle(this);\">\n" + SIDE + "   <td>" + number + "#</td>\n" +
           SIDE + "   <td>" + description + "</td>\n" + SIDE;
}

std::string bar(const std::string& title, int width, int count, int rest) {
    return "\n   <td colspan=2 class=\"cell_extra\" >\n"
           "    <table class=\"tight\" title=\"" +
           title +
           "\" onmouseover=\"ShowTitle(this);\">\n"
           "     <tr BORDER=0 class=\"hot_row\" >\n"
           "       <td width=" +
           std::to_string(width) +
           " height=12 class=\"cell_failure\" ></td>\n"
           "\t   <td height=12 class=\"cell_extra\" >:" +
           std::to_string(count) + "</td>\n       <td width=" + std::to_string(rest) +
           " class=\"cell_extra\" ></td>\n     </tr>\n    </table>\n   </td>\n";
}

std::string full_bar(int count) {
    return "\n   <td colspan=2 class=\"cell_extra\" >\n"
           "    <table class=\"tight\">\n     <tr BORDER=0 >\n"
           "      <td width=400 height=12 class=\"cell_failure\" ></td>\n"
           "      <td valign=bottom class=\"cell_extra\">:" +
           std::to_string(count) + "</td>\n\t  </tr>\n    </table>\n   </td>\n";
}

const std::string ROW_END =
    SIDE +
    "</tr>\n<tr BORDER=0 >\n"
    "   <td colspan=8 height=1 class=\"bottom_line_pencil\"></td></tr>\n</tr>\n";

const std::string CLOSING =
    "<tr BORDER=0 >\n"
    "   <td colspan=8 height=1 class=\"bottom_line_pencil\"></td></tr>\n</tr>\n"
    "</table>\n<br>\n<pre>     <input type=\"text\" size=120 maxlength=120 id=display_text "
    "name=display_text readonly></pre>\n</form>\n";

constexpr char ANY_ROW[] = "<tr BORDER=0 class=\"hot_row\" title=";

class BitList : public PageText {
  protected:
    BitList() {
        result.cell_time[0] = "first";
        result.cell_time[1] = "last";
    }

    std::string bit_page() const {
        return page_of([&](Page* page) { Display_Graph__hbars_Bits(result, page); });
    }
};

class KeyList : public BitList {
  protected:
    std::string key_page() const {
        return page_of([&](Page* page) { Display_Graph__hbars_Keys(result, lines, page); });
    }

    void counted(int key, std::uint32_t count) {
        result.cell_success[static_cast<std::size_t>(key)] = count;
        result.cell_max = std::max(result.cell_max, count);
        result.highest_key_read = std::max(result.highest_key_read, key);
    }

    KeyLines lines;
};

TEST_F(BitList, WithoutRecordsEachOfThe24BitsHasOnePixel) {
    const std::string page = bit_page();
    EXPECT_EQ(times_in(page, ANY_ROW), 24);
    EXPECT_EQ(times_in(page,
                       "<td width=1 height=12 class=\"cell_failure\" ></td>\n"
                       "\t   <td height=12 class=\"cell_extra\" >:0</td>\n"
                       "       <td width=399 class=\"cell_extra\" ></td>"),
              24);
    const std::string title = "The BIT__AUTO_BRANCH_REMOVAL bit was not invoked during this period";
    EXPECT_THAT(page, HasSubstr("<h1>Title for the last 120 days.</h1>\n" + opening("Bit") +
                                row_start(title, "00", "BIT__AUTO_BRANCH_REMOVAL") +
                                bar(title, 1, 0, 399) + ROW_END));
    EXPECT_THAT(page, HasSubstr(ROW_END + CLOSING));
}

TEST_F(BitList, BarsAndTitlesFollowTheCounts) {
    result.cell_success[1] = 1;
    result.cell_success[22] = 2;
    result.cell_success[23] = 3;
    result.cell_max = 3;
    const std::string page = bit_page();
    const std::string once = "The BIT__CHOWN_VOB_OWNER bit was invoked once during this period";
    const std::string twice =
        "The BIT__OWN_LIKE_PARENT_DIR bit was invoked 2 times during this period";
    const std::string most =
        "The BIT__FORCE_CHECKOUTS_UNRESERVED bit was invoked 3 times during this period";
    EXPECT_THAT(page, HasSubstr(row_start(once, "01", "BIT__CHOWN_VOB_OWNER") +
                                bar(once, 133, 1, 267) + ROW_END));
    EXPECT_THAT(page, HasSubstr(row_start(twice, "22", "BIT__OWN_LIKE_PARENT_DIR") +
                                bar(twice, 266, 2, 134) + ROW_END +
                                row_start(most, "23", "BIT__FORCE_CHECKOUTS_UNRESERVED") +
                                full_bar(3) + ROW_END + CLOSING));
}

TEST_F(BitList, ATinyCountStillHasAPixel) {
    result.cell_success[0] = 1;
    result.cell_success[1] = 1000;
    result.cell_max = 1000;
    EXPECT_THAT(bit_page(), HasSubstr("<td width=1 height=12 class=\"cell_failure\" ></td>\n"
                                      "\t   <td height=12 class=\"cell_extra\" >:1</td>\n"
                                      "       <td width=399 "));
}

TEST_F(BitList, IsAWholePage) {
    const std::string page = bit_page();
    EXPECT_THAT(page, StartsWith("<!doctype html>\n"));
    EXPECT_TRUE(page.ends_with("</body>\n</html>\n"));
}

TEST_F(KeyList, WithoutDenialsSaysSoInOneRow) {
    const std::string page = key_page();
    EXPECT_THAT(page, HasSubstr(opening("Key") + "<tr BORDER=0 >\n" + SIDE +
                                "   <td >No matching data was available at the time</td>\n" + SIDE +
                                "   <td align=center >-----------</td>\n" + SIDE +
                                "   <td colspan=2 align=center >-----------</td>\n" + SIDE +
                                "</tr>\n" + CLOSING));
    EXPECT_EQ(times_in(page, ANY_ROW), 0);
}

TEST_F(KeyList, ListsTheKeysUpToTheHighestCounted) {
    lines = {"pre_checkin;one;", "  mkbranch;two;", "lock;three;", "unlock;four;"};
    counted(1, 1);
    counted(3, 2);
    const std::string page = key_page();
    const std::string one = "Key #1 was invoked once during this period";
    const std::string two = "Key #2 was not invoked during this period";
    const std::string three = "Key #3 was invoked 2 times during this period";
    EXPECT_THAT(
        page, HasSubstr(opening("Key") + row_start(one, "01", "pre_checkin;one;") +
                        bar(one, 200, 1, 200) + ROW_END + row_start(two, "02", "  mkbranch;two;") +
                        bar(two, 1, 0, 399) + ROW_END + row_start(three, "03", "lock;three;") +
                        full_bar(2) + ROW_END + CLOSING));
}

TEST_F(KeyList, KeyZeroIsNeverListed) {
    lines = {"lock;one;"};
    counted(0, 9);
    counted(1, 9);
    const std::string page = key_page();
    EXPECT_EQ(times_in(page, ANY_ROW), 1);
    EXPECT_THAT(page, Not(HasSubstr("#0 ")));
}

TEST_F(KeyList, OnlyKeyZeroCountedListsNothing) {
    counted(0, 9);
    EXPECT_THAT(key_page(), HasSubstr(opening("Key") + CLOSING));
}

TEST_F(KeyList, TagsOfAKeyAreEscapedAndNothingElseIs) {
    lines = {"lock;<*>;&amp;\"'>;", "unlock;a&b \"c\";"};
    counted(2, 1);
    const std::string page = key_page();
    EXPECT_THAT(page, HasSubstr("   <td>lock;&lt;*&gt;;&amp;\"'&gt;;</td>\n"));
    EXPECT_THAT(page, HasSubstr("   <td>unlock;a&b \"c\";</td>\n"));
}

TEST_F(KeyList, AMissingKeyIsNamedAsSuch) {
    lines = {std::nullopt};
    counted(119, 1);
    const std::string page = key_page();
    EXPECT_EQ(times_in(page, "<td>----Key Not available (or commented out) at graph time----</td>"),
              119);
    EXPECT_THAT(page, HasSubstr("   <td>119#</td>\n"));
}

TEST_F(KeyList, TheLiteEditionCallsThemCpds) {
    result.asked.edition = 0;
    counted(1, 2);
    const std::string page = key_page();
    EXPECT_THAT(page,
                HasSubstr(opening("CPD") +
                          row_start("CPD #1 was invoked 2 times during this period", "01",
                                    "----Key Not available (or commented out) at graph time----")));
}

}  // namespace
