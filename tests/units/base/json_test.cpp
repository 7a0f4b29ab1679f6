#include "base/json.h"

#include <gtest/gtest.h>

namespace gatescope {
namespace {

std::string all_bytes() {
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte) bytes += static_cast<char>(byte);
    return bytes;
}

TEST(Json, TextsAreWrittenAsTheyAre) {
    EXPECT_EQ(json_value(""), "\"\"");
    EXPECT_EQ(json_value("pre_checkin;R; (a) ~b ;/'&"), "\"pre_checkin;R; (a) ~b ;/'&\"");
    EXPECT_EQ(json_value("M\xC3\xBCller \xE2\x82\xAC"), "\"M\xC3\xBCller \xE2\x82\xAC\"");
}

TEST(Json, NothingIsNull) {
    EXPECT_EQ(json_value(std::nullopt), "null");
    EXPECT_EQ(json_value("null"), "\"null\"");
}

TEST(Json, WhatWouldEndOrSpoilALineIsEscaped) {
    EXPECT_EQ(json_value("a\"b\\c"), R"("a\"b\\c")");
    EXPECT_EQ(json_value("\n\t\x1B[m\x7F"), R"("\u000a\u0009\u001b[m\u007f")");
    EXPECT_EQ(json_value(std::string("a\0b", 3)), R"("a\u0000b")");
}

TEST(Json, BytesThatAreNotUtf8AreEscaped) {
    EXPECT_EQ(json_value("M\xFCller"), R"("M\u00fcller")");
    EXPECT_EQ(json_value("\xE2\x82"), R"("\u00e2\u0082")");
    EXPECT_EQ(json_value("\xC3\xBC\xFC"), "\"\xC3\xBC\\u00fc\"");
}

TEST(Json, TextsAreReadAsTheyWereWritten) {
    const std::string line =
        "{\"odd\":" + json_value(all_bytes()) + ",\"utf8\":" + json_value("\xC3\xBC") +
        R"(,"uid":1000,"none":null,"word":"null","empty":"",)" +
        "\"trap\":" + json_value(R"(","late":"no\","late":"no)") + R"(,"late":"yes"})";
    EXPECT_EQ(json_text(line, "odd"), all_bytes());
    EXPECT_EQ(json_text(line, "utf8"), "\xC3\xBC");
    EXPECT_EQ(json_text(line, "word"), "null");
    EXPECT_EQ(json_text(line, "empty"), "");
    EXPECT_EQ(json_text(line, "trap"), R"(","late":"no\","late":"no)");
    EXPECT_EQ(json_text(line, "late"), "yes");
    EXPECT_EQ(json_text(line, "none"), std::nullopt);
    EXPECT_EQ(json_text(line, "uid"), std::nullopt);
    EXPECT_EQ(json_text(line, "missing"), std::nullopt);
}

TEST(Json, OtherTextsAreNotRead) {
    for (const char* line :
         {"", R"({"a":)", R"({"a":")", R"({"a":"b)", R"({"a":"\)", R"({"a":"b\"})", R"({"a":"\u00)",
          R"({"a":"\u00e")", R"({"a":"\n"})", R"({"a":"\u20ac"})", R"({"a": "b"})"}) {
        EXPECT_EQ(json_text(line, "a"), std::nullopt) << line;
    }
}

}  // namespace
}  // namespace gatescope
