#include "TqSnmpOid.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "Random.h"
#include "Reports.h"
#include "SystemCalls.h"
#include "TqBuffer.h"
#include "TqString.h"
#include "Values.h"

namespace {

// Read before any test, and so any operation, has run.
const short typeIdAtLoad = TqSnmpOid::typeId;

using Values = std::vector<unsigned int>;

Values ValuesOf(const TqSnmpOid& oid) {
    return Values(oid.values, oid.values + oid.count);
}

bool HeldInside(const TqSnmpOid& oid) {
    return oid.values == oid.internalValues;
}

// 1, 2, 3 ... `count`.
TqSnmpOid Counting(unsigned int count) {
    TqSnmpOid oid("");
    for (unsigned int i = 1; i <= count; ++i) oid.Append(i);
    return oid;
}

Values CountingValues(unsigned int count) {
    Values values;
    for (unsigned int i = 1; i <= count; ++i) values.push_back(i);
    return values;
}

TqSnmpOid CopyOf(const TqSnmpOid& oid) {
    return oid;
}

// What a text parses to, and how many reports it makes.
void ExpectParsed(const char* text, const Values& values, unsigned int reports) {
    const TqSnmpOid constructed(text);
    EXPECT_EQ(ValuesOf(constructed), values) << text;
    TqSnmpOid read("9.9.9.9");
    read.FromString(text);
    EXPECT_EQ(ValuesOf(read), values) << text;
    TqSnmpOid appended("");
    appended.Append(text);
    EXPECT_EQ(ValuesOf(appended), values) << text;
    EXPECT_EQ(TakeReports(), Reports(3 * reports, "TqSnmpOid")) << text;
}

// The same fields under another type id.
class Index : public TqSnmpOid {
public:
    using TqSnmpOid::TqSnmpOid;
    short TypeId() const override { return 200; }
};

// Draws its id at run time as well.
class Instance : public TqSnmpOid {
public:
    using TqSnmpOid::TqSnmpOid;
    short TypeId() const override {
        NextId(&typeId);
        return typeId;
    }
    static short typeId;
};

short Instance::typeId = 0;

// Runs as though no type had been asked for its id yet.
class TqSnmpOidType : public testing::Test {
protected:
    TqSnmpOidType() : keptId(TqSnmpOid::typeId), keptFreeId(TqDataType::currentFreeTypeId) {
        TqSnmpOid::typeId = 0;
        Instance::typeId = 0;
        TqDataType::currentFreeTypeId = 12;
    }
    ~TqSnmpOidType() override {
        TqSnmpOid::typeId = keptId;
        TqDataType::currentFreeTypeId = keptFreeId;
    }

private:
    short keptId;
    short keptFreeId;
};

TEST(TqSnmpOid, HasNoTypeIdAtLoadTime) {
    EXPECT_EQ(typeIdAtLoad, 0);
}

TEST_F(TqSnmpOidType, IsDrawnAtTheFirstCall) {
    const TqSnmpOid oid("1.3");
    EXPECT_EQ(TqSnmpOid::typeId, 0);
    EXPECT_EQ(oid.TypeId(), 12);
    EXPECT_EQ(TqSnmpOid::typeId, 12);
    EXPECT_EQ(oid.TypeId(), 12);
    EXPECT_EQ(TqDataType::currentFreeTypeId, 13);
}

TEST_F(TqSnmpOidType, IsDrawnInTheOrderOfTheFirstCalls) {
    EXPECT_EQ(Instance("1").TypeId(), 12);
    EXPECT_EQ(TqSnmpOid("1").TypeId(), 13);
    EXPECT_EQ(Instance("1").TypeId(), 12);
}

TEST_F(TqSnmpOidType, AssignmentAsksTheOtherValueFirst) {
    TqSnmpOid oid("1");
    oid.Assignment(TqSnmpOid("1.3"));
    EXPECT_EQ(TakeReports(), Reports());
    EXPECT_EQ(TqSnmpOid::typeId, 12);
}

TEST_F(TqSnmpOidType, AssignmentOfAnotherTypeDoesNotDrawTheIdOfThisOne) {
    TqSnmpOid oid("1");
    oid.Assignment(Index("1.3"));
    EXPECT_EQ(TakeReports(), Reports({"TqSnmpOid"}));
    EXPECT_EQ(TqSnmpOid::typeId, 0);
}

TEST(TqSnmpOid, HasNoDefaultConstructor) {
    EXPECT_FALSE(std::is_default_constructible<TqSnmpOid>::value);
}

TEST(TqSnmpOid, KeepsSixteenValuesInside) {
    EXPECT_EQ(TqSnmpOid::maxInternalValues, 16u);
    const unsigned int* exported = &TqSnmpOid::maxInternalValues;
    EXPECT_EQ(*exported, 16u);
    EXPECT_EQ(sizeof TqSnmpOid("").internalValues, 16 * sizeof(unsigned int));
}

TEST(TqSnmpOid, ParsesNumbersBetweenDots) {
    ExpectParsed("1.3.6", {1, 3, 6}, 0);
    ExpectParsed("7", {7}, 0);
    ExpectParsed("0.0", {0, 0}, 0);
    ExpectParsed("1.3.6.1.2.1.1.1.0", {1, 3, 6, 1, 2, 1, 1, 1, 0}, 0);
    ExpectParsed("007.010", {7, 10}, 0);
}

TEST(TqSnmpOid, ParsesTheEmptyTextToTheEmptyIdentifier) {
    ExpectParsed("", {}, 0);
    EXPECT_EQ(TextOf(TqSnmpOid("")), "");
}

TEST(TqSnmpOid, ReportsAFirstCharacterThatIsNoDigit) {
    ExpectParsed(".1.3", {0, 1, 3}, 1);
    ExpectParsed(".", {0, 0}, 1);
}

TEST(TqSnmpOid, ParsesAMissingNumberAsZero) {
    ExpectParsed("1..3", {1, 0, 3}, 0);
    ExpectParsed("1.3.", {1, 3, 0}, 0);
}

TEST(TqSnmpOid, ReportsEachSeparatorThatIsNoDot) {
    ExpectParsed("1.a.3", {1, 0, 0, 3}, 1);
    ExpectParsed("1 3", {1, 3}, 1);
    ExpectParsed("1.3\n", {1, 3, 0}, 1);
    ExpectParsed("1:2:3", {1, 2, 3}, 2);
}

TEST(TqSnmpOid, ReportsAFirstCharacterThatIsNeitherDigitNorDotTwice) {
    ExpectParsed("-1", {0, 1}, 2);
    ExpectParsed("a", {0, 0}, 2);
    ExpectParsed("\xFF", {0, 0}, 2);
}

TEST(TqSnmpOid, ParsesWithoutAnOverflowCheck) {
    ExpectParsed("4294967295", {4294967295u}, 0);
    ExpectParsed("4294967296", {0}, 0);
    ExpectParsed("4294967303.1", {7, 1}, 0);
    // 10^40 = 2^40 * 5^40: the low 32 bits are 0, those of 10^20 are 1661992960.
    ExpectParsed("100000000000000000000.10000000000000000000000000000000000000000",
                 {1661992960u, 0}, 0);
}

TEST(TqSnmpOid, FromStringKeepsTheStorage) {
    TqSnmpOid oid = Counting(40);
    const unsigned int* const block = oid.values;
    oid.FromString("1.3");
    EXPECT_EQ(ValuesOf(oid), Values({1, 3}));
    EXPECT_EQ(oid.values, block);
    EXPECT_EQ(oid.capacity, 64u);
    oid.FromString("");
    EXPECT_EQ(oid.count, 0u);
    EXPECT_EQ(oid.values, block);
}

TEST(TqSnmpOid, TakesAnArrayInOrder) {
    const unsigned long numbers[] = {1, 3, 4294967295ul};
    const TqSnmpOid oid(numbers, 3);
    EXPECT_EQ(ValuesOf(oid), Values({1, 3, 4294967295u}));
    EXPECT_TRUE(HeldInside(oid));
    EXPECT_EQ(TqSnmpOid(numbers, 0).count, 0u);
    EXPECT_EQ(TqSnmpOid(nullptr, 0).count, 0u);
}

TEST(TqSnmpOid, ArraysGrowTheStorageOneValueAtATime) {
    const std::vector<unsigned long> numbers(33, 5);
    EXPECT_EQ(TqSnmpOid(numbers.data(), 16).capacity, 16u);
    EXPECT_EQ(TqSnmpOid(numbers.data(), 17).capacity, 32u);
    EXPECT_EQ(TqSnmpOid(numbers.data(), 33).capacity, 64u);
    TqSnmpOid oid("1");
    oid.SetValues(numbers.data(), 33);
    EXPECT_EQ(oid.capacity, 64u);
    EXPECT_EQ(ValuesOf(oid), Values(33, 5));
}

TEST(TqSnmpOid, KeepsTheLow32BitsOfAWiderNumber) {
    const unsigned long wide = static_cast<unsigned long>(0x1234567890ull);
    const TqSnmpOid oid(&wide, 1);
    EXPECT_EQ(ValuesOf(oid), Values({0x34567890u}));
    TqSnmpOid appended("");
    appended.Append(wide);
    appended.Append(0x700000007ull);
    EXPECT_EQ(ValuesOf(appended), Values({0x34567890u, 7}));
}

TEST(TqSnmpOid, AppendsIntegersOfEveryType) {
    TqSnmpOid oid("");
    oid.Append(0);
    oid.Append(1u);
    oid.Append(2l);
    oid.Append(3ul);
    oid.Append(4ll);
    oid.Append(static_cast<short>(5));
    oid.Append(static_cast<unsigned char>(6));
    oid.Append(-1);
    EXPECT_EQ(ValuesOf(oid), Values({0, 1, 2, 3, 4, 5, 6, 4294967295u}));
}

TEST(TqSnmpOid, AppendsATextBehindWhatIsThere) {
    TqSnmpOid oid("1.3");
    oid.Append("6.1");
    oid.Append("");
    EXPECT_EQ(ValuesOf(oid), Values({1, 3, 6, 1}));
}

TEST(TqSnmpOid, AppendsAnotherIdentifier) {
    TqSnmpOid oid("1.3");
    const TqSnmpOid tail("6.1");
    oid.Append(tail);
    EXPECT_EQ(ValuesOf(oid), Values({1, 3, 6, 1}));
    EXPECT_EQ(ValuesOf(tail), Values({6, 1}));
    oid.Append(TqSnmpOid(""));
    EXPECT_EQ(oid.count, 4u);
}

TEST(TqSnmpOid, AppendedToItselfDoubles) {
    TqSnmpOid oid("1.3");
    oid.Append(oid);
    EXPECT_EQ(ValuesOf(oid), Values({1, 3, 1, 3}));
    TqSnmpOid inside = Counting(16);
    inside.Append(inside);
    Values twice = CountingValues(16);
    for (unsigned int value : CountingValues(16)) twice.push_back(value);
    EXPECT_EQ(ValuesOf(inside), twice);
    EXPECT_EQ(inside.capacity, 32u);
    inside.Append(inside);
    EXPECT_EQ(inside.count, 64u);
    EXPECT_EQ(inside.values[48], 1u);
    EXPECT_EQ(inside.values[63], 16u);
}

TEST(TqSnmpOid, MovesToTheHeapWithTheSeventeenthValue) {
    TqSnmpOid oid = Counting(16);
    EXPECT_TRUE(HeldInside(oid));
    EXPECT_EQ(oid.capacity, 16u);
    oid.Append(17);
    EXPECT_FALSE(HeldInside(oid));
    EXPECT_EQ(oid.capacity, 32u);
    EXPECT_EQ(ValuesOf(oid), CountingValues(17));
}

TEST(TqSnmpOid, ComparesTheLastOfManyNumbers) {
    const TqSnmpOid oid("1.2.3.4.5.6");
    EXPECT_EQ(oid.Compare(TqSnmpOid("1.2.3.4.5.6")), 0);
    EXPECT_EQ(oid.Compare(TqSnmpOid("1.2.3.4.5.7")), -1);
    EXPECT_EQ(oid.Compare(TqSnmpOid("1.2.3.4.5.5")), 1);
}

TEST(TqSnmpOid, ALongTextWritesNothingBehindTheInternalValues) {
    struct {
        TqSnmpOid oid{""};
        unsigned int behind = 12345;
    } held;
    held.oid.FromString("1.2.3.4.5.6.7.8.9.10.11.12.13.14.15.16.17.18");
    EXPECT_EQ(ValuesOf(held.oid), CountingValues(18));
    EXPECT_EQ(held.behind, 12345u);
}

TEST(TqSnmpOid, DoublesItsStorageWhenAppendedOneAtATime) {
    EXPECT_EQ(Counting(32).capacity, 32u);
    EXPECT_EQ(Counting(33).capacity, 64u);
    EXPECT_EQ(Counting(65).capacity, 128u);
    EXPECT_EQ(ValuesOf(Counting(129)), CountingValues(129));
}

TEST(TqSnmpOid, GrowsToTheSmallestMultipleThatIsEnough) {
    TqSnmpOid oid("1.3");
    oid.CheckAllocSize(16);
    EXPECT_EQ(oid.capacity, 16u);
    EXPECT_TRUE(HeldInside(oid));
    oid.CheckAllocSize(40);
    EXPECT_EQ(oid.capacity, 48u);
    EXPECT_FALSE(HeldInside(oid));
    oid.CheckAllocSize(48);
    EXPECT_EQ(oid.capacity, 48u);
    oid.CheckAllocSize(50);
    EXPECT_EQ(oid.capacity, 96u);
    oid.CheckAllocSize(0);
    EXPECT_EQ(oid.capacity, 96u);
    EXPECT_EQ(ValuesOf(oid), Values({1, 3}));
}

TEST(TqSnmpOid, AppendingAnIdentifierMakesRoomForAllOfIt) {
    TqSnmpOid oid = Counting(8);
    oid.Append(Counting(32));
    EXPECT_EQ(oid.count, 40u);
    EXPECT_EQ(oid.capacity, 48u);
    TqSnmpOid exactly = Counting(8);
    exactly.Append(Counting(8));
    EXPECT_TRUE(HeldInside(exactly));
}

TEST(TqSnmpOid, CopyOfALongIdentifierRoundsUpToSixteens) {
    EXPECT_EQ(CopyOf(Counting(17)).capacity, 32u);
    const TqSnmpOid from = Counting(33);
    const TqSnmpOid copy(from);
    EXPECT_EQ(from.capacity, 64u);
    EXPECT_EQ(copy.capacity, 48u);
    EXPECT_FALSE(HeldInside(copy));
    EXPECT_NE(copy.values, from.values);
    EXPECT_EQ(ValuesOf(copy), CountingValues(33));
    EXPECT_EQ(CopyOf(Counting(48)).capacity, 48u);
}

TEST(TqSnmpOid, CopyOfUpToSixteenValuesIsHeldInside) {
    TqSnmpOid from = Counting(40);
    from.FromString("1.2.3.4.5.6.7.8.9.10.11.12.13.14.15.16");
    EXPECT_FALSE(HeldInside(from));
    const TqSnmpOid copy(from);
    EXPECT_TRUE(HeldInside(copy));
    EXPECT_EQ(copy.capacity, 16u);
    EXPECT_EQ(ValuesOf(copy), CountingValues(16));
}

TEST(TqSnmpOid, CopyZeroesTheInternalValues) {
    const TqSnmpOid from("1.3");
    const TqSnmpOid copy(from);
    for (int i = 2; i < 16; ++i) EXPECT_EQ(copy.internalValues[i], 0u);
    const TqSnmpOid longCopy = CopyOf(Counting(17));
    for (unsigned int value : longCopy.internalValues) EXPECT_EQ(value, 0u);
}

TEST(TqSnmpOid, CloneHandsOverACopy) {
    const TqSnmpOid oid = Counting(17);
    const std::unique_ptr<TqDataType> clone(oid.Clone());
    EXPECT_EQ(clone->TypeId(), oid.TypeId());
    EXPECT_EQ(ValuesOf(static_cast<TqSnmpOid&>(*clone)), CountingValues(17));
    EXPECT_EQ(static_cast<TqSnmpOid&>(*clone).capacity, 32u);
}

TEST(TqSnmpOid, SetValuesReplacesAndReturnsInside) {
    const unsigned long numbers[] = {1, 3};
    TqSnmpOid oid = Counting(40);
    oid.SetValues(numbers, 2);
    EXPECT_EQ(ValuesOf(oid), Values({1, 3}));
    EXPECT_TRUE(HeldInside(oid));
    EXPECT_EQ(oid.capacity, 16u);
    oid.SetValues(nullptr, 0);
    EXPECT_EQ(oid.count, 0u);
}

TEST(TqSnmpOid, SetValuesLeavesTheOldInternalValues) {
    const unsigned long numbers[] = {8, 9};
    TqSnmpOid oid = Counting(16);
    oid.SetValues(numbers, 2);
    EXPECT_EQ(oid.internalValues[1], 9u);
    EXPECT_EQ(oid.internalValues[2], 3u);
    EXPECT_EQ(oid.internalValues[15], 16u);
}

TEST(TqSnmpOid, ResetEmptiesReturnsInsideAndZeroes) {
    TqSnmpOid oid = Counting(40);
    EXPECT_EQ(oid.internalValues[0], 1u);
    oid.Reset();
    EXPECT_EQ(oid.count, 0u);
    EXPECT_EQ(oid.capacity, 16u);
    EXPECT_TRUE(HeldInside(oid));
    for (unsigned int value : oid.internalValues) EXPECT_EQ(value, 0u);
}

TEST(TqSnmpOid, GivesEveryBlockBack) {
    const unsigned long few[] = {1, 3, 6};
    const int blocks = LiveBlocks();
    {
        TqSnmpOid oid = Counting(20);
        oid.SetValues(few, 3);
        oid.Append(Counting(20));
        oid.Assignment(Counting(60));
        oid.Reset();
        oid.Append(Counting(20));
    }
    EXPECT_EQ(LiveBlocks(), blocks);
}

TEST(TqSnmpOid, ResetZeroesAnIdentifierThatIsHeldInside) {
    TqSnmpOid oid = Counting(16);
    oid.Reset();
    EXPECT_EQ(oid.count, 0u);
    for (unsigned int value : oid.internalValues) EXPECT_EQ(value, 0u);
}

TEST(TqSnmpOid, ShowsNumbersWithDotsBetween) {
    EXPECT_EQ(TextOf(TqSnmpOid("1.3.6.1.2.1.1.1.0")), "1.3.6.1.2.1.1.1.0");
    EXPECT_EQ(TextOf(TqSnmpOid("7")), "7");
    EXPECT_EQ(TextOf(TqSnmpOid("0.2147483647")), "0.2147483647");
}

TEST(TqSnmpOid, ShowsNumbersOf31BitsAndMoreAsNegative) {
    EXPECT_EQ(TextOf(TqSnmpOid("1.4294967295")), "1.-1");
    EXPECT_EQ(TextOf(TqSnmpOid("2147483649.1")), "-2147483647.1");
    EXPECT_EQ(TextOf(TqSnmpOid("1.2147483648")), "1.-0");
}

TEST(TqSnmpOid, ConvertHandsOverANewString) {
    const std::unique_ptr<TqString> text(TqSnmpOid("1.3.6").Convert());
    EXPECT_EQ(Counted(*text), "1.3.6");
    const std::unique_ptr<TqString> none(TqSnmpOid("").Convert());
    EXPECT_EQ(Counted(*none), "");
}

class Named : public TqSnmpOid {
public:
    using TqSnmpOid::TqSnmpOid;
    void ToString(TqString& out) const override { out = "named"; }
};

TEST(TqSnmpOid, ConvertGoesThroughTheVirtualToString) {
    const std::unique_ptr<TqString> text(Named("1.3").Convert());
    EXPECT_EQ(Counted(*text), "named");
}

TEST(TqSnmpOid, IsNeverWrittenToABuffer) {
    TqBuffer buffer = BufferOf("00001x00001y");
    TqString x;
    x.FromBuffer(buffer);
    const TqSnmpOid oid("1.3");
    oid.ToBuffer(buffer);
    EXPECT_EQ(Held(buffer), BytesInside("00001x00001y", 6));
    EXPECT_EQ(ValuesOf(oid), Values({1, 3}));
}

TEST(TqSnmpOid, IsNeverReadFromABuffer) {
    TqBuffer buffer = BufferOf("00001x00001y");
    TqString x;
    x.FromBuffer(buffer);
    TqSnmpOid oid("1.3");
    oid.FromBuffer(buffer);
    EXPECT_EQ(Held(buffer), BytesInside("00001x00001y", 6));
    EXPECT_EQ(ValuesOf(oid), Values({1, 3}));
}

TEST(TqSnmpOid, IncrementAddsOneToTheLastValue) {
    TqSnmpOid oid("1.3.6");
    oid.Increment();
    EXPECT_EQ(ValuesOf(oid), Values({1, 3, 7}));
    TqSnmpOid last("1.4294967295");
    last.Increment();
    EXPECT_EQ(ValuesOf(last), Values({1, 0}));
}

TEST(TqSnmpOid, IncrementTableRowAddsOneToTheLastButOne) {
    TqSnmpOid oid("1.3.6.1.2.1.2.2.1.1.5");
    oid.IncrementTableRow();
    EXPECT_EQ(TextOf(oid), "1.3.6.1.2.1.2.2.1.2.5");
    TqSnmpOid two("4294967295.5");
    two.IncrementTableRow();
    EXPECT_EQ(ValuesOf(two), Values({0, 5}));
}

TEST(TqSnmpOid, IncrementsLeaveShortIdentifiersAlone) {
    TqSnmpOid empty("");
    empty.Increment();
    empty.IncrementTableRow();
    EXPECT_EQ(empty.count, 0u);
    TqSnmpOid one("1");
    one.IncrementTableRow();
    EXPECT_EQ(ValuesOf(one), Values({1}));
    one.Increment();
    EXPECT_EQ(ValuesOf(one), Values({2}));
}

TEST(TqSnmpOid, SameTableIsWhatLiesAtOrBelow) {
    const TqSnmpOid table("1.3.6.1");
    EXPECT_TRUE(table.SameTable(TqSnmpOid("1.3.6.1")));
    EXPECT_TRUE(table.SameTable(TqSnmpOid("1.3.6.1.5")));
    EXPECT_FALSE(table.SameTable(TqSnmpOid("1.3.6.2.5")));
    EXPECT_FALSE(table.SameTable(TqSnmpOid("1.4.6.1.5")));
    EXPECT_FALSE(table.SameTable(TqSnmpOid("1.3.6")));
}

TEST(TqSnmpOid, SameTableDoesNotLookAtTheFirstValue) {
    EXPECT_TRUE(TqSnmpOid("1.3.6.1").SameTable(TqSnmpOid("9.3.6.1.5")));
    EXPECT_FALSE(TqSnmpOid("1.3.6.1").SameTable(TqSnmpOid("9.4.6.1.5")));
    EXPECT_TRUE(TqSnmpOid("1.3").SameTable(TqSnmpOid("2.3")));
    EXPECT_FALSE(TqSnmpOid("1.3").SameTable(TqSnmpOid("1.2")));
}

TEST(TqSnmpOid, SameTableOfAVeryShortIdentifierTakesAll) {
    EXPECT_TRUE(TqSnmpOid("1").SameTable(TqSnmpOid("2.7")));
    EXPECT_TRUE(TqSnmpOid("1").SameTable(TqSnmpOid("2")));
    EXPECT_FALSE(TqSnmpOid("1").SameTable(TqSnmpOid("")));
    EXPECT_TRUE(TqSnmpOid("").SameTable(TqSnmpOid("1.3")));
    EXPECT_TRUE(TqSnmpOid("").SameTable(TqSnmpOid("")));
}

TEST(TqSnmpOid, KnowsTheVendorSubtree) {
    EXPECT_TRUE(TqSnmpOid("1.3.6.1.4.1.61999").IsDorvane());
    EXPECT_TRUE(TqSnmpOid("1.3.6.1.4.1.61999.2.5").IsDorvane());
    EXPECT_FALSE(TqSnmpOid("1.3.6.1.4.1").IsDorvane());
    EXPECT_FALSE(TqSnmpOid("").IsDorvane());
}

TEST(TqSnmpOid, KnowsTheProductSubtree) {
    EXPECT_TRUE(TqSnmpOid("1.3.6.1.4.1.61999.1").IsMalvick());
    EXPECT_TRUE(TqSnmpOid("1.3.6.1.4.1.61999.1.3").IsMalvick());
    EXPECT_FALSE(TqSnmpOid("1.3.6.1.4.1.61999").IsMalvick());
    EXPECT_FALSE(TqSnmpOid("1.3.6.1.4.1.61999.2.5").IsMalvick());
}

TEST(TqSnmpOid, SubtreesDifferByEachOfTheirValues) {
    for (unsigned int i = 0; i < 8; ++i) {
        TqSnmpOid oid("1.3.6.1.4.1.61999.1");
        ++oid.values[i];
        EXPECT_EQ(oid.IsDorvane(), i == 7) << i;
        EXPECT_FALSE(oid.IsMalvick()) << i;
    }
}

TEST(TqSnmpOid, AShortenedIdentifierIsNotInTheSubtreesThatItWasIn) {
    TqSnmpOid oid("1.3.6.1.4.1.61999.1");
    oid.FromString("1.3.6.1.4.1.61999");
    EXPECT_FALSE(oid.IsMalvick());
    oid.FromString("1.3.6.1.4.1");
    EXPECT_FALSE(oid.IsDorvane());
}

int Compared(const char* a, const char* b) {
    return TqSnmpOid(a).Compare(TqSnmpOid(b));
}

TEST(TqSnmpOid, CompareIsDecidedByTheFirstDifference) {
    EXPECT_EQ(Compared("1.3.6", "1.3.6"), 0);
    EXPECT_EQ(Compared("1.3.7", "1.3.6.1"), 1);
    EXPECT_EQ(Compared("1.3.6.1", "1.3.7"), -1);
    EXPECT_EQ(Compared("1.9.6", "2.1.6"), -1);
    EXPECT_EQ(Compared("1.3.100", "1.3.6"), 1);
}

TEST(TqSnmpOid, CompareOrdersAShorterIdentifierFirst) {
    EXPECT_EQ(Compared("1.3", "1.3.6"), -1);
    EXPECT_EQ(Compared("1.3.6", "1.3"), 1);
    EXPECT_EQ(Compared("1.3", "1.3.1"), -1);
    EXPECT_EQ(Compared("1.3.1", "1.4"), -1);
    EXPECT_EQ(Compared("1.3", "1.3.0.0.0"), -1);
}

TEST(TqSnmpOid, CompareOrdersTheEmptyIdentifierFirst) {
    EXPECT_EQ(Compared("", ""), 0);
    EXPECT_EQ(Compared("", "0"), -1);
    EXPECT_EQ(Compared("0", ""), 1);
}

TEST(TqSnmpOid, CompareTakesValuesAsUnsigned) {
    EXPECT_EQ(Compared("4294967295", "1"), 1);
    EXPECT_EQ(Compared("1", "4294967295"), -1);
    EXPECT_EQ(Compared("2147483647", "2147483648"), -1);
}

bool Equal(const char* a, const char* b) {
    const TqSnmpOid other(b);
    return TqSnmpOid(a).Equals(&other);
}

TEST(TqSnmpOid, EqualsComparesEveryValue) {
    EXPECT_TRUE(Equal("1.3.6", "1.3.6"));
    EXPECT_FALSE(Equal("1.3.6", "1.3.7"));
    EXPECT_FALSE(Equal("1.3.6", "1.4.6"));
    EXPECT_FALSE(Equal("1.3.6", "2.3.6"));
    EXPECT_FALSE(Equal("1.3.6", "1.3"));
    EXPECT_FALSE(Equal("1.3", "1.3.0"));
    EXPECT_FALSE(Equal("", "0"));
    EXPECT_TRUE(Equal("", ""));
}

TEST(TqSnmpOid, EqualsOfNullIsFalseWithoutAReport) {
    EXPECT_FALSE(TqSnmpOid("").Equals(nullptr));
    EXPECT_TRUE(TqSnmpOid("").DoesNotEqual(nullptr));
}

TEST(TqSnmpOid, CompareAndEqualsReportAnotherTypeAndGoOn) {
    const Index index("1.3.6");
    EXPECT_EQ(TqSnmpOid("1.3.7").Compare(index), 1);
    EXPECT_EQ(TakeReports(), Reports({"TqSnmpOid"}));
    EXPECT_TRUE(TqSnmpOid("1.3.6").Equals(&index));
    EXPECT_FALSE(TqSnmpOid("1.3.7").Equals(&index));
    EXPECT_EQ(TakeReports(), Reports({"TqSnmpOid", "TqSnmpOid"}));
}

TEST(TqSnmpOid, CompareAndEqualsAskThisObjectForItsType) {
    const Index index("1.3.6");
    const TqSnmpOid oid("1.3.6");
    EXPECT_EQ(index.Compare(index), 0);
    EXPECT_TRUE(index.Equals(&index));
    EXPECT_EQ(TakeReports(), Reports());
    EXPECT_EQ(index.Compare(oid), 0);
    EXPECT_TRUE(index.Equals(&oid));
    EXPECT_EQ(TakeReports(), Reports({"TqSnmpOid", "TqSnmpOid"}));
}

TEST(TqSnmpOid, AssignmentTakesTheValuesIntoThePresentStorage) {
    TqSnmpOid oid = Counting(17);
    const unsigned int* const block = oid.values;
    oid.Assignment(TqSnmpOid("1.3"));
    EXPECT_EQ(ValuesOf(oid), Values({1, 3}));
    EXPECT_EQ(oid.values, block);
    EXPECT_EQ(oid.capacity, 32u);
    TqSnmpOid inside("9");
    inside.Assignment(Counting(16));
    EXPECT_TRUE(HeldInside(inside));
    EXPECT_EQ(ValuesOf(inside), CountingValues(16));
}

TEST(TqSnmpOid, AssignmentGrowsByMultiplesOfThePresentStorage) {
    TqSnmpOid oid("9");
    oid.Assignment(Counting(40));
    EXPECT_EQ(oid.capacity, 48u);
    EXPECT_EQ(ValuesOf(oid), CountingValues(40));
    oid.Assignment(Counting(50));
    EXPECT_EQ(oid.capacity, 96u);
    EXPECT_EQ(ValuesOf(oid), CountingValues(50));
    TqSnmpOid grown = Counting(17);
    grown.Assignment(Counting(64));
    EXPECT_EQ(grown.capacity, 64u);
}

TEST(TqSnmpOid, AssignmentReportsAnotherTypeAndGoesOn) {
    TqSnmpOid oid("9");
    oid.TypeId();
    oid.Assignment(Index("1.3"));
    EXPECT_EQ(TakeReports(), Reports({"TqSnmpOid"}));
    EXPECT_EQ(ValuesOf(oid), Values({1, 3}));
}

TEST(TqSnmpOid, AssignmentComparesWithTheIdOfTheClass) {
    Index index("9");
    index.Assignment(TqSnmpOid("1.3"));
    EXPECT_EQ(TakeReports(), Reports());
    index.Assignment(Index("1.4"));
    EXPECT_EQ(TakeReports(), Reports({"TqSnmpOid"}));
    EXPECT_EQ(ValuesOf(index), Values({1, 4}));
}

// Counts what it is assigned.
class Watched : public TqSnmpOid {
public:
    using TqSnmpOid::TqSnmpOid;
    using TqSnmpOid::operator=;
    void Assignment(const TqDataType& other) override {
        ++assignments;
        TqSnmpOid::Assignment(other);
    }
    int assignments = 0;
};

TEST(TqSnmpOid, AssignmentOperatorCallsTheVirtualAssignment) {
    Watched oid("9");
    TqSnmpOid& plain = oid;
    EXPECT_EQ(&(plain = TqSnmpOid("1.3")), &oid);
    EXPECT_EQ(oid.assignments, 1);
    EXPECT_EQ(ValuesOf(oid), Values({1, 3}));
}

TEST(TqSnmpOid, AssignedToItselfStaysAsItIs) {
    TqSnmpOid oid = Counting(17);
    TqSnmpOid& same = oid;
    oid = same;
    EXPECT_EQ(ValuesOf(oid), CountingValues(17));
    EXPECT_EQ(oid.capacity, 32u);
}

TEST(TqSnmpOid, RandomIdentifiersBelow31BitsRoundTripThroughText) {
    Random random(1);
    for (int i = 0; i < 10000; ++i) {
        TqSnmpOid oid("");
        for (int n = i % 40; n > 0; --n) {
            oid.Append(random.Number() >> (1 + n % 31));
        }
        const TqSnmpOid back(TextOf(oid).c_str());
        ASSERT_TRUE(back.Equals(&oid)) << TextOf(oid);
    }
}

}  // namespace
