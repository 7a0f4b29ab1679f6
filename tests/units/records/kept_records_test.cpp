#include "records/kept_records.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <random>
#include <string>

#include "base/filled.h"
#include "base/text.h"
#include "records/words.h"

namespace gatescope {
namespace {

constexpr std::int64_t CUT_OFF = 1700000000;

struct Kept {
    std::string text;
    std::int64_t total = 0;
    std::int64_t removed = 0;
    bool same_piece = false;
};

Kept kept_of(const std::string& text, InstructionSet set = best_instruction_set(),
             std::int64_t cut_off = CUT_OFF) {
    const std::string with_margin = text + std::string(READER_MARGIN, '\n');
    KeptRecords records(cut_off, set);
    const std::string_view piece(with_margin.data(), text.size());
    const std::string_view kept = records.of(piece);
    return {std::string(kept), records.total(), records.removed(), kept.data() == piece.data()};
}

/// Word by word.
Kept kept_by_the_plain_rule(const std::string& text, std::int64_t cut_off = CUT_OFF) {
    Kept kept;
    const char* at = text.data();
    while (true) {
        const std::string_view word = next_word(&at, text.data() + text.size());
        if (word.empty()) break;
        ++kept.total;
        const std::string record(c_text(word));
        if (leading_number(record.c_str()) >= cut_off) {
            kept.text += record + "\n";
        } else {
            ++kept.removed;
        }
    }
    kept.same_piece = kept.text == text;
    return kept;
}

TEST(KeptRecords, KeepsARecordOfTheCutOffTime) {
    const Kept kept = kept_of("1700000000:S:a[1]-<->\n1699999999:S:a[1]-<->\n");
    EXPECT_EQ(kept.text, "1700000000:S:a[1]-<->\n");
    EXPECT_EQ(kept.total, 2);
    EXPECT_EQ(kept.removed, 1);
}

TEST(KeptRecords, DropsWordsWithoutANumber) {
    const Kept kept = kept_of("rubbish :S:a[1]-<->\n1700000001\n");
    EXPECT_EQ(kept.text, "1700000001\n");
    EXPECT_EQ(kept.total, 3);
    EXPECT_EQ(kept.removed, 2);
}

TEST(KeptRecords, PutsEachWordOnALineOfItsOwn) {
    EXPECT_EQ(kept_of(" 1700000001:a\t1700000002:b\r\n\n1700000003:c").text,
              "1700000001:a\n1700000002:b\n1700000003:c\n");
}

TEST(KeptRecords, ReturnsThePieceItselfWhenNothingChanges) {
    const std::string text = "1700000001:S:a[1]-<->\n1700000002:D:b[1]K<7>\n1800000000:odd\n";
    EXPECT_TRUE(kept_of(text).same_piece);
    EXPECT_EQ(kept_of(text).text, text);
    EXPECT_FALSE(kept_of(text + "1").same_piece);
}

TEST(KeptRecords, ReplacesCrLfByLf) {
    const std::string kept = "1700000001:S:a[1]-<->";
    const std::string dropped = "1699999999:S:a[1]-<->";
    EXPECT_EQ(kept_of(kept + "\r\n" + dropped + "\r\n" + kept + "\r\n").text,
              kept + "\n" + kept + "\n");
    EXPECT_FALSE(kept_of(kept + "\r\n").same_piece);
}

TEST(KeptRecords, KeepsLongRecordsWhole) {
    const std::string user(5000, 'u');
    const std::string kept = "1700000001:S:" + user + "[1]-<->\n";
    const std::string dropped = "1699999999:S:" + user + "1700000001:S:ann[1]-<->\n";
    EXPECT_EQ(kept_of(kept + dropped + kept).text, kept + kept);
    EXPECT_EQ(kept_of(kept + dropped + kept).total, 3);
}

TEST(KeptRecords, AppliesAnyCutOff) {
    const std::int64_t largest = std::numeric_limits<std::int64_t>::max();
    std::string text;
    for (const char* time : {"0000000000", "0000000001", "0000000150", "1700000000", "1700000099",
                             "1700000100", "9999999899", "9999999999", "10000000000", "-5"}) {
        text += std::string(time) + ":S:a[1]-<->\n";
    }
    for (const std::int64_t cut_off :
         {-largest, std::int64_t{-1}, std::int64_t{0}, std::int64_t{1}, std::int64_t{100},
          std::int64_t{1700000050}, std::int64_t{9999999900}, std::int64_t{9999999999},
          std::int64_t{10000000000}, std::int64_t{10000000001}, largest}) {
        const Kept plain = kept_by_the_plain_rule(text, cut_off);
        for (const InstructionSet set :
             {best_instruction_set(), InstructionSet::SSE2, InstructionSet::SCALAR}) {
            EXPECT_EQ(kept_of(text, set, cut_off).text, plain.text) << cut_off;
        }
    }
}

TEST(KeptRecords, KeepsRandomWordsLikeThePlainRule) {
    std::mt19937 random(3);
    const auto draw = [&](unsigned limit) { return static_cast<unsigned>(random() % limit); };
    const auto byte = [&] { return " \n\r\t\x01:[]<>-019aS!\xff\0"[draw(18)]; };
    const auto odd_end = [&] { return std::array{"\r\n", " ", "\t", "\n\n", "\r\n \n"}[draw(5)]; };
    int unchanged = 0;
    for (int round = 0; round < 2000; ++round) {
        std::string text;
        const unsigned kept_in_100 = draw(2) == 0 ? 100 : draw(101);
        const unsigned odd_ends = std::array{0U, 0U, 5U, 100U}[draw(4)];
        for (int line = 0; line < 60; ++line) {
            text += std::to_string(CUT_OFF + (draw(100) < kept_in_100 ? 0 : -1) *
                                                 static_cast<int>(1 + draw(draw(2) * 500 + 5)));
            text += ":S:user" + std::to_string(draw(1000)) + "[1]-<->";
            text += draw(100) < odd_ends ? odd_end() : "\n";
            if (draw(400) == 0) text.insert(draw(static_cast<unsigned>(text.size())), 1, byte());
            if (draw(400) == 0)
                text.insert(text.size(), draw(40) == 0 ? 140000 : draw(600), byte());
            if (draw(400) == 0) text.resize(draw(static_cast<unsigned>(text.size())));
        }
        const Kept plain = kept_by_the_plain_rule(text);
        for (const InstructionSet set :
             {best_instruction_set(), InstructionSet::SSE2, InstructionSet::SCALAR}) {
            const Kept kept = kept_of(text, set);
            ASSERT_TRUE(kept.text == plain.text) << "round " << round;
            ASSERT_EQ(kept.total, plain.total);
            ASSERT_EQ(kept.removed, plain.removed);
            ASSERT_EQ(kept.same_piece, plain.same_piece) << "round " << round;
        }
        unchanged += plain.same_piece;
    }
    EXPECT_GT(unchanged, 100);
    EXPECT_LT(unchanged, 1900);
}

}  // namespace
}  // namespace gatescope
