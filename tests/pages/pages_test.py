"""Tests of the report pages in a browser.

    pages_test.py MAKE_PAGES [unittest arguments]

MAKE_PAGES writes the six pages with invented counts. They are opened in a headless Chromium, and
its layout is measured and compared with the counts.
"""

import json
import os
import subprocess
import sys
import tempfile
import unittest

import browser

SKIPPED = 77
DAYS = 120

BLUE = "rgb(0, 0, 255)"
RED = "rgb(255, 0, 0)"
GREY = "rgb(204, 204, 204)"
BLACK = "rgb(0, 0, 0)"
WHITE = "rgb(255, 255, 255)"
CYAN = "rgb(0, 255, 255)"

# Each day's column: the day's number and the boxes of its cells, from top to bottom.
COLUMNS = """
const columns = [];
const walker = document.createTreeWalker(document.body, NodeFilter.SHOW_COMMENT);
while (walker.nextNode()) {
    const found = walker.currentNode.data.match(/^ cell (\\d+) $/);
    if (!found) continue;
    const column = walker.currentNode.nextElementSibling;
    const cells = column.querySelectorAll(":scope > table > tbody > tr > *");
    columns.push({day: Number(found[1]), cells: Array.from(cells, box)});
}
return columns;
"""

# Each row of a list: title, number, description, count, and the boxes of the bar and what follows.
ROWS = """
return Array.from(document.querySelectorAll("tr.hot_row[title]"), row => {
    const bar = row.querySelector("td[colspan='2'] td.cell_failure");
    const parts = Array.from(bar.parentNode.children, box);
    const shown = row.querySelectorAll(":scope > td");
    return {title: row.title, number: shown[1].innerText, description: shown[3].innerText,
            count: bar.nextElementSibling.innerText, parts: parts};
});
"""

BOX = """
function box(element) {
    const outline = element.getBoundingClientRect();
    const style = getComputedStyle(element);
    return {name: element.className, title: element.title, height: outline.height,
            width: outline.width, top: outline.top, bottom: outline.bottom, left: outline.left,
            right: outline.right, color: style.backgroundColor, cursor: style.cursor};
}
"""


