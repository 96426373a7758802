#include "TqFloat.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <new>

#include "Random.h"
#include "Reports.h"
#include "TqBuffer.h"
#include "TqString.h"
#include "Values.h"

namespace {

const float infinity = std::numeric_limits<float>::infinity();
const float notANumber = std::numeric_limits<float>::quiet_NaN();

TqFloat Parsed(const char* text) {
    TqFloat number(99);
    number.FromString(text);
    return number;
}

int Compared(float a, float b) {
    return TqFloat(a).Compare(TqFloat(b));
}

bool Equal(float a, float b) {
    const TqFloat other(b);
    return TqFloat(a).Equals(&other);
}

// The same fields under another type id.
class Voltage : public TqFloat {
public:
    using TqFloat::TqFloat;
    short TypeId() const override { return 100; }
};

// Texts of its own, to see that the buffer form goes through the virtual operations.
class Tagged : public TqFloat {
public:
    void ToString(TqString& out) const override { out = "tagged"; }
    void FromString(const char* text) override { value = text[0] == 't' ? 77.0f : -1.0f; }
};

void ExpectPointAndReport(float value, const char* text) {
    EXPECT_EQ(TextOf(TqFloat(value)), text);
    EXPECT_EQ(TakeReports(), Reports({"TqFloat"})) << value;
}

void ExpectPlainText(float value, const char* text) {
    EXPECT_EQ(TextOf(TqFloat(value)), text);
    EXPECT_EQ(TakeReports(), Reports()) << value;
}

TEST(TqFloat, IsZeroByDefaultAndHoldsWhatItIsGiven) {
    EXPECT_EQ(TqFloat().value, 0.0f);
    EXPECT_EQ(TqFloat(2.5f).value, 2.5f);
}

TEST(TqFloat, TypeIdIsFiveFromTheFirstCallOn) {
    EXPECT_EQ(TqFloat::typeId, 5);
    EXPECT_EQ(TqFloat().TypeId(), 5);
}

TEST(TqFloat, TypeIdDoesNotReadTheMember) {
    TqFloat::typeId = 50;
    EXPECT_EQ(TqFloat().TypeId(), 5);
    TqFloat::typeId = 5;
}

TEST(TqFloat, DestructorClearsTheValue) {
    alignas(TqFloat) unsigned char storage[sizeof(TqFloat)];
    TqFloat* number = new (storage) TqFloat(2.5f);
    const volatile float* value = &number->value;
    number->~TqFloat();
    EXPECT_EQ(*value, 0.0f);
}

TEST(TqFloat, CloneHandsOverTheSameValue) {
    const TqFloat number(-0.75f);
    const std::unique_ptr<TqDataType> clone(number.Clone());
    EXPECT_EQ(clone->TypeId(), 5);
    EXPECT_NE(clone.get(), &number);
    EXPECT_EQ(static_cast<TqFloat&>(*clone).value, -0.75f);
}

TEST(TqFloat, CopiesAndAssigns) {
    const TqFloat number(1.25f);
    TqFloat copy(number);
    EXPECT_EQ(copy.value, 1.25f);
    TqFloat assigned;
    EXPECT_EQ(&(assigned = number), &assigned);
    EXPECT_EQ(assigned.value, 1.25f);
}

TEST(TqFloat, AssignmentTakesTheValueWithoutATypeCheck) {
    TqFloat number;
    number.Assignment(TqFloat(6.5f));
    EXPECT_EQ(number.value, 6.5f);
    number.Assignment(Voltage(230.0f));
    EXPECT_EQ(number.value, 230.0f);
}

TEST(TqFloat, ParsesWhatStrtodParses) {
    EXPECT_EQ(Parsed("2.5e3").value, 2500.0f);
    EXPECT_EQ(Parsed("  -0.125").value, -0.125f);
    EXPECT_EQ(Parsed("+7").value, 7.0f);
    EXPECT_EQ(Parsed("0x10").value, 16.0f);
    EXPECT_EQ(Parsed("-inf").value, -infinity);
    EXPECT_TRUE(std::isnan(Parsed("nan").value));
}

TEST(TqFloat, ParsesTextThatIsNoNumberAsZero) {
    EXPECT_EQ(Parsed("abc").value, 0.0f);
    EXPECT_EQ(Parsed("").value, 0.0f);
    EXPECT_EQ(Parsed("-").value, 0.0f);
}

TEST(TqFloat, IgnoresWhatStandsBehindTheNumber) {
    EXPECT_EQ(Parsed("1.5 volts").value, 1.5f);
    EXPECT_EQ(Parsed("3.75x").value, 3.75f);
}

TEST(TqFloat, NarrowsTheParsedNumberToSinglePrecision) {
    EXPECT_EQ(Parsed("0.1").value, 0.1f);
    EXPECT_EQ(Parsed("16777217").value, 16777216.0f);
    EXPECT_EQ(Parsed("1e39").value, infinity);
    EXPECT_EQ(Parsed("-1e39").value, -infinity);
    EXPECT_EQ(Parsed("1e-60").value, 0.0f);
}

TEST(TqFloat, ShowsTheIntegerPartAndAPointWithAReport) {
    ExpectPointAndReport(0.0f, "0.");
    ExpectPointAndReport(3.75f, "3.");
    ExpectPointAndReport(-12.5f, "-12.");
    ExpectPointAndReport(0.29999998f, "0.");
    ExpectPointAndReport(0.99999994f, "0.");
    ExpectPointAndReport(99.0f, "99.");
    ExpectPointAndReport(123.0f, "123.");
    ExpectPointAndReport(1e-40f, "0.");
}

TEST(TqFloat, ShowsNoSignForAnIntegerPartOfZero) {
    ExpectPointAndReport(-0.5f, "0.");
    ExpectPointAndReport(-0.0f, "0.");
}

TEST(TqFloat, ShowsSevenCharactersWithAPointAndEightWithout) {
    ExpectPointAndReport(9999999.0f, "9999999.");
    ExpectPlainText(10000000.0f, "10000000");
    ExpectPlainText(12345678.0f, "12345678");
    ExpectPlainText(100000000.0f, "100000000");
}

TEST(TqFloat, CountsTheMinusSignAmongTheEightCharacters) {
    ExpectPointAndReport(-999999.0f, "-999999.");
    ExpectPlainText(-1000000.0f, "-1000000");
    ExpectPlainText(-1000000.5f, "-1000000");
}

TEST(TqFloat, ShowsTheNearestEndOfTheIntegerRange) {
    ExpectPlainText(2147483520.0f, "2147483520");
    ExpectPlainText(2147483648.0f, "2147483647");
    ExpectPlainText(1e10f, "2147483647");
    ExpectPlainText(infinity, "2147483647");
    ExpectPlainText(-2147483520.0f, "-2147483520");
    ExpectPlainText(-2147483648.0f, "-2147483648");
    ExpectPlainText(-1e10f, "-2147483648");
    ExpectPlainText(-infinity, "-2147483648");
}

TEST(TqFloat, ShowsANotANumberAsZero) {
    ExpectPointAndReport(notANumber, "0.");
    ExpectPointAndReport(-notANumber, "0.");
}

TEST(TqFloat, WritesItsTextAsAStringItem) {
    TqBuffer buffer;
    TqFloat(3.75f).ToBuffer(buffer);
    TqFloat(-12345678.0f).ToBuffer(buffer);
    EXPECT_EQ(Bytes(buffer), "000023.00009-12345678");
    EXPECT_EQ(TakeReports(), Reports({"TqFloat"}));
}

TEST(TqFloat, BufferRoundTripKeepsTheIntegerPartOnly) {
    TqBuffer buffer;
    TqFloat(3.75f).ToBuffer(buffer);
    TakeReports();
    TqFloat number(99);
    number.FromBuffer(buffer);
    EXPECT_EQ(number.value, 3.0f);
    EXPECT_EQ(buffer.readPosition, buffer.length);
}

TEST(TqFloat, ReadsOneItemAndLeavesTheNext) {
    TqBuffer buffer;
    TqString("2.5e3").ToBuffer(buffer);
    TqString("7").ToBuffer(buffer);
    TqFloat number;
    number.FromBuffer(buffer);
    EXPECT_EQ(number.value, 2500.0f);
    number.FromBuffer(buffer);
    EXPECT_EQ(number.value, 7.0f);
}

TEST(TqFloat, IncompleteItemIsReportedAndGivesZero) {
    TqBuffer buffer = BufferOf("0000912");
    TqFloat number(99);
    number.FromBuffer(buffer);
    EXPECT_EQ(number.value, 0.0f);
    EXPECT_EQ(TakeReports(), Reports({"TqBuffer"}));
}

TEST(TqFloat, BufferFormGoesThroughTheVirtualTextOperations) {
    TqBuffer buffer;
    Tagged number;
    number.ToBuffer(buffer);
    EXPECT_EQ(Bytes(buffer), "00006tagged");
    number.FromBuffer(buffer);
    EXPECT_EQ(number.value, 77.0f);
}

TEST(TqFloat, BufferRoundTripGivesTheShownNumberOfRandomValues) {
    Random random(1);
    for (int i = 0; i < 100000; ++i) {
        // Integer parts of every length up to seven characters.
        const float value =
            std::ldexp(static_cast<float>(static_cast<int>(random.Number())), -8 - i % 28);
        TqBuffer buffer;
        TqFloat(value).ToBuffer(buffer);
        TqFloat back;
        back.FromBuffer(buffer);
        ASSERT_EQ(back.value, std::trunc(value) + 0.0f);
    }
    TakeReports();
}

TEST(TqFloat, CompareIsTheTruncatedDifference) {
    EXPECT_EQ(Compared(5.0f, 2.0f), 3);
    EXPECT_EQ(Compared(-3.0f, 1.0f), -4);
    EXPECT_EQ(Compared(1.5f, 1.0f), 0);
    EXPECT_EQ(Compared(2.0f, 2.9f), 0);
    EXPECT_EQ(Compared(2.0f, 0.5f), 1);
    EXPECT_EQ(Compared(-1.0f, 0.9f), -1);
}

TEST(TqFloat, CompareEndsAtTheIntegerRange) {
    EXPECT_EQ(Compared(3e9f, 0.0f), 2147483647);
    EXPECT_EQ(Compared(2147483648.0f, 0.0f), 2147483647);
    EXPECT_EQ(Compared(-3e9f, 0.0f), -2147483647 - 1);
    EXPECT_EQ(Compared(infinity, 0.0f), 2147483647);
    EXPECT_EQ(Compared(0.0f, infinity), -2147483647 - 1);
    EXPECT_EQ(Compared(3e38f, -3e38f), 2147483647);
}

TEST(TqFloat, CompareOfANotANumberIsZero) {
    EXPECT_EQ(Compared(notANumber, 1.0f), 0);
    EXPECT_EQ(Compared(1.0f, notANumber), 0);
    EXPECT_EQ(Compared(infinity, infinity), 0);
}

TEST(TqFloat, ComparesInSinglePrecision) {
    // 16777216 - 0.25 is 16777216 in 24 bits; with more it truncates to 16777215.
    EXPECT_EQ(Compared(16777216.0f, 0.25f), 16777216);
}

TEST(TqFloat, CompareReportsAnotherTypeAndGoesOn) {
    EXPECT_EQ(TqFloat(5).Compare(Voltage(2)), 3);
    EXPECT_EQ(TakeReports(), Reports({"TqFloat"}));
}

TEST(TqFloat, CompareLooksAtTheTypeOfTheOtherOnly) {
    EXPECT_EQ(Voltage(5).Compare(TqFloat(2)), 3);
    EXPECT_EQ(TakeReports(), Reports());
}

TEST(TqFloat, EqualsIsTheComparisonOfIeee) {
    EXPECT_TRUE(Equal(1.5f, 1.5f));
    EXPECT_FALSE(Equal(1.5f, 1.25f));
    EXPECT_TRUE(Equal(0.0f, -0.0f));
    EXPECT_TRUE(Equal(infinity, infinity));
    EXPECT_FALSE(Equal(notANumber, notANumber));
}

TEST(TqFloat, EqualsOfNullIsFalseWithoutAReport) {
    EXPECT_FALSE(TqFloat(0).Equals(nullptr));
    EXPECT_TRUE(TqFloat(0).DoesNotEqual(nullptr));
}

TEST(TqFloat, DoesNotEqualNegatesEquals) {
    const TqFloat one(1);
    EXPECT_FALSE(TqFloat(1).DoesNotEqual(&one));
    EXPECT_TRUE(TqFloat(2).DoesNotEqual(&one));
}

TEST(TqFloat, EqualsReportsAnotherTypeByTheHeadersNameAndGoesOn) {
    const Voltage two(2);
    EXPECT_TRUE(TqFloat(2).Equals(&two));
    EXPECT_FALSE(TqFloat(3).Equals(&two));
    EXPECT_EQ(TakeReports(), Reports({"./TqFloat", "./TqFloat"}));
}

// The operation stands in the header: applications have a copy of their own, the library another.
TEST(TqFloat, EqualsIsTheSameThroughTheTableOfOperations) {
    const Voltage two(2);
    const TqFloat plain(2);
    const TqDataType& value = plain;
    EXPECT_TRUE(value.Equals(&two));
    EXPECT_EQ(TakeReports(), Reports({"./TqFloat"}));
    EXPECT_FALSE(value.Equals(nullptr));
    EXPECT_TRUE(value.Equals(&plain));
}

TEST(TqFloat, EqualsAsksThisObjectForItsTypeToo) {
    const TqFloat plain(2);
    EXPECT_TRUE(Voltage(2).Equals(&plain));
    EXPECT_EQ(TakeReports(), Reports({"./TqFloat"}));
    const Voltage same(2);
    EXPECT_TRUE(Voltage(2).Equals(&same));
    EXPECT_EQ(TakeReports(), Reports());
}

}  // namespace
