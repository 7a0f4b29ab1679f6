#include "history/change_list.h"

#include <gtest/gtest.h>

namespace gatescope {
namespace {

constexpr std::size_t ANY_WIDTH = 1000;

PastChange change(int number, const std::optional<std::string>& from,
                  const std::optional<std::string>& to, const std::string& item = "Item",
                  const std::string& name = "ann",
                  const std::string& time = "2026-11-22T01:15:30+01:00",
                  const std::string& action = "A08") {
    return {"", number,
            "{\"time\":" + json_value(time) + ",\"operator\":" + json_value(name) +
                ",\"action\":" + json_value(action) + ",\"item\":" + json_value(item) +
                ",\"from\":" + json_value(from) + ",\"to\":" + json_value(to) + "}\n"};
}

TEST(ChangeList, StandsInColumns) {
    EXPECT_EQ(list_of({change(9, "O", "S"), change(10, "old", "new", "Longer Item", "benjamin")},
                      ANY_WIDTH),
              "9   2026-11-22 01:15:30  ann       A08  Item         O → S\n"
              "10  2026-11-22 01:15:30  benjamin  A08  Longer Item  old → new\n");
    EXPECT_EQ(list_of({}, 80), "");
}

TEST(ChangeList, NothingIsToldFromAnEmptyValue) {
    EXPECT_EQ(list_of({change(1, std::nullopt, "")}, ANY_WIDTH),
              "1  2026-11-22 01:15:30  ann  A08  Item  - → \"\"\n");
}

std::string values_in(std::size_t width, const std::string& from, const std::string& to) {
    const std::string before = "1  2026-11-22 01:15:30  ann  A08  Item  ";
    const std::string line = list_of({change(1, from, to)}, width);
    EXPECT_TRUE(line.starts_with(before)) << line;
    return line.substr(before.size());
}

TEST(ChangeList, LongValuesAreCutAsTheTerminalIsWide) {
    const std::string twenty = "abcdefghijklmnopqrst";
    const std::string other = "ABCDEFGHIJKLMNOPQRST";
    // 40 characters come before the values, 3 stand between them.
    EXPECT_EQ(values_in(83, twenty, other), twenty + " → " + other + "\n");
    EXPECT_EQ(values_in(82, twenty, other), twenty + " → ABCDEFGHIJKLMNOPQR…\n");
    EXPECT_EQ(values_in(81, twenty, other), "abcdefghijklmnopqr… → ABCDEFGHIJKLMNOPQR…\n");
    EXPECT_EQ(values_in(80, twenty, other), "abcdefghijklmnopqr… → ABCDEFGHIJKLMNOPQ…\n");
    // What the other one does not need is there for the long one.
    EXPECT_EQ(values_in(60, "O", twenty), "O → abcdefghijklmno…\n");
    EXPECT_EQ(values_in(60, twenty, "O"), "abcdefghijklmno… → O\n");
    // Something is seen of each on the narrowest.
    EXPECT_EQ(values_in(20, twenty, other), "abcdefg… → ABCDEFG…\n");
}

TEST(ChangeList, ALongItemLeavesRoomForTheValues) {
    const std::string item = "Region Per-VOB Functionality Bits Personality";
    EXPECT_EQ(
        list_of({change(1, "D", "A", item)}, 80),
        "1  2026-11-22 01:15:30  ann  A08  Region Per-VOB Functionality Bits Perso…  D → A\n");
    EXPECT_EQ(list_of({change(1, "D", "A", item)}, ANY_WIDTH),
              "1  2026-11-22 01:15:30  ann  A08  " + item + "  D → A\n");
}

TEST(ChangeList, SomethingIsSeenOfEachColumnOnATerminalOfOneColumn) {
    EXPECT_EQ(list_of({change(1, "from a to b", "to b from a", "A long item")}, 1),
              "1  2026-11-22 01:15:30  ann  A08  A long …  from a … → to b fr…\n");
}

TEST(ChangeList, CharactersAreCountedAndNotBytes) {
    const std::string umlauts = "ääääääääääääääääääää";
    EXPECT_EQ(values_in(83, umlauts, umlauts), umlauts + " → " + umlauts + "\n");
    EXPECT_EQ(values_in(60, "O", umlauts), "O → äääääääääääääää…\n");
    EXPECT_EQ(list_of({change(1, "", "", "ä"), change(2, "", "", "ab")}, ANY_WIDTH).substr(34, 6),
              "ä   \"");
}

TEST(ChangeList, NothingThatATerminalWouldObey) {
    EXPECT_EQ(list_of({change(1, "\033c", "\r", "\033]0;x\a", "\b", "\0337", "\033M")}, ANY_WIDTH),
              "1  ?7  ?  ?M  ?]0;x?  ?c → ?\n");
}

}  // namespace
}  // namespace gatescope