def bar_pixels(count, scale, full):
    """The length of a bar: the count's share of the scale, at least one pixel unless it is 0."""
    return max(count * full // scale, 1) if count else 0


class PageTest(unittest.TestCase):
    """Opens the page of `query` before each test."""

    query = None

    @classmethod
    def setUpClass(cls):
        with open(os.path.join(PAGES, "counts.json"), encoding="ascii") as counts:
            cls.counts = json.load(counts)[str(cls.query)]

    def setUp(self):
        WINDOW.open(os.path.join(PAGES, "20260107_080905_Q%02d.html" % self.query))

    def assert_whole_page(self):
        """The page loads no other resource, and its script reports no error."""
        self.assertEqual(WINDOW.run("return performance.getEntriesByType('resource').length"), 0)
        self.assertEqual(WINDOW.console_messages(), [])
        heading = WINDOW.run("return document.querySelector('h1').innerText")
        self.assertTrue(heading.endswith(" for the last 120 days."), heading)

    def columns(self):
        columns = WINDOW.run(BOX + COLUMNS)
        self.assertEqual([column["day"] for column in columns], list(range(DAYS - 1, -1, -1)))
        return columns

    def assert_shows_titles(self, elements):
        """Each element's title appears in the text box when the mouse is over it."""
        self.assertEqual(self.shown_text(), "")
        titles = set()
        for element in elements:
            WINDOW.move_mouse_to(element)
            title = WINDOW.run("return arguments[0].closest('[title]').title", element)
            self.assertNotEqual(title, "")
            self.assertEqual(self.shown_text(), title)
            titles.add(title)
        self.assertGreater(len(titles), 1)

    @staticmethod
    def shown_text():
        return WINDOW.run("return document.getElementById('display_text').value")


class TimeGraphs:
    """Tests of the pages with a column per day."""

    def test_is_whole(self):
        self.assert_whole_page()

    def test_columns_are_side_by_side(self):
        columns = self.columns()
        tops = {column["cells"][0]["top"] for column in columns}
        bottoms = {column["cells"][-1]["bottom"] for column in columns}
        self.assertEqual((len(tops), len(bottoms)), (1, 1))
        for older, newer in zip(columns, columns[1:]):
            gap = newer["cells"][0]["left"] - older["cells"][0]["right"]
            self.assertEqual(gap, 2 if older["day"] % 5 == 0 else 0, older["day"])
            self.assertEqual(older["cells"][0]["width"], 6)

    def test_days_before_the_first_record_are_blank(self):
        first = self.counts["first_cell_read"]
        for column in self.columns():
            blank = [cell for cell in column["cells"] if cell["name"] == "bottom_line_space"]
            self.assertEqual(len(blank), self.halves if column["day"] > first else 0)
            for cell in blank:
                self.assertEqual((cell["height"], cell["color"]), (100, WHITE))

    def test_blocks_under_the_columns_mark_days_with_records(self):
        colors = WINDOW.run(
            BOX + "return Array.from(document.querySelectorAll('th.time_block td'), box);")
        self.assertEqual(len(colors), DAYS)
        for block, day in zip(colors, range(DAYS - 1, -1, -1)):
            self.assertEqual(block["color"], CYAN if self.counts["read"][day] else WHITE, day)
            self.assertEqual((block["width"], block["height"]), (4, 6))

    def test_day_numbers_are_under_their_ticks(self):
        columns = {column["day"]: column["cells"][0] for column in self.columns()}
        numbers = WINDOW.run(BOX + """
            return Array.from(document.querySelectorAll("td[align=center]"),
                              cell => [Number(cell.innerText), box(cell)]);""")
        self.assertEqual([number for number, _ in numbers], list(range(115, 0, -10)))
        for number, cell in numbers:
            middle = (cell["left"] + cell["right"]) / 2
            self.assertAlmostEqual(middle, columns[number]["right"], delta=4)

    def test_mouse_over_a_cell_shows_its_title(self):
        cells = WINDOW.find_all("td.cell_extra, td.cell_success, td.cell_failure")
        blanks = WINDOW.find_all("td.bottom_line_space")
        blocks = WINDOW.find_all("th.time_block")
        self.assert_shows_titles(cells[::9] + blanks[::9] + blocks[::30])


class TestTwist(TimeGraphs, PageTest):
    query = 1
    halves = 2

    def test_bar_heights_are_proportional_to_counts(self):
        allowed, denied = self.counts["success"], self.counts["denied"]
        scale = max(allowed + denied)
        for column in self.columns():
            day = column["day"]
            if day > self.counts["first_cell_read"]:
                continue
            with self.subTest(day=day):
                up = bar_pixels(allowed[day], scale, 100)
                down = bar_pixels(denied[day], scale, 100)
                expected = [(BLACK, 2), (GREY, 100 - up), (BLUE, up), (BLACK, 2), (RED, down),
                            (GREY, 100 - down), (BLACK, 2)]
                shown = [(cell["color"], cell["height"]) for cell in column["cells"][:-2]]
                self.assertEqual(shown, [part for part in expected if part[1]])

    def test_all_bars_meet_at_the_middle_line(self):
        middle = {cell["top"] for column in self.columns() for cell in column["cells"][2:-3]
                  if cell["color"] == BLACK}
        scale = WINDOW.run(BOX + """
            const zero = Array.from(document.querySelectorAll("td[rowspan='3']"));
            const line = zero[0].parentNode.nextElementSibling.children[0];
            return [zero.length, box(line).top];""")
        self.assertEqual(scale[0], 1)
        self.assertEqual(middle, {scale[1]})

    def test_the_largest_counts_fill_their_halves(self):
        columns = {column["day"]: column["cells"] for column in self.columns()}
        self.assertEqual(columns[2][1]["name"], "cell_success")
        self.assertEqual(columns[2][1]["height"], 100)
        heights = [cell["height"] for cell in columns[3] if cell["name"] == "cell_failure"]
        self.assertEqual(heights, [61])

    def test_one_of_a_thousand_is_a_pixel(self):
        columns = {column["day"]: column["cells"] for column in self.columns()}
        self.assertEqual(self.counts["success"][1], 1)
        self.assertEqual([cell["height"] for cell in columns[1] if cell["color"] == BLUE], [1])


class SingleBars(TimeGraphs):
    halves = 1
    counted = None

    def test_bar_heights_are_proportional_to_counts(self):
        counts = self.counts[self.counted]
        for column in self.columns():
            day = column["day"]
            if day > self.counts["first_cell_read"]:
                continue
            with self.subTest(day=day):
                height = bar_pixels(counts[day], max(counts), 100)
                expected = [(BLACK, 2), (GREY, 100 - height), (RED, height), (BLACK, 2)]
                shown = [(cell["color"], cell["height"]) for cell in column["cells"][:-2]]
                self.assertEqual(shown, [part for part in expected if part[1]])


class TestBits(SingleBars, PageTest):
    query = 2
    counted = "success"


class TestKeys(SingleBars, PageTest):
    query = 3
    counted = "denied"


class BarLists:
    """Tests of the two lists with a bar per row."""

    def rows(self):
        return WINDOW.run(BOX + ROWS)

    def test_is_whole(self):
        self.assert_whole_page()

    def test_bar_widths_are_proportional_to_counts(self):
        largest = max(self.counts["success"])
        rows = self.rows()
        self.assertEqual(len(rows), len(self.numbers()))
        for row, number in zip(rows, self.numbers()):
            with self.subTest(number=number):
                count = self.counts["success"][number]
                bar, text, *rest = row["parts"]
                self.assertEqual(row["number"], "%02d#" % number)
                self.assertEqual(row["count"], ":%d" % count)
                width = bar_pixels(count, largest, 400) or 1
                self.assertEqual((bar["width"], bar["color"]), (width, RED))
                self.assertEqual(text["left"], bar["right"])
                self.assertEqual([part["width"] for part in rest],
                                 [400 - width] if width < 400 else [])

    def test_mouse_over_a_row_shows_its_title(self):
        bars = WINDOW.find_all("td[colspan='2'] td.cell_failure")
        numbers = WINDOW.find_all("tr.hot_row[title] > td:nth-child(2)")
        self.assert_shows_titles(bars + numbers)


class TestBitList(BarLists, PageTest):
    query = 4

    def numbers(self):
        return list(range(24))


class TestKeyList(BarLists, PageTest):
    query = 5

    def numbers(self):
        return list(range(1, self.counts["highest_key_read"] + 1))

    def test_keys_are_shown_as_in_the_gatebits_file(self):
        described = [row["description"] for row in self.rows()]
        self.assertEqual(described[:10],
                         ["lock;key <%d> & more;" % key for key in range(1, 11)])
        self.assertEqual(set(described[10:]),
                         {"----Key Not available (or commented out) at graph time----"})


class TestEmptyRegion(TimeGraphs, PageTest):
    query = 6
    halves = 2


def main():
    if not (browser.CHROMIUM and browser.CHROMEDRIVER):
        print("needs chromium and chromedriver")
        sys.exit(SKIPPED)
    global PAGES, WINDOW
    make_pages = sys.argv.pop(1)
    with tempfile.TemporaryDirectory(prefix="pages_") as PAGES:
        subprocess.run([make_pages, PAGES], check=True, stdout=subprocess.DEVNULL)
        WINDOW = browser.Browser()
        try:
            program = unittest.main(exit=False)
        finally:
            WINDOW.close()
    sys.exit(not program.result.wasSuccessful())


if __name__ == "__main__":
    main()
