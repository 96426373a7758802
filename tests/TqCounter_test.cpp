#include "TqCounter.h"

#include <gtest/gtest.h>

#include <memory>

#include "Reports.h"
#include "TqBoolean.h"
#include "TqBuffer.h"
#include "TqString.h"
#include "Values.h"

namespace {

unsigned int Parsed(const char* text) {
    TqCounter c(77);
    c.FromString(text);
    return c.count;
}

// A counter that an application made a type of its own.
class Octets : public TqCounter {
public:
    using TqCounter::TqCounter;
    short TypeId() const override { return 77; }
    operator int() const override { return -1; }
};

TEST(TqCounter, HoldsWhatItIsConstructedFrom) {
    EXPECT_EQ(TqCounter().count, 0u);
    EXPECT_EQ(TqCounter().value, 0);
    EXPECT_EQ(TqCounter(17).count, 17u);
    EXPECT_EQ(TqCounter(17).value, 0);
    EXPECT_EQ(TqCounter(4294967295u).count, 4294967295u);
}

TEST(TqCounter, IntegerValueIsTheCount) {
    const TqCounter seventeen(17), large(3000000000u);
    const TqNumber& asNumber = large;
    EXPECT_EQ(int(seventeen), 17);
    EXPECT_EQ(int(large), -1294967296);
    EXPECT_EQ(int(asNumber), -1294967296);
}

TEST(TqCounter, ACopyTakesTheCountAndNoScratchValue) {
    TqCounter c;
    c.FromString("17");
    EXPECT_EQ(c.value, 17);
    const TqCounter copy(c);
    EXPECT_EQ(copy.count, 17u);
    EXPECT_EQ(copy.value, 0);
}

TEST(TqCounter, CloneHasTheSameCountAndNoScratchValue) {
    TqCounter c;
    c.FromString("17");
    const std::unique_ptr<TqDataType> clone(c.Clone());
    EXPECT_EQ(clone->TypeId(), 3);
    EXPECT_EQ(static_cast<TqCounter&>(*clone).count, 17u);
    EXPECT_EQ(static_cast<TqCounter&>(*clone).value, 0);
}

TEST(TqCounter, AssignmentTakesTheCountAlone) {
    TqCounter c, other(3000000000u);
    c.FromString("-5");
    c.Assignment(other);
    EXPECT_EQ(c.count, 3000000000u);
    EXPECT_EQ(c.value, -5);
    EXPECT_EQ(&(c = TqCounter(4)), &c);
    EXPECT_EQ(c.count, 4u);
    EXPECT_EQ(c.value, -5);
}

TEST(TqCounter, AssignmentDoesNotCheckTheType) {
    TqCounter c;
    c.Assignment(Octets(17));
    EXPECT_EQ(c.count, 17u);
}

TEST(TqCounter, ToStringReplacesByUnsignedDigits) {
    EXPECT_EQ(TextOf(TqCounter(0)), "0");
    EXPECT_EQ(TextOf(TqCounter(17)), "17");
    EXPECT_EQ(TextOf(TqCounter(2147483648u)), "2147483648");
    EXPECT_EQ(TextOf(TqCounter(3000000000u)), "3000000000");
    EXPECT_EQ(TextOf(TqCounter(4294967295u)), "4294967295");
}

TEST(TqCounter, ToStringShowsTheCountAndNotTheIntegerValue) {
    EXPECT_EQ(TextOf(Octets(17)), "17");
}

TEST(TqCounter, ToStringKeepsTheStorageOfTheText) {
    TqString out(Letters(50).c_str());
    TqCounter(17).ToString(out);
    EXPECT_EQ(Held(out), HeldInBlock(51, "17"));
}

TEST(TqCounter, ParsesAsANumberAndTakesWhatIsAboveZero) {
    EXPECT_EQ(Parsed("17"), 17u);
    EXPECT_EQ(Parsed("+17"), 17u);
    EXPECT_EQ(Parsed("0"), 0u);
    EXPECT_EQ(Parsed("-5"), 0u);
    EXPECT_EQ(Parsed("True"), 1u);
    EXPECT_EQ(Parsed("No"), 0u);
    EXPECT_EQ(Parsed(""), 0u);
    EXPECT_EQ(Parsed("2147483647"), 2147483647u);
    EXPECT_EQ(Parsed("2147483648"), 0u);
    EXPECT_EQ(Parsed("3000000000"), 0u);
    EXPECT_EQ(Parsed("4294967297"), 1u);
    EXPECT_EQ(Parsed("-4294967295"), 1u);
}

TEST(TqCounter, ParsingLeavesTheParsedNumberInValue) {
    TqCounter c;
    c.FromString("-5");
    EXPECT_EQ(c.value, -5);
    c.FromString("17");
    EXPECT_EQ(c.value, 17);
}

TEST(TqCounter, CompareIsTheWrappedDifference) {
    EXPECT_EQ(TqCounter(5).Compare(TqCounter(5)), 0);
    EXPECT_EQ(TqCounter(5).Compare(TqCounter(7)), -2);
    EXPECT_EQ(TqCounter(7).Compare(TqCounter(5)), 2);
    EXPECT_EQ(TqCounter(3000000000u).Compare(TqCounter(0)), -1294967296);
    EXPECT_EQ(TqCounter(0).Compare(TqCounter(4294967295u)), 1);
    EXPECT_EQ(TqCounter(4294967295u).Compare(TqCounter(4294967294u)), 1);
}

TEST(TqCounter, CompareReportsAnotherTypeThanACounterAndGoesOn) {
    EXPECT_EQ(TqCounter(5).Compare(Octets(3)), 2);
    EXPECT_EQ(TakeReports(), Reports({"TqCounter"}));
    EXPECT_EQ(Octets(5).Compare(Octets(3)), 2);
    EXPECT_EQ(TakeReports(), Reports({"TqCounter"}));
    EXPECT_EQ(Octets(5).Compare(TqCounter(3)), 2);
    EXPECT_EQ(TakeReports(), Reports());
}

TEST(TqCounter, CompareReadsTheStateOfABoolean) {
    EXPECT_EQ(TqCounter(5).Compare(TqBoolean(1)), 4);
    EXPECT_EQ(TakeReports(), Reports({"TqCounter"}));
}

TEST(TqCounter, EqualsComparesTheCounts) {
    TqCounter c(17), same(17), other(18);
    same.value = 99;
    EXPECT_TRUE(c.Equals(&c));
    EXPECT_TRUE(c.Equals(&same));
    EXPECT_FALSE(c.Equals(&other));
    EXPECT_TRUE(c.DoesNotEqual(&other));
}

TEST(TqCounter, NullEqualsNothingAndIsNotReported) {
    EXPECT_FALSE(TqCounter(0).Equals(nullptr));
    EXPECT_TRUE(TqCounter(0).DoesNotEqual(nullptr));
    EXPECT_EQ(TakeReports(), Reports());
}

TEST(TqCounter, EqualsReportsAnotherTypeAndComparesTheFields) {
    const TqCounter c(1);
    const Octets same(1), other(2);
    const TqBoolean boolean(1);
    EXPECT_TRUE(c.Equals(&same));
    EXPECT_EQ(TakeReports(), Reports({"TqCounter"}));
    EXPECT_FALSE(c.Equals(&other));
    EXPECT_EQ(TakeReports(), Reports({"TqCounter"}));
    EXPECT_TRUE(c.Equals(&boolean));
    EXPECT_EQ(TakeReports(), Reports({"TqCounter"}));
    EXPECT_TRUE(same.Equals(&same));
    EXPECT_EQ(TakeReports(), Reports());
}

TEST(TqCounter, ToBufferAppendsItsTextAsAnItem) {
    EXPECT_EQ(ItemOf(TqCounter(17)), "0000217");
    EXPECT_EQ(ItemOf(TqCounter(0)), "000010");
    EXPECT_EQ(ItemOf(TqCounter(3000000000u)), "000103000000000");
}

TEST(TqCounter, FromBufferParsesTheItemByItsOwnRules) {
    TqBuffer buffer = BufferOf("000021700002-500004True");
    TqCounter c(5);
    c.FromBuffer(buffer);
    EXPECT_EQ(c.count, 17u);
    c.FromBuffer(buffer);
    EXPECT_EQ(c.count, 0u);
    c.FromBuffer(buffer);
    EXPECT_EQ(c.count, 1u);
    EXPECT_EQ(buffer.readPosition, 23u);
}

TEST(TqCounter, ACountAbove2147483647ReadsBackAsZero) {
    for (const unsigned int count : {2147483648u, 2147483649u, 3000000000u, 4294967295u}) {
        TqBuffer buffer;
        TqCounter(count).ToBuffer(buffer);
        TqCounter back(5);
        back.FromBuffer(buffer);
        EXPECT_EQ(back.count, 0u);
    }
}

TEST(TqCounter, EveryPowerOfTwoAndItsNeighboursReadBack) {
    for (unsigned int bit = 0; bit < 32; ++bit) {
        for (unsigned int neighbour = 0; neighbour < 3; ++neighbour) {
            const unsigned int count = (1u << bit) + neighbour - 1;
            TqBuffer buffer;
            TqCounter(count).ToBuffer(buffer);
            EXPECT_EQ(Bytes(buffer).substr(5), std::to_string(count));
            TqCounter back(5);
            back.FromBuffer(buffer);
            EXPECT_EQ(back.count, count <= 2147483647u ? count : 0u);
        }
    }
}

}  // namespace
