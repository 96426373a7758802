#include "TqBoolean.h"

#include <gtest/gtest.h>

#include <memory>

#include "Reports.h"
#include "TqBuffer.h"
#include "TqCounter.h"
#include "TqString.h"
#include "Values.h"

namespace {

int Parsed(const char* text) {
    TqBoolean b(1);
    b.FromString(text);
    return b.state;
}

// A boolean that an application made a type of its own.
class Link : public TqBoolean {
public:
    using TqBoolean::TqBoolean;
    short TypeId() const override { return 77; }
};

TEST(TqBoolean, HoldsWhatItIsConstructedFrom) {
    EXPECT_EQ(TqBoolean().state, 0);
    EXPECT_EQ(TqBoolean().value, 0);
    EXPECT_EQ(TqBoolean(1).state, 1);
    EXPECT_EQ(TqBoolean(1).value, 0);
    EXPECT_EQ(TqBoolean(0).state, 0);
}

TEST(TqBoolean, ConstructionFromAnyNumberButZeroIsOne) {
    EXPECT_EQ(TqBoolean(5).state, 1);
    EXPECT_EQ(TqBoolean(-1).state, 1);
    EXPECT_EQ(TqBoolean(-2147483647 - 1).state, 1);
    EXPECT_TRUE(TqBoolean(5).Compare(TqBoolean(1)) == 0);
}

TEST(TqBoolean, AStateSetByHandStaysAndIsCopied) {
    TqBoolean five;
    five.state = 5;
    EXPECT_EQ(TqBoolean(five).state, 5);
    TqBoolean assigned;
    assigned = five;
    EXPECT_EQ(assigned.state, 5);
}

TEST(TqBoolean, ConstructionFromATextParsesIt) {
    EXPECT_EQ(TqBoolean("open").state, 1);
    EXPECT_EQ(TqBoolean("2").state, 1);
    EXPECT_EQ(TqBoolean("2").value, 2);
    EXPECT_EQ(TqBoolean("-1").state, 0);
    EXPECT_EQ(TqBoolean("False").state, 0);
    EXPECT_EQ(TqBoolean("False").value, 0);
}

TEST(TqBoolean, IntegerValueIsTheState) {
    EXPECT_EQ(int(TqBoolean("2")), 1);
    EXPECT_EQ(int(TqBoolean(0)), 0);
    TqBoolean five;
    five.state = 5;
    const TqNumber& asNumber = five;
    EXPECT_EQ(int(asNumber), 5);
}

TEST(TqBoolean, ACopyTakesTheStateAndNoScratchValue) {
    const TqBoolean b("2");
    const TqBoolean copy(b);
    EXPECT_EQ(copy.state, 1);
    EXPECT_EQ(copy.value, 0);
}

TEST(TqBoolean, CloneHasTheSameStateAndNoScratchValue) {
    const std::unique_ptr<TqDataType> clone(TqBoolean("2").Clone());
    EXPECT_EQ(clone->TypeId(), 4);
    EXPECT_EQ(static_cast<TqBoolean&>(*clone).state, 1);
    EXPECT_EQ(static_cast<TqBoolean&>(*clone).value, 0);
}

TEST(TqBoolean, AssignmentTakesTheStateAlone) {
    TqBoolean b("-7");
    b.Assignment(TqBoolean("2"));
    EXPECT_EQ(b.state, 1);
    EXPECT_EQ(b.value, -7);
    EXPECT_EQ(&(b = TqBoolean(0)), &b);
    EXPECT_EQ(b.state, 0);
    EXPECT_EQ(b.value, -7);
}

TEST(TqBoolean, AssignmentDoesNotCheckTheType) {
    TqBoolean b;
    b.Assignment(Link(1));
    EXPECT_EQ(b.state, 1);
}

TEST(TqBoolean, ToStringIsTrueOrFalse) {
    EXPECT_EQ(TextOf(TqBoolean(1)), "True");
    EXPECT_EQ(TextOf(TqBoolean(0)), "False");
    TqBoolean byHand;
    byHand.state = -1;
    EXPECT_EQ(TextOf(byHand), "True");
}

TEST(TqBoolean, ToStringKeepsTheStorageOfTheText) {
    TqString out(Letters(50).c_str());
    TqBoolean(1).ToString(out);
    EXPECT_EQ(Held(out), HeldInBlock(51, "True"));
}

TEST(TqBoolean, ParsesAsANumberAndIsTrueAboveZero) {
    for (const char* text : {"1", "2", "+3", "2147483647", "open", "On", "TRUE", "-Yes", "Enabled"})
        EXPECT_EQ(Parsed(text), 1) << text;
    for (const char* text :
         {"0", "-1", "-0", "2147483648", "no", "False", "Off", "", " 1", "Truex"})
        EXPECT_EQ(Parsed(text), 0) << text;
}

TEST(TqBoolean, StringToValueIsFromString) {
    TqBoolean b;
    b.StringToValue("42");
    EXPECT_EQ(b.state, 1);
    EXPECT_EQ(b.value, 42);
    b.FromString("-42");
    EXPECT_EQ(b.state, 0);
    EXPECT_EQ(b.value, -42);
}

TEST(TqBoolean, CompareIsTheDifference) {
    EXPECT_EQ(TqBoolean(1).Compare(TqBoolean(1)), 0);
    EXPECT_EQ(TqBoolean(1).Compare(TqBoolean(0)), 1);
    EXPECT_EQ(TqBoolean(0).Compare(TqBoolean(1)), -1);
    TqBoolean seven;
    seven.state = 7;
    EXPECT_EQ(seven.Compare(TqBoolean(1)), 6);
}

TEST(TqBoolean, CompareReportsAnotherTypeThanABooleanAndGoesOn) {
    EXPECT_EQ(TqBoolean(1).Compare(Link(0)), 1);
    EXPECT_EQ(TakeReports(), Reports({"TqBoolean"}));
    EXPECT_EQ(Link(1).Compare(Link(1)), 0);
    EXPECT_EQ(TakeReports(), Reports({"TqBoolean"}));
    EXPECT_EQ(Link(1).Compare(TqBoolean(0)), 1);
    EXPECT_EQ(TakeReports(), Reports());
}

TEST(TqBoolean, CompareReadsTheCountOfACounter) {
    EXPECT_EQ(TqBoolean(1).Compare(TqCounter(5)), -4);
    EXPECT_EQ(TakeReports(), Reports({"TqBoolean"}));
}

TEST(TqBoolean, EqualsTakesAnyTwoTrueStatesAsEqual) {
    TqBoolean one(1), five, minusOne, zero(0), otherZero(0);
    five.state = 5;
    minusOne.state = -1;
    otherZero.value = 3;
    EXPECT_TRUE(one.Equals(&one));
    EXPECT_TRUE(one.Equals(&five));
    EXPECT_TRUE(five.Equals(&minusOne));
    EXPECT_TRUE(zero.Equals(&otherZero));
    EXPECT_FALSE(one.Equals(&zero));
    EXPECT_FALSE(zero.Equals(&five));
    EXPECT_TRUE(zero.DoesNotEqual(&five));
    EXPECT_FALSE(one.DoesNotEqual(&five));
}

TEST(TqBoolean, NullEqualsNothingAndIsNotReported) {
    EXPECT_FALSE(TqBoolean(0).Equals(nullptr));
    EXPECT_TRUE(TqBoolean(0).DoesNotEqual(nullptr));
    EXPECT_EQ(TakeReports(), Reports());
}

TEST(TqBoolean, EqualsReportsAnotherTypeAndComparesTheFields) {
    const TqBoolean b(1);
    const Link same(3), other(0);
    const TqCounter counter(9);
    EXPECT_TRUE(b.Equals(&same));
    EXPECT_EQ(TakeReports(), Reports({"TqBoolean"}));
    EXPECT_FALSE(b.Equals(&other));
    EXPECT_EQ(TakeReports(), Reports({"TqBoolean"}));
    EXPECT_TRUE(b.Equals(&counter));
    EXPECT_EQ(TakeReports(), Reports({"TqBoolean"}));
    EXPECT_TRUE(same.Equals(&same));
    EXPECT_EQ(TakeReports(), Reports());
}

TEST(TqBoolean, ToBufferAppendsItsTextAsAnItem) {
    EXPECT_EQ(ItemOf(TqBoolean(1)), "00004True");
    EXPECT_EQ(ItemOf(TqBoolean(0)), "00005False");
}

TEST(TqBoolean, FromBufferParsesTheItemByItsOwnRules) {
    TqBuffer buffer = BufferOf("00004True00005False0000250");
    TqBoolean b;
    b.FromBuffer(buffer);
    EXPECT_EQ(b.state, 1);
    b.FromBuffer(buffer);
    EXPECT_EQ(b.state, 0);
    b.FromBuffer(buffer);
    EXPECT_EQ(b.state, 1);
    EXPECT_EQ(b.value, 50);
    EXPECT_EQ(buffer.readPosition, 26u);
}

}  // namespace
