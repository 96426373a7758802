#include "TqNetworkMask.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "TqString.h"
#include "Values.h"

namespace {

std::string TextOf(const TqIpAddress& address) {
    TqString out;
    address.toString(out);
    return Counted(out);
}

const unsigned int masks[] = {0,          0x80000000, 0xC0000000, 0xFF000000,
                              0xFFFF0000, 0xFFFFFF00, 0xFFFFFFFC, 0xFFFFFFFE,
                              0x7FFFFF00, 0x7FFFFFFF, 0x40000000, 0x60000000};
const unsigned int noMasks[] = {0xFFFFFFFF, 1,          0xFF00FF00, 0xFFFFFFFD, 0x80000001,
                                0xBFFFFFFF, 0x20000000, 0x00FFFFFF, 0x0000FF00};

TEST(TqNetworkMask, IsZeroAndNotValidByDefault) {
    const TqNetworkMask mask;
    EXPECT_EQ(mask.address, 0u);
    EXPECT_EQ(mask.valid, 0);
    EXPECT_EQ(TextOf(mask), "0.0.0.0");
}

TEST(TqNetworkMask, HasNoZeroAboveAOneUpToBit30) {
    for (unsigned int mask : masks) EXPECT_TRUE(TqNetworkMask::isValidMask(mask)) << mask;
    for (unsigned int none : noMasks) EXPECT_FALSE(TqNetworkMask::isValidMask(none)) << none;
}

// The rule in other words: the valid values written down, bit 31 left out of account.
bool IsListed(unsigned int number) {
    static const std::set<unsigned int> listed = [] {
        std::set<unsigned int> values = {0};
        for (int zeros = 0; zeros < 31; ++zeros) {
            values.insert(0x7FFFFFFFu >> zeros << zeros);
        }
        return values;
    }();
    return number != 0xFFFFFFFFu && listed.count(number & 0x7FFFFFFFu) != 0;
}

TEST(TqNetworkMask, FollowsItsRuleForAllValuesOfEachHalf) {
    int valid = 0;
    for (unsigned int half = 0; half <= 0xFFFF; ++half) {
        for (unsigned int number : {half << 16, half << 16 | 0xFFFF, half << 16 | 0xFF00, half,
                                    0xFFFF0000 | half, 0x7FFF0000 | half, 0x80000000 | half}) {
            ASSERT_EQ(TqNetworkMask::isValidMask(number), IsListed(number)) << number;
            valid += IsListed(number) ? 1 : 0;
        }
    }
    EXPECT_GT(valid, 64);
}

TEST(TqNetworkMask, RefusesTheMaskOfASingleHost) {
    EXPECT_FALSE(TqNetworkMask::isValidMask(0xFFFFFFFFul));
    EXPECT_FALSE(TqNetworkMask::isValidMask(TqString("255.255.255.255")));
}

TEST(TqNetworkMask, LooksAtTheLow32BitsOfAWiderNumber) {
    const unsigned long wide = static_cast<unsigned long>(0x7700000000ull);
    EXPECT_TRUE(TqNetworkMask::isValidMask(wide | 0xFF000000ul));
    EXPECT_FALSE(TqNetworkMask::isValidMask(wide | 0xFFFFFFFFul));
    EXPECT_TRUE(TqNetworkMask(wide | 0xFF000000ul) == 0xFF000000ul);
}

TEST(TqNetworkMask, TestsATextAsAddressAndAsMask) {
    EXPECT_TRUE(TqNetworkMask::isValidMask(TqString("255.255.0.0")));
    EXPECT_TRUE(TqNetworkMask::isValidMask(TqString(" 255.255.0.0/16")));
    EXPECT_FALSE(TqNetworkMask::isValidMask(TqString("255.0.255.0")));
    EXPECT_FALSE(TqNetworkMask::isValidMask(TqString("255.255.0")));
    EXPECT_FALSE(TqNetworkMask::isValidMask(TqString("")));
}

TEST(TqNetworkMask, ConstructorKeepsANumberThatIsNoMask) {
    for (unsigned int none : noMasks) {
        const TqNetworkMask mask(none);
        EXPECT_EQ(mask.address, none);
        EXPECT_EQ(mask.valid, 0);
        EXPECT_EQ(TextOf(mask), "0.0.0.0");
    }
    for (unsigned int number : masks) {
        const TqNetworkMask mask(number);
        EXPECT_EQ(mask.address, number);
        EXPECT_EQ(mask.valid, 1);
    }
}

TEST(TqNetworkMask, ConstructorTakesATextThatIsAMask) {
    const TqNetworkMask mask(TqString("255.255.0.0"));
    EXPECT_EQ(mask.address, 0xFFFF0000u);
    EXPECT_EQ(mask.valid, 1);
    for (const char* text : {"255.0.255.0", "255.255.255.255", "255.255"}) {
        const TqNetworkMask none{TqString(text)};
        EXPECT_EQ(none.address, 0u) << text;
        EXPECT_EQ(none.valid, 0) << text;
    }
}

TEST(TqNetworkMask, CopiesAndAssignsBothFields) {
    const TqNetworkMask none(5ul);
    const TqNetworkMask copy(none);
    EXPECT_EQ(copy.address, 5u);
    EXPECT_EQ(copy.valid, 0);
    TqNetworkMask assigned(0xFF000000ul);
    EXPECT_EQ(&(assigned = none), &assigned);
    EXPECT_EQ(assigned.address, 5u);
    EXPECT_EQ(assigned.valid, 0);
    const TqNetworkMask& same = assigned;
    assigned = same;
    EXPECT_EQ(assigned.address, 5u);
}

TEST(TqNetworkMask, FromUInt32TakesMasksOnly) {
    TqNetworkMask mask;
    EXPECT_TRUE(mask.fromUInt32(0xFFFFFF00ul));
    EXPECT_EQ(mask.address, 0xFFFFFF00u);
    EXPECT_EQ(mask.valid, 1);
    for (unsigned int none : noMasks) EXPECT_FALSE(mask.fromUInt32(none));
    EXPECT_EQ(mask.address, 0xFFFFFF00u);
    EXPECT_EQ(mask.valid, 1);
}

TEST(TqNetworkMask, FromStringTakesMasksOnly) {
    TqNetworkMask mask;
    EXPECT_TRUE(mask.fromString("255.255.0.0"));
    EXPECT_EQ(mask.address, 0xFFFF0000u);
    EXPECT_EQ(mask.valid, 1);
    for (const char* text : {"255.0.255.0", "255.255.255.255", "255.255", "", "10.0.0.1"}) {
        EXPECT_FALSE(mask.fromString(text)) << text;
    }
    EXPECT_EQ(mask.address, 0xFFFF0000u);
    EXPECT_EQ(mask.valid, 1);
}

TEST(TqNetworkMask, ARefusedTextLeavesANotValidMaskSo) {
    TqNetworkMask mask(5ul);
    EXPECT_FALSE(mask.fromString("255.255.255.255"));
    EXPECT_EQ(mask.address, 5u);
    EXPECT_EQ(mask.valid, 0);
}

TEST(TqNetworkMask, AppliesItsRuleThroughAnAddressReference) {
    TqNetworkMask mask(0xFF000000ul);
    TqIpAddress& address = mask;
    EXPECT_EQ(&(address = TqString("10.0.0.1")), &mask);
    EXPECT_EQ(mask.address, 0xFF000000u);
    address = TqString("255.255.0.0");
    EXPECT_EQ(mask.address, 0xFFFF0000u);
    EXPECT_FALSE(address.fromUInt32(1));
    EXPECT_FALSE(address.fromString("10.0.0.1"));
    EXPECT_EQ(mask.address, 0xFFFF0000u);
}

TEST(TqNetworkMask, AssignsATextAsTheAddressDoes) {
    TqNetworkMask mask;
    EXPECT_EQ(&(mask = TqString("255.0.0.0")), &mask);
    EXPECT_EQ(mask.address, 0xFF000000u);
    EXPECT_EQ(&(mask = TqString("1.2.3.4")), &mask);
    EXPECT_EQ(mask.address, 0xFF000000u);
    EXPECT_EQ(mask.valid, 1);
}

TEST(TqNetworkMask, ComparesWithANumberAsTheAddressDoes) {
    const TqNetworkMask mask(0xFF000000ul);
    EXPECT_TRUE(mask.operator==(0xFF000000ul));
    EXPECT_FALSE(mask.operator==(0xFF000001ul));
    EXPECT_FALSE(TqNetworkMask(5ul).operator==(5ul));
}

TEST(TqNetworkMask, DoesNotHideTheComparisonOfAddresses) {
    const TqNetworkMask mask(0xFF000000ul);
    EXPECT_TRUE(mask.operator==(TqIpAddress(0xFF000000ul)));
    EXPECT_FALSE(mask.operator==(TqIpAddress()));
}

}  // namespace
