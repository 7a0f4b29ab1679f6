#include "actions/bits_field.h"

#include <gtest/gtest.h>

namespace gatescope {
namespace {

const std::string ALL_OFF(24, '0');

TEST(BitsField, StateHasOneDigitPerBit) {
    EXPECT_EQ(bit_state(""), ALL_OFF);
    EXPECT_EQ(bit_state("01x1"), "0101" + std::string(20, '0'));
    EXPECT_EQ(bit_state("1x1"), "101" + std::string(21, '0'));
    EXPECT_EQ(bit_state(std::string(30, '1')), std::string(24, '1'));
}

TEST(BitsField, EntriesShowNumberStateAndName) {
    const std::string entries = bit_entries(bit_state("01"));
    EXPECT_TRUE(entries.starts_with(
        "00 - (0) BIT__AUTO_BRANCH_REMOVAL,01 - (1) BIT__CHOWN_VOB_OWNER,02 - (0) BIT__EVIL_TWIN,"))
        << entries;
    EXPECT_TRUE(entries.ends_with(",23 - (0) BIT__FORCE_CHECKOUTS_UNRESERVED")) << entries;
}

TEST(BitsField, OnlyPickedBitsAreSet) {
    EXPECT_EQ(state_with_only(""), ALL_OFF);
    EXPECT_EQ(state_with_only("00 - (0) x"), "1" + std::string(23, '0'));
    EXPECT_EQ(state_with_only("23 - (1) y,01 - (0) x"), "01" + std::string(21, '0') + "1");
}

TEST(BitsField, PicksWithoutAValidBitNumberAreIgnored) {
    EXPECT_EQ(state_with_only(",,x,-1,24,99999999999999999999,"), ALL_OFF);
}

}  // namespace
}  // namespace gatescope
