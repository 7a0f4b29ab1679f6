#include "base/json.h"

#include <gtest/gtest.h>

namespace gatescope {
namespace {

std::string all_bytes() {
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte) bytes += static_cast<char>(byte);
    return bytes;
}

TEST(Utf8, CharactersHaveTheirSizes) {
    EXPECT_EQ(utf8_size("a-"), 1u);
    EXPECT_EQ(utf8_size(std::string("\0-", 2)), 1u);
    EXPECT_EQ(utf8_size("\xC2\x80-"), 2u);
    EXPECT_EQ(utf8_size("\xDF\xBF-"), 2u);
    EXPECT_EQ(utf8_size("\xE0\xA0\x80-"), 3u);
    EXPECT_EQ(utf8_size("\xED\x9F\xBF-"), 3u);
    EXPECT_EQ(utf8_size("\xEF\xBF\xBF-"), 3u);
    EXPECT_EQ(utf8_size("\xF0\x90\x80\x80-"), 4u);
    EXPECT_EQ(utf8_size("\xF4\x8F\xBF\xBF-"), 4u);
}

TEST(Utf8, WhatIsNoneHasNoSize) {
    // Nothing; what comes later in a character; longer forms than needed; surrogates; what lies
    // beyond the last character; characters that end too early.
    for (const std::string text :
         {"", "\x80", "\xBF", "\xC0\x80", "\xC1\xBF", "\xE0\x9F\xBF", "\xF0\x8F\xBF\xBF",
          "\xED\xA0\x80", "\xED\xBF\xBF", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFF", "\xC2",
          "\xC2-", "\xE0\xA0", "\xE0\xA0-", "\xF0\x90\x80", "\xF0\x90\x80-"}) {
        EXPECT_EQ(utf8_size(text), 0u) << json_string(text);
    }
}

TEST(Json, TextsAreWrittenAsTheyAre) {
    EXPECT_EQ(json_string(""), "\"\"");
    EXPECT_EQ(json_string("pre_checkin;R; (a) ~b ;/'&"), "\"pre_checkin;R; (a) ~b ;/'&\"");
    EXPECT_EQ(json_string("M\xC3\xBCller \xE2\x82\xAC"), "\"M\xC3\xBCller \xE2\x82\xAC\"");
}

TEST(Json, WhatWouldEndOrSpoilALineIsEscaped) {
    EXPECT_EQ(json_string("a\"b\\c"), R"("a\"b\\c")");
    EXPECT_EQ(json_string("\n\t\x1B[m\x7F"), R"("\u000a\u0009\u001b[m\u007f")");
    EXPECT_EQ(json_string(std::string("a\0b", 3)), R"("a\u0000b")");
}

TEST(Json, BytesThatAreNotUtf8AreEscaped) {
    EXPECT_EQ(json_string("M\xFCller"), R"("M\u00fcller")");
    EXPECT_EQ(json_string("\xE2\x82"), R"("\u00e2\u0082")");
    EXPECT_EQ(json_string("\xC3\xBC\xFC"), "\"\xC3\xBC\\u00fc\"");
}

TEST(Json, ALineIsReadAsItWasWritten) {
    const std::string line = "{\"odd\":" + json_string(all_bytes()) +
                             ",\"utf8\":" + json_string("\xC3\xBC") +
                             R"(,"uid":1000,"none":null,"word":"null","empty":"",)" +
                             json_string("a\"},{\\:,") + ":" + json_string("\"},{\\:,") + "}";
    const auto object = read_json_object(line);
    ASSERT_TRUE(object);
    EXPECT_EQ(*object, (JsonObject{{"odd", all_bytes()},
                                   {"utf8", "\xC3\xBC"},
                                   {"uid", "1000"},
                                   {"word", "null"},
                                   {"empty", ""},
                                   {"a\"},{\\:,", "\"},{\\:,"}}));
}

TEST(Json, OtherLinesAreNotRead) {
    for (const char* line :
         {"", "{", "}", "null", "[1]", R"({"a":1)", R"("a":1})", R"( {"a":1})", R"({"a":1} )",
          R"({"a":"b)", R"({"a":"b})", R"({"a":"\)", R"({"a":"b\"})", R"({"a":"\u00)"}) {
        EXPECT_FALSE(read_json_object(line)) << line;
    }
}

}  // namespace
}  // namespace gatescope
