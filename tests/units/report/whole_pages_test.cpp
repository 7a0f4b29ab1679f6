#include <algorithm>
#include <array>
#include <string_view>
#include <tuple>
#include <utility>

#include "report/bar_lists.h"
#include "report/page.h"
#include "report/time_graphs.h"
#include "support/scratch_directory.h"
#include "units/report/page_text.h"

namespace gatescope {

// Compares one page of each query with a file in tests/units/report/expected. There the settings of
// the build are names between @ signs; and of adjacent columns that differ in their day number
// only, the first one is followed by the numbers of the others, with '|' for a tick.

namespace {

constexpr std::string_view COLUMN = "\n   <!-- cell ";
constexpr std::string_view TICK = "\n   <td class=\"bottom_line_pencil\" width=2 ></td>\n";

/// The page with this title that `write` makes.
template <typename Writer>
std::string page_of(Writer write, const std::string& graph_title = "Title") {
    Page page(graph_title);
    write(&page);
    return page.text();
}

/// Number of occurrences of `part` in `text`.
int times_in(std::string_view text, std::string_view part) {
    int times = 0;
    for (std::size_t at = text.find(part); at != std::string_view::npos;
         at = text.find(part, at + part.size())) {
        ++times;
    }
    return times;
}

std::string replaced(std::string text, std::string_view part, std::string_view by) {
    for (std::size_t at = text.find(part); at != std::string::npos;
         at = text.find(part, at + by.size())) {
        text.replace(at, part.size(), by);
    }
    return text;
}

/// The page with its columns abbreviated.
std::string abbreviated(const std::string& page) {
    std::size_t at = page.find(COLUMN);
    std::string text = page.substr(0, at);
    std::string last;
    while (at != std::string::npos) {
        const std::size_t next = page.find(COLUMN, at + 1);
        const std::size_t end = next != std::string::npos ? next : page.find("\n</tr>\n", at);
        std::string column = page.substr(at, end - at);
        const bool ticks = column.ends_with(TICK);
        if (ticks) column.erase(column.size() - TICK.size());
        const std::string number = column.substr(COLUMN.size(), 3);
        const std::string day = std::to_string(std::stoi(number));
        std::string any_day = replaced(column, "cell " + number, "cell #");
        any_day = replaced(any_day, "available " + day + " day", "available # day");
        any_day = replaced(any_day, "\"day " + day + "\"", "\"day #\"");
        text += any_day == last ? " " + number : column;
        if (ticks) text += any_day == last ? std::string("|") : std::string(TICK);
        last = any_day;
        if (next == std::string::npos) text += page.substr(end);
        at = next;
    }
    return text;
}

/// Expects the page to equal the file, and reports the first line that differs.
void expect_page(const std::string& page, const std::string& name) {
    std::string expected = file_text(SOURCE_DIRECTORY "/tests/units/report/expected/" + name);
    expected = replaced(expected, "@VERSION@", GATESCOPE_VERSION);
    expected = replaced(expected, "@SUPPORT_ADDRESS@", GATESCOPE_SUPPORT_ADDRESS);
    expected = replaced(expected, "@SUPPLIER_NAME@", GATESCOPE_SUPPLIER_NAME);
    expected = replaced(expected, "@SUPPLIER_URL@", GATESCOPE_SUPPLIER_URL);
    if (page == expected) return;
    const auto [in_page, in_file] =
        std::mismatch(page.begin(), page.end(), expected.begin(), expected.end());
    const std::string same(page.begin(), in_page);
    const std::size_t line = same.rfind('\n') + 1;
    ADD_FAILURE() << name << ", line " << std::count(same.begin(), same.end(), '\n') + 1 << " is\n"
                  << page.substr(line, page.find('\n', same.size()) - line) << "\nand not\n"
                  << expected.substr(line, expected.find('\n', same.size()) - line);
}

/// A test with ten days of different counts, and no earlier records.
class TimePages : public PageText {
  protected:
    TimePages() {
        const std::array<std::pair<std::uint32_t, std::uint32_t>, 10> days = {{{0, 0},
                                                                               {1, 0},
                                                                               {0, 4},
                                                                               {600, 200},
                                                                               {1000, 0},
                                                                               {1, 2},
                                                                               {0, 0},
                                                                               {25, 250},
                                                                               {0, 0},
                                                                               {3, 5}}};
        for (std::size_t day = 0; day < days.size(); ++day) {
            std::tie(result.cell_success[day], result.cell_denied[day]) = days[day];
            result.cell_read[day] = days[day].first + days[day].second > 0 ? 1 : 0;
        }
        result.cell_success_max = 1000;
        result.cell_denied_max = 250;
        result.cell_max = 1111;
        result.first_cell_read = 9;
    }

