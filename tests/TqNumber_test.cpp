#include "TqNumber.h"

#include <gtest/gtest.h>

#include <memory>

#include "Reports.h"
#include "TqBoolean.h"
#include "TqBuffer.h"
#include "TqCounter.h"
#include "TqString.h"
#include "Values.h"

namespace {

const int lowest = -2147483647 - 1;

int Parsed(const char* text) {
    TqNumber n(77);
    n.FromString(text);
    return n.value;
}

// A number that an application made a type of its own: twice what is stored.
class Doubled : public TqNumber {
public:
    using TqNumber::TqNumber;
    short TypeId() const override { return 77; }
    operator int() const override { return value * 2; }
};

// Sees the calls that must go through the virtual table.
class Watched : public TqNumber {
public:
    using TqNumber::TqNumber;
    void ToString(TqString& out) const override { out = "shown"; }
    void FromString(const char* text) override {
        ++parses;
        TqNumber::FromString(text);
    }
    void Assignment(const TqDataType& other) override {
        ++assignments;
        TqNumber::Assignment(other);
    }
    int parses = 0;
    int assignments = 0;
};

TEST(TqNumber, HoldsWhatItIsConstructedFrom) {
    EXPECT_EQ(TqNumber().value, 0);
    EXPECT_EQ(TqNumber(-42).value, -42);
    EXPECT_EQ(int(TqNumber(2147483647)), 2147483647);
    EXPECT_EQ(int(TqNumber(lowest)), lowest);
}

TEST(TqNumber, CopiesAndAssigns) {
    const TqNumber n(42);
    EXPECT_EQ(TqNumber(n).value, 42);
    TqNumber assigned(7);
    EXPECT_EQ(&(assigned = n), &assigned);
    EXPECT_EQ(assigned.value, 42);
    assigned = static_cast<const TqNumber&>(assigned);
    EXPECT_EQ(assigned.value, 42);
}

TEST(TqNumber, AssigningIsAssignment) {
    Watched n;
    TqNumber& asNumber = n;
    asNumber = TqNumber(5);
    EXPECT_EQ(n.assignments, 1);
    EXPECT_EQ(n.value, 5);
}

TEST(TqNumber, AssignmentDoesNotCheckTheType) {
    TqNumber n;
    n.Assignment(Doubled(21));
    EXPECT_EQ(n.value, 21);
    TqCounter counter(9);
    counter.FromString("-5");
    n.Assignment(counter);
    EXPECT_EQ(n.value, -5);
}

TEST(TqNumber, ToStringReplacesByTheDigits) {
    EXPECT_EQ(TextOf(TqNumber(0)), "0");
    EXPECT_EQ(TextOf(TqNumber(42)), "42");
    EXPECT_EQ(TextOf(TqNumber(-42)), "-42");
    EXPECT_EQ(TextOf(TqNumber(2147483647)), "2147483647");
    EXPECT_EQ(TextOf(TqNumber(-2147483647)), "-2147483647");
    EXPECT_EQ(TextOf(TqNumber(lowest)), "-0");
}

TEST(TqNumber, ToStringKeepsTheStorageOfTheText) {
    TqString out(Letters(50).c_str());
    TqNumber(42).ToString(out);
    EXPECT_EQ(Held(out), HeldInBlock(51, "42"));
}

TEST(TqNumber, ToStringShowsTheTypesOwnIntegerValue) {
    EXPECT_EQ(TextOf(Doubled(21)), "42");
}

// The parser.

TEST(TqNumber, ParsesDecimalDigits) {
    EXPECT_EQ(Parsed("0"), 0);
    EXPECT_EQ(Parsed("7"), 7);
    EXPECT_EQ(Parsed("0123456789"), 123456789);
    EXPECT_EQ(Parsed("2147483647"), 2147483647);
    EXPECT_EQ(Parsed("000000000000000042"), 42);
}

TEST(TqNumber, ParsesOneSign) {
    EXPECT_EQ(Parsed("-42"), -42);
    EXPECT_EQ(Parsed("+7"), 7);
    EXPECT_EQ(Parsed("-0"), 0);
    for (const char* text : {"--5", "++5", "+-5", "-+5", "-", "+", "- 5", "+ 5"})
        EXPECT_EQ(Parsed(text), 0) << text;
}

TEST(TqNumber, StopsAtTheFirstOtherCharacter) {
    EXPECT_EQ(Parsed("12abc"), 12);
    EXPECT_EQ(Parsed("-12-3"), -12);
    EXPECT_EQ(Parsed("1.9"), 1);
    EXPECT_EQ(Parsed("5 6"), 5);
    EXPECT_EQ(Parsed("1e3"), 1);
    EXPECT_EQ(Parsed("8/"), 8);
    EXPECT_EQ(Parsed("8:"), 8);
    EXPECT_EQ(Parsed("3\xB2"), 3);
}

TEST(TqNumber, KnowsNoBlanksAndNoOtherBases) {
    EXPECT_EQ(Parsed(" 5"), 0);
    EXPECT_EQ(Parsed("\t5"), 0);
    EXPECT_EQ(Parsed("0x1F"), 0);
    EXPECT_EQ(Parsed("010"), 10);
    EXPECT_EQ(Parsed("F"), 0);
}

TEST(TqNumber, WrapsAroundAt32Bits) {
    EXPECT_EQ(Parsed("2147483648"), lowest);
    EXPECT_EQ(Parsed("-2147483648"), lowest);
    EXPECT_EQ(Parsed("2147483649"), -2147483647);
    EXPECT_EQ(Parsed("-2147483649"), 2147483647);
    EXPECT_EQ(Parsed("4294967295"), -1);
    EXPECT_EQ(Parsed("-4294967295"), 1);
    EXPECT_EQ(Parsed("4294967296"), 0);
    EXPECT_EQ(Parsed("4294967301"), 5);
    EXPECT_EQ(Parsed("99999999999999999999"), 1661992959);
}

const char* const trueWords[] = {"T", "Y", "On", "Yes", "One", "True", "Open", "Enable", "Enabled"};

TEST(TqNumber, KnowsTheTrueWordsInAnyCase) {
    for (const std::string word : trueWords) {
        std::string upper, lower;
        for (const char c : word) {
            upper += static_cast<char>(std::toupper(c));
            lower += static_cast<char>(std::tolower(c));
        }
        for (const std::string& text : {word, upper, lower}) {
            EXPECT_EQ(Parsed(text.c_str()), 1) << text;
            EXPECT_EQ(Parsed(("-" + text).c_str()), 1) << text;
            EXPECT_EQ(Parsed(("+" + text).c_str()), 1) << text;
        }
    }
    EXPECT_EQ(Parsed("eNaBlEd"), 1);
}

TEST(TqNumber, KnowsNoLongerFormOfATrueWord) {
    for (const std::string word : trueWords) {
        for (const char* more : {" ", "\n", "!", "1", "s"}) {
            EXPECT_EQ(Parsed((word + more).c_str()), 0) << word << more;
            EXPECT_EQ(Parsed((more + word).c_str()), *more == '1') << more << word;
        }
        EXPECT_EQ(Parsed((word + word).c_str()), 0) << word;
        EXPECT_EQ(Parsed(("--" + word).c_str()), 0) << word;
    }
}

TEST(TqNumber, KnowsNoOtherWords) {
    for (const char* text :
         {"",    "No",  "Off",   "False",   "N",   "F",    "O",     "Disabled", "Ok",
          "Ye",  "Tr",  "Tru",   "Ope",     "Ena", "Enab", "Enabl", "Disable",  "Up",
          "Two", "Set", "Opens", "Enabler", "Yep", "Ones", "Ea",    "X",        "\xFF"}) {
        EXPECT_EQ(Parsed(text), 0) << text;
    }
}

TEST(TqNumber, ParsingReplacesTheValue) {
    TqNumber n;
    for (const char* text : {"-42", "yes", "no"}) n.FromString(text);
    EXPECT_EQ(n.value, 0);
}

// Comparing.

TEST(TqNumber, CompareIsTheDifference) {
    EXPECT_EQ(TqNumber(5).Compare(TqNumber(5)), 0);
    EXPECT_EQ(TqNumber(5).Compare(TqNumber(7)), -2);
    EXPECT_EQ(TqNumber(7).Compare(TqNumber(-5)), 12);
}

TEST(TqNumber, CompareWrapsAround) {
    EXPECT_EQ(TqNumber(2147483647).Compare(TqNumber(-1)), lowest);
    EXPECT_EQ(TqNumber(lowest).Compare(TqNumber(1)), 2147483647);
    EXPECT_EQ(TqNumber(0).Compare(TqNumber(lowest)), lowest);
    EXPECT_EQ(TqNumber(lowest).Compare(TqNumber(2147483647)), 1);
}

TEST(TqNumber, CompareReportsAnotherTypeThanANumberAndGoesOn) {
    EXPECT_EQ(TqNumber(5).Compare(Doubled(3)), 2);
    EXPECT_EQ(TakeReports(), Reports({"TqNumber"}));
    EXPECT_EQ(Doubled(5).Compare(Doubled(3)), 2);
    EXPECT_EQ(TakeReports(), Reports({"TqNumber"}));
    EXPECT_EQ(Doubled(5).Compare(TqNumber(3)), 2);
    EXPECT_EQ(TakeReports(), Reports());
}

TEST(TqNumber, CompareReadsTheValueOfACounterOrBoolean) {
    TqCounter counter(100);
    counter.FromString("-5");
    EXPECT_EQ(TqNumber(5).Compare(counter), 10);
    EXPECT_EQ(TakeReports(), Reports({"TqNumber"}));
    TqBoolean boolean("3");
    EXPECT_EQ(TqNumber(5).Compare(boolean), 2);
    EXPECT_EQ(TakeReports(), Reports({"TqNumber"}));
}

TEST(TqNumber, EqualsComparesTheValues) {
    const TqNumber n(5), same(5), other(-5);
    EXPECT_TRUE(n.Equals(&n));
    EXPECT_TRUE(n.Equals(&same));
    EXPECT_FALSE(n.Equals(&other));
    EXPECT_TRUE(n.DoesNotEqual(&other));
}

TEST(TqNumber, NullEqualsNothingAndIsNotReported) {
    EXPECT_FALSE(TqNumber(0).Equals(nullptr));
    EXPECT_TRUE(TqNumber(0).DoesNotEqual(nullptr));
    EXPECT_EQ(TakeReports(), Reports());
}

TEST(TqNumber, EqualsReportsAnotherTypeAndComparesItsIntegerValue) {
    const TqNumber n(1);
    const TqCounter counter(1), otherCounter(2);
    const TqBoolean boolean(1), otherBoolean(0);
    const TqDataType* const equal[] = {&counter, &boolean};
    const TqDataType* const different[] = {&otherCounter, &otherBoolean};
    for (const TqDataType* other : equal) {
        EXPECT_TRUE(n.Equals(other));
        EXPECT_EQ(TakeReports(), Reports({"TqNumber"}));
    }
    for (const TqDataType* other : different) {
        EXPECT_FALSE(n.Equals(other));
        EXPECT_EQ(TakeReports(), Reports({"TqNumber"}));
    }
}

TEST(TqNumber, EqualsTakesTheOthersIntegerValueAndItsOwnField) {
    const Doubled d(21), half(10);
    EXPECT_TRUE(TqNumber(42).Equals(&d));
    EXPECT_EQ(TakeReports(), Reports({"TqNumber"}));
    const Doubled field(20);
    EXPECT_TRUE(field.Equals(&half));
    EXPECT_EQ(TakeReports(), Reports());
}

// Conversions.

TEST(TqNumber, ToBufferAppendsItsTextAsAnItem) {
    EXPECT_EQ(ItemOf(TqNumber(0)), "000010");
    EXPECT_EQ(ItemOf(TqNumber(42)), "0000242");
    EXPECT_EQ(ItemOf(TqNumber(-42)), "00003-42");
    EXPECT_EQ(ItemOf(TqNumber(-2147483647)), "00011-2147483647");
    EXPECT_EQ(ItemOf(TqNumber(lowest)), "00002-0");
    TqBuffer buffer = BufferOf("before");
    TqNumber(1).ToBuffer(buffer);
    EXPECT_EQ(Bytes(buffer), "before000011");
}

TEST(TqNumber, FromBufferParsesTheItemAndMovesOn) {
    TqBuffer buffer = BufferOf("00003-4200003Yes0000000002-0");
    TqNumber n(7);
    n.FromBuffer(buffer);
    EXPECT_EQ(n.value, -42);
    EXPECT_EQ(buffer.readPosition, 8u);
    n.FromBuffer(buffer);
    EXPECT_EQ(n.value, 1);
    n.FromBuffer(buffer);
    EXPECT_EQ(n.value, 0);
    EXPECT_EQ(buffer.readPosition, 21u);
    n = TqNumber(7);
    n.FromBuffer(buffer);
    EXPECT_EQ(n.value, 0);
    EXPECT_EQ(buffer.readPosition, 28u);
}

TEST(TqNumber, TheTypesOwnTextRulesMakeTheItem) {
    Watched n(5);
    EXPECT_EQ(ItemOf(n), "00005shown");
    TqBuffer buffer = BufferOf("0000242");
    n.FromBuffer(buffer);
    EXPECT_EQ(n.parses, 1);
    EXPECT_EQ(n.value, 42);
}

TEST(TqNumber, ReadsTheTextOfAnItemUpToItsFirstNul) {
    TqBuffer buffer =
        BufferOf(Exactly("000044\0"
                         "2"
                         "200003on\0"));
    TqNumber n;
    n.FromBuffer(buffer);
    EXPECT_EQ(n.value, 4);
    n.FromBuffer(buffer);
    EXPECT_EQ(n.value, 1);
}

TEST(TqNumber, EveryPowerOfTwoAndItsNeighboursReadBack) {
    for (unsigned int bit = 0; bit < 32; ++bit) {
        for (unsigned int neighbour = 0; neighbour < 3; ++neighbour) {
            const int value = static_cast<int>((1u << bit) + neighbour - 1);
            if (value == lowest) continue;
            for (const int sign : {1, -1}) {
                const std::string text = std::to_string(sign * value);
                const TqNumber n(sign * value);
                const std::string item = "000" + std::string(text.size() < 10 ? "0" : "") +
                                         std::to_string(text.size()) + text;
                EXPECT_EQ(ItemOf(n), item);
                TqBuffer buffer = BufferOf(item);
                TqNumber back;
                back.FromBuffer(buffer);
                EXPECT_EQ(back.value, sign * value);
            }
        }
    }
}

TEST(TqNumber, CloneHasTheSameValue) {
    const std::unique_ptr<TqDataType> clone(TqNumber(-42).Clone());
    EXPECT_EQ(clone->TypeId(), 2);
    EXPECT_EQ(static_cast<TqNumber&>(*clone).value, -42);
}

}  // namespace