    std::string twist() const {
        return page_of([&](Page* page) { Display_Graph__twist(result, page); },
                       "Usage for:<br><dd>the (a&b 100%d) command");
    }
};

TEST_F(TimePages, ShowQueriesOneAndSix) {
    expect_page(abbreviated(twist()), "Q01.html");
}

TEST_F(TimePages, ShowQueryTwo) {
    const auto write = [&](Page* page) { Display_Graph__success_only(result, "bits", page); };
    expect_page(abbreviated(page_of(write)), "Q02.html");
}

TEST_F(TimePages, ShowQueryThree) {
    const auto write = [&](Page* page) { Display_Graph__denied_only(result, "keys", page); };
    expect_page(abbreviated(page_of(write)), "Q03.html");
}

TEST_F(TimePages, ShareTheLargerScaleBetweenBothHalves) {
    const std::string page = twist();
    std::swap(result.cell_success_max, result.cell_denied_max);
    EXPECT_EQ(twist(), page);
}

TEST_F(TimePages, HaveAScaleOfZeroWithoutRecords) {
    result = QueryResult();
    const std::string page = twist();
    EXPECT_EQ(times_in(page, "No data was available"), 240);
    EXPECT_EQ(times_in(page, "align=right > 0 </td>"), 2);
}

TEST_F(TimePages, ShowAllDaysAsBarsIfRecordsAreOlderThanThePeriod) {
    result.first_cell_read = 125;
    EXPECT_EQ(times_in(twist(), "No data was available"), 0);
}

/// A test with the dates of the period in the first two labels.
class BarPages : public PageText {
  protected:
    BarPages() {
        result.cell_time[0] = "first";
        result.cell_time[1] = "last";
    }

    std::string key_page() const {
        return page_of([&](Page* page) { Display_Graph__hbars_Keys(result, lines, page); });
    }

    KeyLines lines;
};

TEST_F(BarPages, ShowQueryFour) {
    result.cell_success[0] = 1;
    result.cell_success[1] = 1000;
    result.cell_success[22] = 2;
    result.cell_success[23] = 333;
    result.cell_max = 1000;
    expect_page(page_of([&](Page* page) { Display_Graph__hbars_Bits(result, page); }), "Q04.html");
}

TEST_F(BarPages, ShowQueryFive) {
    lines = {"pre_checkin;one;", "  mkbranch;two;", "lock;<*>;&amp;\"'>;", std::nullopt};
    // Key 0 is counted, but not listed.
    result.cell_success[0] = 3;
    result.cell_success[1] = 1;
    result.cell_success[3] = 2;
    result.cell_success[5] = 3;
    result.cell_max = 3;
    result.highest_key_read = 5;
    expect_page(key_page(), "Q05.html");
}

TEST_F(BarPages, ShowQueryFiveWithoutDenials) {
    expect_page(key_page(), "Q05_without_denials.html");
}

TEST_F(BarPages, ListNothingIfOnlyKeyZeroIsCounted) {
    result.highest_key_read = 0;
    result.cell_success[0] = result.cell_max = 9;
    EXPECT_EQ(times_in(key_page(), "hot_row\" title="), 0);
    EXPECT_EQ(times_in(key_page(), "No matching data was available"), 0);
}

TEST_F(BarPages, ListKeysUpTo119) {
    result.cell_success[119] = result.cell_max = 1;
    result.highest_key_read = 119;
    EXPECT_EQ(times_in(key_page(), "hot_row\" title="), 119);
    EXPECT_EQ(times_in(key_page(), "   <td>119#</td>\n"), 1);
}

TEST_F(BarPages, EscapeOnlyAngleBracketsOfKeys) {
    lines = {"lock;<*>;&amp;\"'>;", "unlock;a&b \"c\";"};
    result.cell_success[2] = result.cell_max = 1;
    result.highest_key_read = 2;
    EXPECT_EQ(times_in(key_page(), "   <td>lock;&lt;*&gt;;&amp;\"'&gt;;</td>\n"), 1);
    EXPECT_EQ(times_in(key_page(), "   <td>unlock;a&b \"c\";</td>\n"), 1);
}

TEST_F(BarPages, CallKeysCpdsInTheLiteEdition) {
    result.cell_success[1] = result.cell_max = 2;
    result.highest_key_read = 1;
    const std::string page = key_page();
    result.asked.edition = 0;
    EXPECT_EQ(key_page(), replaced(replaced(replaced(page, "Key#", "CPD#"), "Key Desc", "CPD Desc"),
                                   "Key #", "CPD #"));
}

}  // namespace
}  // namespace gatescope
