#include "TqString.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <cstdio>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "LastPage.h"
#include "Reports.h"
#include "SystemCalls.h"
#include "TqBuffer.h"
#include "TqNumber.h"
#include "Values.h"

namespace {

std::string Repeated(unsigned int count, char c) {
    return std::string(count, c);
}

// A string that counts, and can turn, the calls that must go through the virtual table.
class Watched : public TqString {
public:
    using TqString::TqString;
    using TqString::operator=;

    void Clear() override {
        ++clears;
        TqString::Clear();
    }
    void Assignment(const TqDataType& other) override {
        ++assignments;
        TqString::Assignment(other);
    }
    unsigned int Length() const override { return TqString::Length() + lengthError; }
    bool IsEmpty() const override { return saysEmpty || TqString::IsEmpty(); }

    int clears = 0;
    int assignments = 0;
    unsigned int lengthError = 0;
    bool saysEmpty = false;
};

// A string that an application made a type of its own.
class Word : public TqString {
public:
    using TqString::TqString;
    short TypeId() const override { return 77; }
};

// A string of `count` characters in its own first storage, `text` before its first NUL: what an
// item with a NUL in its payload, or a counted SetValue, leaves behind.
TqString WithNuls(const char* text, unsigned int count) {
    return TqString(text, count);
}

// Construction.

TEST(TqString, NullGivesTheEmptyString) {
    alignas(TqString) unsigned char room[sizeof(TqString)];
    std::memset(room, 0xA5, sizeof room);
    TqString* s = new (room) TqString(nullptr);
    EXPECT_EQ(Held(*s), HeldInside(""));
    EXPECT_EQ(std::string(s->internalData, sizeof s->internalData), Repeated(33, '\0'));
    s->~TqString();
}

TEST(TqString, DefaultIsTheEmptyString) {
    EXPECT_EQ(Held(TqString()), HeldInside(""));
}

TEST(TqString, ATextOfUpTo31CharactersIsHeldInside) {
    for (unsigned int count : {0u, 1u, 30u, 31u})
        EXPECT_EQ(Held(TqString(Letters(count).c_str())), HeldInside(Letters(count)));
}

TEST(TqString, ATextOf32CharactersOrMoreTakesABlock) {
    for (unsigned int count : {32u, 33u, 100u, 70000u}) {
        const TqString s(Letters(count).c_str());
        EXPECT_EQ(Held(s), HeldInBlock(count + 1, Letters(count)));
        EXPECT_EQ(std::string(s.internalData, sizeof s.internalData), Repeated(33, '\0'));
    }
}

TEST(TqString, CountedConstructionIsSetValue) {
    EXPECT_EQ(Held(TqString("abcdef", 3)), HeldInside("abc"));
    EXPECT_EQ(Held(TqString("ab", 5)), HeldInside(Exactly("ab\0\0\0")));
    EXPECT_EQ(Held(TqString(Letters(40).c_str(), 32)), HeldInside(Letters(32)));
    EXPECT_EQ(Held(TqString(Letters(40).c_str(), 33)), HeldInBlock(34, Letters(33)));
    EXPECT_EQ(Held(TqString("abc", 0)), HeldInside(""));
    EXPECT_EQ(Held(TqString(nullptr, 3)), HeldInside(""));
}

TEST(TqString, ACopyIsSizedAsAConstruction) {
    const TqString inside(Letters(31).c_str());
    EXPECT_EQ(Held(TqString(inside)), HeldInside(Letters(31)));
    const TqString full(Letters(32).c_str(), 32);
    EXPECT_EQ(Held(full), HeldInside(Letters(32)));
    EXPECT_EQ(Held(TqString(full)), HeldInBlock(33, Letters(32)));
    TqString roomy(Letters(100).c_str());
    roomy = Letters(40).c_str();
    EXPECT_EQ(Held(TqString(roomy)), HeldInBlock(41, Letters(40)));
    roomy = "short";
    EXPECT_EQ(Held(TqString(roomy)), HeldInside("short"));
}

TEST(TqString, ACopyIsIndependent) {
    TqString original(Letters(50).c_str());
    const TqString copy(original);
    original.data[0] = '#';
    original.AppendChar('#');
    EXPECT_EQ(Counted(copy), Letters(50));
}

TEST(TqString, ACopyTakesTheCountAndTheTextUpToItsFirstNul) {
    TqString mixed("ab");
    mixed.AppendChar('\0');
    mixed.AppendChar('c');
    EXPECT_EQ(Held(TqString(mixed)), HeldInside(Exactly("ab\0\0")));
    const TqString inside(WithNuls("ab", 31)), full(WithNuls("ab", 32)), block(WithNuls("ab", 200));
    EXPECT_EQ(Held(TqString(inside)), HeldInside("ab" + Repeated(29, '\0')));
    EXPECT_EQ(Held(TqString(full)), HeldInBlock(33, "ab" + Repeated(30, '\0')));
    EXPECT_EQ(Held(TqString(block)), HeldInBlock(201, "ab" + Repeated(198, '\0')));
}

TEST(TqString, DestructionAcceptsAStringWithoutStorage) {
    TqString s;
    s.data = nullptr;
}

// Assigning a text.

TEST(TqString, AssigningNullClears) {
    Watched s(Letters(50).c_str());
    s = nullptr;
    EXPECT_EQ(s.clears, 1);
    EXPECT_EQ(Held(s), HeldInside(""));
}

TEST(TqString, AssigningATextDoesNotClear) {
    Watched s(Letters(50).c_str());
    s = "abc";
    s = Letters(90).c_str();
    EXPECT_EQ(s.clears, 0);
}

TEST(TqString, AShorterTextStaysInTheBlock) {
    TqString s(Letters(100).c_str());
    const char* block = s.data;
    s = "abc";
    EXPECT_EQ(Held(s), HeldInBlock(101, "abc"));
    EXPECT_EQ(s.data, block);
    s = Letters(100).c_str();
    EXPECT_EQ(Held(s), HeldInBlock(101, Letters(100)));
    EXPECT_EQ(s.data, block);
}

TEST(TqString, ATextAsLongAsTheCapacityTakesANewBlock) {
    TqString s;
    s = Letters(31).c_str();
    EXPECT_EQ(Held(s), HeldInside(Letters(31)));
    s = Letters(32).c_str();
    EXPECT_EQ(Held(s), HeldInBlock(33, Letters(32)));
    s = Letters(33).c_str();
    EXPECT_EQ(Held(s), HeldInBlock(34, Letters(33)));
}

TEST(TqString, AssigningLeavesNothingOfALongerText) {
    TqString s("abcdef");
    s = "x";
    EXPECT_EQ(std::string(s.data, 7), Exactly("x\0\0\0\0\0\0"));
}

TEST(TqString, AssigningReturnsTheString) {
    TqString s;
    EXPECT_EQ(&(s = "abc"), &s);
    EXPECT_EQ(&(s = nullptr), &s);
    EXPECT_EQ(&(s = TqString("abc")), &s);
}

TEST(TqString, FromStringIsAssigning) {
    Watched s(Letters(40).c_str());
    s.FromString("abc");
    EXPECT_EQ(Held(s), HeldInBlock(41, "abc"));
    s.FromString(nullptr);
    EXPECT_EQ(s.clears, 1);
    EXPECT_EQ(Held(s), HeldInside(""));
}

// SetValue.

TEST(TqString, SetValueHoldsUpTo32CharactersInside) {
    for (unsigned int count : {1u, 31u, 32u}) {
        TqString s(Letters(60).c_str());
        s.SetValue(Letters(70).c_str(), count);
        EXPECT_EQ(Held(s), HeldInside(Letters(count)));
    }
}

TEST(TqString, SetValueTakesABlockFor33CharactersOrMore) {
    for (unsigned int count : {33u, 34u, 70u}) {
        TqString s;
        s.SetValue(Letters(70).c_str(), count);
        EXPECT_EQ(Held(s), HeldInBlock(count + 1, Letters(count)));
    }
}

TEST(TqString, SetValueClearsFirst) {
    Watched s(Letters(50).c_str());
    s.SetValue("abc", 3);
    EXPECT_EQ(s.clears, 1);
    s.SetValue(nullptr, 3);
    EXPECT_EQ(s.clears, 2);
    s.SetValue("abc", 0);
    EXPECT_EQ(s.clears, 3);
}

TEST(TqString, SetValueOfNothingEmpties) {
    TqString s(Letters(50).c_str());
    s.SetValue(nullptr, 3);
    EXPECT_EQ(Held(s), HeldInside(""));
    s = Letters(50).c_str();
    s.SetValue("abc", 0);
    EXPECT_EQ(Held(s), HeldInside(""));
}

TEST(TqString, SetValueFillsUpWithNulsAndCountsThem) {
    TqString s;
    s.SetValue("ab", 5);
    EXPECT_EQ(s.length, 5u);
    EXPECT_EQ(Held(s), HeldInside(Exactly("ab\0\0\0")));
    s.SetValue("ab\0cd", 5);
    EXPECT_EQ(Held(s), HeldInside(Exactly("ab\0\0\0")));
    s.SetValue("ab", 40);
    EXPECT_EQ(Held(s), HeldInBlock(41, "ab" + Repeated(38, '\0')));
}

TEST(TqString, SetValueReadsNothingBehindTheCountOrTheText) {
    const std::unique_ptr<char[]> noNul(new char[3]{'a', 'b', 'c'});
    TqString s;
    s.SetValue(noNul.get(), 3);
    EXPECT_EQ(Held(s), HeldInside("abc"));
    const std::unique_ptr<char[]> shortText(new char[3]{'a', 'b', '\0'});
    s.SetValue(shortText.get(), 100);
    EXPECT_EQ(Held(s), HeldInBlock(101, "ab" + Repeated(98, '\0')));
}

TEST(TqString, SetValueNeverTouchesWhatLiesBehindTheText) {
    const LastPage page;
    for (unsigned int length = 0; length < 32; ++length) {
        char* const text = page.End() - length - 1;
        std::memset(text, 'x', length);
        for (const unsigned int count : {length, length + 1, 32u, 100u}) {
            TqString s;
            s.SetValue(text, count);
            EXPECT_EQ(std::strlen(s.data), length) << count;
        }
    }
}

// Assignment.

TEST(TqString, AssignmentKeepsTheStorageThatIsLargeEnough) {
    TqString s(Letters(100).c_str());
    const char* block = s.data;
    s.Assignment(TqString("abc"));
    EXPECT_EQ(Held(s), HeldInBlock(101, "abc"));
    s.Assignment(TqString(Letters(100).c_str()));
    EXPECT_EQ(Held(s), HeldInBlock(101, Letters(100)));
    EXPECT_EQ(s.data, block);
}

TEST(TqString, AssignmentTakesABlockForALongerText) {
    TqString s;
    s.Assignment(TqString(Letters(32).c_str(), 32));
    EXPECT_EQ(Held(s), HeldInBlock(33, Letters(32)));
    s.Assignment(TqString(Letters(33).c_str()));
    EXPECT_EQ(Held(s), HeldInBlock(34, Letters(33)));
}

TEST(TqString, AssignmentTakesTheCountAndTheTextUpToItsFirstNul) {
    TqString s(Letters(100).c_str());
    s.Assignment(WithNuls("ab", 40));
    EXPECT_EQ(Held(s), HeldInBlock(101, "ab" + Repeated(38, '\0')));
    s.Assignment(WithNuls("ab", 200));
    EXPECT_EQ(Held(s), HeldInBlock(201, "ab" + Repeated(198, '\0')));
    TqString inside("abcdefgh");
    inside.Assignment(WithNuls("xy", 5));
    EXPECT_EQ(Held(inside), HeldInside(Exactly("xy\0\0\0")));
}

TEST(TqString, AssignmentDoesNotCheckTheType) {
    TqString s;
    s.Assignment(Word("abc"));
    EXPECT_EQ(Held(s), HeldInside("abc"));
}

TEST(TqString, AssigningAStringIsAssignment) {
    TqString s(Letters(100).c_str());
    s = TqString("abc");
    EXPECT_EQ(Held(s), HeldInBlock(101, "abc"));
    Watched watched;
    TqString& asString = watched;
    asString = s;
    EXPECT_EQ(watched.assignments, 1);
    EXPECT_EQ(Held(watched), HeldInside("abc"));
}

// Arguments that lie in the string itself.

TEST(TqString, AssigningAStringToItselfChangesNothing) {
    TqString inside("abc"), block(Letters(50).c_str()), nuls(WithNuls("ab", 40));
    TqString* strings[] = {&inside, &block, &nuls};
    for (TqString* s : strings) {
        const std::string before = Held(*s);
        *s = static_cast<const TqString&>(*s);
        EXPECT_EQ(Held(*s), before);
        s->Assignment(*s);
        EXPECT_EQ(Held(*s), before);
        s->ToString(*s);
        EXPECT_EQ(Held(*s), before);
    }
}

TEST(TqString, AFullInsideStringAssignedToItselfMovesOut) {
    TqString s(Letters(32).c_str(), 32);
    s.Assignment(s);
    EXPECT_EQ(Held(s), HeldInBlock(33, Letters(32)));
    TqString t(Letters(32).c_str(), 32);
    t = t.data;
    EXPECT_EQ(Held(t), HeldInBlock(33, Letters(32)));
}

TEST(TqString, APartOfTheStringCanBeAssigned) {
    TqString inside("abcdef");
    inside = inside.data + 3;
    EXPECT_EQ(Held(inside), HeldInside("def"));
    TqString block(Letters(60).c_str());
    block = block.data + 3;
    EXPECT_EQ(Held(block), HeldInBlock(61, Letters(60).substr(3)));
    block.FromString(block.data + 10);
    EXPECT_EQ(Held(block), HeldInBlock(61, Letters(60).substr(13)));
    block = block.data;
    EXPECT_EQ(Held(block), HeldInBlock(61, Letters(60).substr(13)));
    block = block.data + block.length;
    EXPECT_EQ(Held(block), HeldInBlock(61, ""));
}

TEST(TqString, APartOfTheStringCanBeSet) {
    TqString inside("abcdef");
    inside.SetValue(inside.data + 2, 3);
    EXPECT_EQ(Held(inside), HeldInside("cde"));
    inside.SetValue(inside.data, 3);
    EXPECT_EQ(Held(inside), HeldInside("cde"));
    TqString block(Letters(60).c_str());
    block.SetValue(block.data + 5, 50);
    EXPECT_EQ(Held(block), HeldInBlock(51, Letters(60).substr(5, 50)));
    block.SetValue(block.data + 3, 4);
    EXPECT_EQ(Held(block), HeldInside("ijkl"));
    TqString full(Letters(32).c_str(), 32);
    full.SetValue(full.data, 40);
    EXPECT_EQ(Held(full), HeldInBlock(41, Letters(32) + Repeated(8, '\0')));
}

TEST(TqString, WhatIsLeftInsideOfAMovedStringCanBeSet) {
    TqString s(Letters(31).c_str());
    s.AppendChar('#');
    s.SetValue(s.internalData, 5);
    EXPECT_EQ(Held(s), HeldInside("abcde"));
    s = Letters(40).c_str();
    s = s.internalData;
    EXPECT_EQ(Held(s), HeldInBlock(41, "abcde"));
    s += s.internalData;
    EXPECT_EQ(Held(s), HeldInBlock(41, "abcdeabcde"));
}

TEST(TqString, TheStringCanBeAppendedToItself) {
    TqString s("abcdefgh");
    s += s.data;
    EXPECT_EQ(Held(s), HeldInside("abcdefghabcdefgh"));
    s += s.data;
    EXPECT_EQ(Held(s), HeldInBlock(48, "abcdefghabcdefghabcdefghabcdefgh"));
    s += s.data + 24;
    EXPECT_EQ(Held(s), HeldInBlock(48, "abcdefghabcdefghabcdefghabcdefghabcdefgh"));
    s += s.data + 32;
    EXPECT_EQ(Held(s), HeldInBlock(64, "abcdefghabcdefghabcdefghabcdefghabcdefghabcdefgh"));
    s += s.data;
    EXPECT_EQ(s.capacity, 112u);
    EXPECT_EQ(Counted(s).substr(90), "cdefgh");
    s += s.data + s.length;
    EXPECT_EQ(s.length, 96u);
}

TEST(TqString, AppendingTheStringToItselfSurvivesEveryMoveOfTheBlock) {
    TqString s("x");
    for (unsigned int length = 1; length < 70000; length *= 2) {
        EXPECT_EQ(Counted(s), Repeated(length, 'x'));
        s += s.data;
    }
}

TEST(TqString, TheStringPlusItself) {
    const TqString s("ab");
    EXPECT_EQ(Held(s + s.data), HeldInside("abab"));
}

// Emptying.

TEST(TqString, GivesEveryBlockBack) {
    const char text[] = "A text of more characters than the object itself has room for";
    const int blocks = LiveBlocks();
    {
        TqString string("a");
        string = text;
        string.AppendChar('#');
        string += text;
        string.SetValue(string.data + 1, 40);
        string.Assignment(TqString(text) + text);
        string.Clear();
        string.FromString(text);
    }
    EXPECT_EQ(LiveBlocks(), blocks);
}

TEST(TqString, ClearGivesTheBlockBack) {
    TqString s(Letters(100).c_str());
    s.Clear();
    EXPECT_EQ(Held(s), HeldInside(""));
    s = "abc";
    s.Clear();
    EXPECT_EQ(Held(s), HeldInside(""));
    s.Clear();
    EXPECT_EQ(Held(s), HeldInside(""));
}

TEST(TqString, FreeIsClear) {
    Watched s(Letters(100).c_str());
    s.Free();
    EXPECT_EQ(s.clears, 1);
    EXPECT_EQ(Held(s), HeldInside(""));
}

TEST(TqString, EmptyKeepsTheStorage) {
    Watched s(Letters(100).c_str());
    const char* block = s.data;
    s.Empty();
    EXPECT_EQ(Held(s), HeldInBlock(101, ""));
    EXPECT_EQ(s.data, block);
    EXPECT_EQ(s.clears, 0);
    Watched inside("abc");
    inside.Empty();
    EXPECT_EQ(Held(inside), HeldInside(""));
}

TEST(TqString, IsEmptyGoesByTheCountedLength) {
    EXPECT_TRUE(TqString().IsEmpty());
    EXPECT_FALSE(TqString().IsNotEmpty());
    const TqString oneNul("", 1);
    EXPECT_FALSE(oneNul.IsEmpty());
    EXPECT_TRUE(oneNul.IsNotEmpty());
}

TEST(TqString, IsNotEmptyIsTheNegationOfTheTypesOwnIsEmpty) {
    Watched s("abc");
    EXPECT_TRUE(s.IsNotEmpty());
    s.saysEmpty = true;
    EXPECT_FALSE(s.IsNotEmpty());
}

TEST(TqString, LengthIsTheCountedLength) {
    EXPECT_EQ(TqString().Length(), 0u);
    EXPECT_EQ(TqString(Letters(100).c_str()).Length(), 100u);
    EXPECT_EQ(WithNuls("ab", 5).Length(), 5u);
}

// Appending.

TEST(TqString, AppendCharStaysInsideUpTo31Characters) {
    TqString s(Letters(30).c_str());
    s.AppendChar('#');
    EXPECT_EQ(Held(s), HeldInside(Letters(30) + "#"));
}

TEST(TqString, AppendCharMovesOutAt32Characters) {
    TqString s(Letters(31).c_str());
    s.AppendChar('#');
    EXPECT_EQ(Held(s), HeldInBlock(48, Letters(31) + "#"));
}

TEST(TqString, AppendCharMovesAFullInsideStringOut) {
    TqString s(Letters(32).c_str(), 32);
    s.AppendChar('#');
    EXPECT_EQ(Held(s), HeldInBlock(48, Letters(32) + "#"));
}

TEST(TqString, MovingOutLeavesTheInsideAsItWas) {
    TqString s(Letters(31).c_str());
    s.AppendChar('#');
    EXPECT_EQ(std::string(s.internalData, sizeof s.internalData), Letters(31) + Exactly("\0\0"));
}

TEST(TqString, ABlockGrowsWhenTheNewLengthReachesTheCapacity) {
    struct {
        unsigned int length, capacityAfter;
    } const cases[] = {{32, 48}, {46, 48}, {47, 64}, {48, 64}, {62, 64}, {63, 80}, {64, 80}};
    for (const auto& c : cases) {
        TqString s(Letters(c.length).c_str());
        s.AppendChar('#');
        EXPECT_EQ(Held(s), HeldInBlock(c.capacityAfter, Letters(c.length) + "#"));
    }
}

TEST(TqString, ABlockThatHasRoomStays) {
    TqString s(Letters(31).c_str());
    s.AppendChar('#');
    const char* block = s.data;
    for (unsigned int length = 33; length <= 47; ++length) {
        s.AppendChar('#');
        EXPECT_EQ(s.capacity, 48u);
        EXPECT_EQ(s.data, block);
    }
    s.AppendChar('#');
    EXPECT_EQ(Held(s), HeldInBlock(64, Letters(31) + Repeated(17, '#')));
}

TEST(TqString, EveryCharacterOfAGrowingStringIsKept) {
    TqString s;
    for (unsigned int length = 1; length <= 2000; ++length) {
        s.AppendChar(Letters(26)[(length - 1) % 26]);
        ASSERT_EQ(s.length, length);
        ASSERT_STREQ(s.data, Letters(length).c_str());
        if (length < 32) continue;
        ASSERT_EQ(s.capacity % 16, 0u);
        ASSERT_GT(s.capacity, length);
        ASSERT_LE(s.capacity, length + 16);
    }
    EXPECT_EQ(Held(s), HeldInBlock(2016, Letters(2000)));
}

TEST(TqString, AppendByteIsAppendCharForEveryByte) {
    TqString bytes, characters;
    std::string expected;
    for (unsigned int b = 1; b <= 256; ++b) {
        bytes.AppendByte(static_cast<unsigned char>(b));
        characters.AppendChar(static_cast<char>(b));
        expected += static_cast<char>(b);
    }
    EXPECT_EQ(Held(bytes), HeldInBlock(272, expected));
    EXPECT_EQ(Held(characters), HeldInBlock(272, expected));
}

TEST(TqString, AppendingGoesBehindTheCountedLength) {
    TqString s(WithNuls("ab", 5));
    s.AppendChar('c');
    EXPECT_EQ(Held(s), HeldInside(Exactly("ab\0\0\0c")));
    s += "de";
    EXPECT_EQ(Held(s), HeldInside(Exactly("ab\0\0\0cde")));
}

TEST(TqString, MovingOutTakesTheTextUpToItsFirstNul) {
    TqString s("ab");
    s.AppendChar('\0');
    s += Letters(28).c_str();
    EXPECT_EQ(Held(s), HeldInside(Exactly("ab\0") + Letters(28)));
    s.AppendChar('#');
    EXPECT_EQ(Held(s), HeldInBlock(48, "ab" + Repeated(29, '\0') + "#"));
}

TEST(TqString, AddingATextGrowsByTheSameRule) {
    struct {
        unsigned int length, added, capacity;
    } const cases[] = {{10, 21, 32}, {10, 22, 48}, {10, 37, 48}, {10, 38, 64},  {0, 32, 48},
                       {40, 1, 48},  {40, 7, 48},  {40, 8, 64},  {40, 600, 656}};
    for (const auto& c : cases) {
        TqString s(Letters(c.length).c_str());
        s += Repeated(c.added, '#').c_str();
        const std::string counted = Letters(c.length) + Repeated(c.added, '#');
        EXPECT_EQ(Held(s),
                  c.capacity == 32 ? HeldInside(counted) : HeldInBlock(c.capacity, counted));
    }
}

TEST(TqString, AddingTheEmptyTextChangesNothingButAFullStringMovesOut) {
    TqString s("abc");
    s += "";
    EXPECT_EQ(Held(s), HeldInside("abc"));
    TqString full(Letters(32).c_str(), 32);
    full += "";
    EXPECT_EQ(Held(full), HeldInBlock(48, Letters(32)));
}

TEST(TqString, AddingReturnsTheString) {
    TqString s("a");
    EXPECT_EQ(&(s += "b"), &s);
    EXPECT_EQ(Counted((s += "c") += "d"), "abcd");
}

TEST(TqString, PlusGivesANewString) {
    const TqString s("abc");
    const TqString sum = s + "def";
    EXPECT_EQ(Held(sum), HeldInside("abcdef"));
    EXPECT_EQ(Held(s), HeldInside("abc"));
    EXPECT_EQ(Held(TqString(Letters(31).c_str()) + "#"), HeldInBlock(48, Letters(31) + "#"));
    EXPECT_EQ(Held(TqString(Letters(50).c_str()) + ""), HeldInBlock(51, Letters(50)));
}

TEST(TqString, AppendCounterAppendsTheDigits) {
    struct {
        unsigned int value;
        const char* digits;
    } const cases[] = {{0, "0"},
                       {1, "1"},
                       {9, "9"},
                       {10, "10"},
                       {99, "99"},
                       {100, "100"},
                       {101, "101"},
                       {65535, "65535"},
                       {999999999, "999999999"},
                       {1000000000, "1000000000"},
                       {2147483648u, "2147483648"},
                       {4294967295u, "4294967295"}};
    for (const auto& c : cases) {
        TqString s("n=");
        s.AppendCounter(c.value);
        EXPECT_EQ(Held(s), HeldInside(Exactly("n=") + c.digits));
    }
}

TEST(TqString, AppendCounterTellsEveryPowerOfTenFromTheNumberBelow) {
    for (unsigned int below = 9; below < 1000000000; below = below * 10 + 9) {
        TqString s;
        s.AppendCounter(below);
        s.AppendChar(' ');
        s.AppendCounter(below + 1);
        EXPECT_EQ(s.data, std::to_string(below) + " " + std::to_string(below + 1));
    }
}

TEST(TqString, AppendNumberAppendsTheDigitsWithAMinusSign) {
    struct {
        int value;
        const char* digits;
    } const cases[] = {{0, "0"},
                       {7, "7"},
                       {-1, "-1"},
                       {-9, "-9"},
                       {-10, "-10"},
                       {-45, "-45"},
                       {2147483647, "2147483647"},
                       {-2147483647, "-2147483647"}};
    for (const auto& c : cases) {
        TqString s("n=");
        s.AppendNumber(c.value);
        EXPECT_EQ(Held(s), HeldInside(Exactly("n=") + c.digits));
    }
}

TEST(TqString, AppendNumberOfTheLowestNumberIsMinusZero) {
    TqString s;
    s.AppendNumber(-2147483647 - 1);
    EXPECT_EQ(Held(s), HeldInside("-0"));
}

TEST(TqString, AppendingDigitsGrowsAsAppendingATextDoes) {
    TqString s(Letters(31).c_str());
    s.AppendCounter(4294967295u);
    EXPECT_EQ(Held(s), HeldInBlock(48, Letters(31) + "4294967295"));
    s.AppendNumber(-1234567);
    EXPECT_EQ(Held(s), HeldInBlock(64, Letters(31) + "4294967295-1234567"));
}

// AppendFloat.

std::string FloatText(float value, unsigned char precision) {
    TqString s;
    s.AppendFloat(value, precision);
    return Counted(s);
}

TEST(TqString, AppendFloatAppendsAsManyDecimalsAsAsked) {
    EXPECT_EQ(FloatText(2.5f, 2), "2.50");
    EXPECT_EQ(FloatText(-0.25f, 2), "-0.25");
    EXPECT_EQ(FloatText(0.0f, 1), "0.0");
    EXPECT_EQ(FloatText(-0.0f, 1), "-0.0");
    EXPECT_EQ(FloatText(3.0f, 0), "3");
    EXPECT_EQ(FloatText(1e10f, 2), "10000000000.00");
    EXPECT_EQ(FloatText(0.5f, 99), "0.5" + Repeated(98, '0'));
    TqString s("t=");
    s.AppendFloat(36.5f, 1);
    EXPECT_EQ(Held(s), HeldInside("t=36.5"));
}

TEST(TqString, AppendFloatWidensToDouble) {
    EXPECT_EQ(FloatText(0.1f, 20), "0.10000000149011611938");
}

TEST(TqString, AppendFloatRoundsAsTheSystemLibrary) {
    char expected[64];
    const float values[] = {2.5f, 0.5f, 1.5f, -2.5f, 0.125f, 0.375f, 9.99f};
    for (float value : values) {
        std::snprintf(expected, sizeof expected, "%0.0f", static_cast<double>(value));
        EXPECT_EQ(FloatText(value, 0), expected);
        std::snprintf(expected, sizeof expected, "%0.2f", static_cast<double>(value));
        EXPECT_EQ(FloatText(value, 2), expected);
    }
}

TEST(TqString, AppendFloatReportsAPrecisionAbove99AndGoesOn) {
    EXPECT_EQ(FloatText(1.5f, 99).size(), 101u);
    EXPECT_EQ(TakeReports(), Reports());
    EXPECT_EQ(FloatText(1.5f, 100), "1.5" + Repeated(99, '0'));
    EXPECT_EQ(TakeReports(), Reports({"TqString"}));
}

TEST(TqString, AppendFloatAppendsTheFirst127CharactersOfALongerResult) {
    EXPECT_EQ(FloatText(0.5f, 125), "0.5" + Repeated(124, '0'));
    EXPECT_EQ(FloatText(0.5f, 126), "0.5" + Repeated(124, '0'));
    EXPECT_EQ(FloatText(0.5f, 255), "0.5" + Repeated(124, '0'));
    EXPECT_EQ(TakeReports(), Reports({"TqString", "TqString", "TqString"}));
    EXPECT_EQ(FloatText(-FLT_MAX, 99).size(), 127u);
}

TEST(TqString, AppendFloatGrowsAsAppendCharDoes) {
    TqString s(Letters(31).c_str());
    s.AppendFloat(0.5f, 20);
    EXPECT_EQ(Held(s), HeldInBlock(64, Letters(31) + "0.5" + Repeated(19, '0')));
}

// Comparing.

int SignOf(int number) {
    return (number > 0) - (number < 0);
}

int CompareTexts(const char* a, const char* b) {
    return SignOf(TqString(a).Compare(TqString(b)));
}

TEST(TqString, CompareOrdersAsStrcmp) {
    EXPECT_EQ(CompareTexts("abc", "abc"), 0);
    EXPECT_EQ(CompareTexts("abc", "abd"), -1);
    EXPECT_EQ(CompareTexts("abd", "abc"), 1);
    EXPECT_EQ(CompareTexts("ab", "abc"), -1);
    EXPECT_EQ(CompareTexts("abc", "ab"), 1);
    EXPECT_EQ(CompareTexts("", ""), 0);
    EXPECT_EQ(CompareTexts("", "a"), -1);
}

TEST(TqString, CompareIsCaseSensitiveAndGoesByTheBytes) {
    EXPECT_EQ(CompareTexts("B", "a"), -1);
    EXPECT_EQ(CompareTexts("a", "B"), 1);
    EXPECT_EQ(CompareTexts("z", "\xE4"), -1);
    EXPECT_EQ(CompareTexts("\xFF", "\x7F"), 1);
}

TEST(TqString, CompareLooksAtTheTextAndEqualsAtTheLengthToo) {
    const TqString text("ab"), counted(WithNuls("ab", 4));
    EXPECT_EQ(text.Compare(counted), 0);
    EXPECT_FALSE(text.Equals(&counted));
    EXPECT_TRUE(text.DoesNotEqual(&counted));
}

TEST(TqString, EqualsComparesLengthAndText) {
    const TqString abc("abc"), abd("abd"), ab("ab"), upper("ABC"), again("abc");
    EXPECT_TRUE(abc.Equals(&abc));
    EXPECT_TRUE(abc.Equals(&again));
    EXPECT_FALSE(abc.Equals(&abd));
    EXPECT_FALSE(abc.Equals(&ab));
    EXPECT_FALSE(ab.Equals(&abc));
    EXPECT_FALSE(abc.Equals(&upper));
    EXPECT_FALSE(abc.DoesNotEqual(&again));
    EXPECT_TRUE(abc.DoesNotEqual(&abd));
}

TEST(TqString, EqualsDoesNotLookBehindAFirstNul) {
    TqString a("ab"), b("ab");
    for (TqString* s : {&a, &b}) s->AppendChar('\0');
    a.AppendChar('x');
    b.AppendChar('y');
    EXPECT_TRUE(a.Equals(&b));
}

TEST(TqString, EqualsDoesNotCareWhereTheTextIsHeld) {
    TqString block(Letters(60).c_str());
    block = "abc";
    const TqString inside("abc");
    EXPECT_TRUE(block.Equals(&inside));
    EXPECT_TRUE(inside.Equals(&block));
    EXPECT_EQ(inside.Compare(block), 0);
}

TEST(TqString, NullEqualsNothingAndIsNotReported) {
    EXPECT_FALSE(TqString().Equals(nullptr));
    EXPECT_TRUE(TqString().DoesNotEqual(nullptr));
    EXPECT_EQ(TakeReports(), Reports());
}

TEST(TqString, CompareReportsAnotherTypeThanAStringAndGoesOn) {
    const TqString s("abc");
    const Word same("abc"), greater("abd");
    EXPECT_EQ(s.Compare(same), 0);
    EXPECT_EQ(TakeReports(), Reports({"TqString"}));
    EXPECT_LT(s.Compare(greater), 0);
    EXPECT_EQ(TakeReports(), Reports({"TqString"}));
    EXPECT_EQ(same.Compare(same), 0);
    EXPECT_EQ(TakeReports(), Reports({"TqString"}));
    EXPECT_EQ(same.Compare(s), 0);
    EXPECT_EQ(TakeReports(), Reports());
}

TEST(TqString, EqualsReportsAnotherTypeThanItsOwnAndGoesOn) {
    const TqString s("abc");
    const Word same("abc"), other("abd");
    EXPECT_TRUE(s.Equals(&same));
    EXPECT_EQ(TakeReports(), Reports({"TqString"}));
    EXPECT_FALSE(s.Equals(&other));
    EXPECT_EQ(TakeReports(), Reports({"TqString"}));
    EXPECT_TRUE(same.Equals(&s));
    EXPECT_EQ(TakeReports(), Reports({"TqString"}));
    EXPECT_FALSE(same.DoesNotEqual(&same));
    EXPECT_EQ(TakeReports(), Reports());
}

TEST(TqString, StringICompareIgnoresCase) {
    EXPECT_EQ(TqString::StringICompare("ab", "AB"), 0);
    EXPECT_EQ(TqString::StringICompare("aBcXyZ", "AbCxYz"), 0);
    EXPECT_EQ(TqString::StringICompare("abc", "ABD"), -1);
    EXPECT_EQ(TqString::StringICompare("ABD", "abc"), 1);
}

TEST(TqString, StringICompareGivesExactlyOneOfThreeResults) {
    EXPECT_EQ(TqString::StringICompare("a", "z"), -1);
    EXPECT_EQ(TqString::StringICompare("z", "a"), 1);
    EXPECT_EQ(TqString::StringICompare("az", "ba"), -1);
}

TEST(TqString, StringICompareTakesTheShorterTextAsSmaller) {
    EXPECT_EQ(TqString::StringICompare("", ""), 0);
    EXPECT_EQ(TqString::StringICompare("", "a"), -1);
    EXPECT_EQ(TqString::StringICompare("a", ""), 1);
    EXPECT_EQ(TqString::StringICompare("ab", "abc"), -1);
    EXPECT_EQ(TqString::StringICompare("abc", "ab"), 1);
}

TEST(TqString, StringICompareLowersTheCharacters) {
    // '_' stands between the upper and the lower case letters.
    EXPECT_EQ(TqString::StringICompare("_", "A"), -1);
    EXPECT_EQ(TqString::StringICompare("A", "_"), 1);
    EXPECT_EQ(TqString::StringICompare("@", "`"), -1);
    EXPECT_EQ(TqString::StringICompare("[", "{"), -1);
}

TEST(TqString, StringICompareTakesBytesAsUnsigned) {
    EXPECT_EQ(TqString::StringICompare("\xE4", "z"), 1);
    EXPECT_EQ(TqString::StringICompare("\x80", "\xFF"), -1);
    EXPECT_EQ(TqString::StringICompare("\xFF", ""), 1);
    EXPECT_EQ(TqString::StringICompare("\xFF", "\xFF"), 0);
}

TEST(TqString, AppendCharEndsTheTextWhereALongerOneStood) {
    TqString cleared("abcdef");
    cleared.Clear();
    cleared.AppendChar('x');
    EXPECT_STREQ(cleared.data, "x");
    TqString set("abcdef");
    set.SetValue("12", 2);
    set.AppendChar('3');
    EXPECT_STREQ(set.data, "123");
    TqString appended("abcdef");
    appended.Clear();
    for (const char c : {'1', '2', '3'}) {
        appended.AppendByte(static_cast<unsigned char>(c));
        EXPECT_EQ(std::strlen(appended.data), appended.length);
    }
}

// Trimming.

TEST(TqString, TrimLeadingRemovesLeadingWhiteSpace) {
    TqString s(" \t\n\v\f\rab c ");
    EXPECT_EQ(&s.TrimLeadingWS(), &s);
    EXPECT_EQ(Held(s), HeldInside("ab c "));
}

TEST(TqString, TrimLeadingOfNothingButWhiteSpaceEmpties) {
    TqString s("  \t ");
    s.TrimLeadingWS();
    EXPECT_EQ(Held(s), HeldInside(""));
}

TEST(TqString, TrimLeadingWithNothingToRemoveChangesNothing) {
    for (const char* text : {"", "ab  ", "\xA0 x"}) {
        Watched s(text);
        s.TrimLeadingWS();
        EXPECT_EQ(s.clears, 0);
        EXPECT_EQ(Held(s), HeldInside(text));
    }
}

TEST(TqString, TrimLeadingSetsTheRest) {
    Watched s("  ab");
    s.TrimLeadingWS();
    EXPECT_EQ(s.clears, 1);
    EXPECT_EQ(Held(s), HeldInside("ab"));
}

TEST(TqString, TrimLeadingOfAFullInsideString) {
    TqString s((" " + Letters(31)).c_str(), 32);
    s.TrimLeadingWS();
    EXPECT_EQ(Held(s), HeldInside(Letters(31)));
    TqString blanks(Repeated(32, ' ').c_str(), 32);
    blanks.TrimLeadingWS();
    EXPECT_EQ(Held(blanks), HeldInside(""));
}

TEST(TqString, TrimLeadingKeepsCountedNuls) {
    TqString s("  ab", 6);
    s.TrimLeadingWS();
    EXPECT_EQ(Held(s), HeldInside(Exactly("ab\0\0")));
}

TEST(TqString, TrimTrailingTurnsWhiteSpaceIntoNulsInsideTheLength) {
    TqString s("ab  ");
    EXPECT_EQ(&s.TrimTrailingWS(), &s);
    EXPECT_EQ(Held(s), HeldInside(Exactly("ab\0\0")));
    EXPECT_EQ(s.Length(), 4u);
    EXPECT_STREQ(s.data, "ab");
    const TqString ab("ab");
    EXPECT_FALSE(s.Equals(&ab));
    EXPECT_EQ(ItemOf(s), Exactly("00004ab\0\0"));
}

TEST(TqString, TrimTrailingKnowsEveryWhiteSpace) {
    TqString s("a b \t\n\v\f\r");
    s.TrimTrailingWS();
    EXPECT_EQ(Held(s), HeldInside("a b" + Repeated(6, '\0')));
}

TEST(TqString, TrimTrailingWithNothingToRemoveChangesNothing) {
    for (const char* text : {"", "  ab", "ab\xA0"}) {
        TqString s(text);
        s.TrimTrailingWS();
        EXPECT_EQ(Held(s), HeldInside(text));
    }
    TqString nuls("a ", 4);
    nuls.TrimTrailingWS();
    EXPECT_EQ(Held(nuls), HeldInside(Exactly("a \0\0")));
}

TEST(TqString, TrimTrailingOfAFullInsideString) {
    TqString s((Letters(31) + " ").c_str(), 32);
    s.TrimTrailingWS();
    EXPECT_EQ(Held(s), HeldInside(Letters(31) + Exactly("\0")));
    TqString blanks(Repeated(32, ' ').c_str(), 32);
    blanks.TrimTrailingWS();
    EXPECT_EQ(Held(blanks), HeldInside(Repeated(32, '\0')));
}

TEST(TqString, TrimsCanBeChained) {
    TqString s("  poll On\r\n");
    s.TrimLeadingWS().TrimTrailingWS();
    EXPECT_STREQ(s.data, "poll On");
    EXPECT_EQ(s.Length(), 9u);
}

// Trims read the internal area whatever `data` points at. What stands there once a string has moved
// out is what it held when it did.

TEST(TqString, TrimLeadingOfAMovedStringWorksOnTheInsideArea) {
    TqString s(("  " + Letters(29)).c_str());
    s.AppendChar('#');
    s.TrimLeadingWS();
    EXPECT_EQ(Held(s), HeldInside(Letters(29) + Exactly("\0")));
}

TEST(TqString, TrimTrailingOfAMovedStringWorksOnTheInsideArea) {
    const std::string text = Letters(29) + "  ";
    TqString s(text.c_str());
    s.AppendChar('#');
    s = text.c_str();
    s.TrimTrailingWS();
    EXPECT_EQ(std::string(s.internalData, 31), Letters(29) + Exactly("\0\0"));
    EXPECT_EQ(Held(s), HeldInBlock(48, text));
}

TEST(TqString, TrimsOfAnEmptyStringDoNothing) {
    TqString s(Repeated(31, ' ').c_str());
    s.AppendChar(' ');
    s.Empty();
    s.TrimLeadingWS().TrimTrailingWS();
    EXPECT_EQ(Held(s), HeldInBlock(48, ""));
    EXPECT_EQ(std::string(s.internalData, 31), Repeated(31, ' '));
}

TEST(TqString, TrimsOfALongStringFindNothing) {
    const std::string text = "  " + Letters(60) + "  ";
    TqString s(text.c_str());
    s.TrimLeadingWS();
    s.TrimTrailingWS();
    EXPECT_EQ(Held(s), HeldInBlock(65, text));
}

TEST(TqString, TrimsTouchNothingOutsideTheObject) {
    const std::unique_ptr<TqString> s(new TqString(Letters(100).c_str()));
    std::memset(s->internalData, ' ', sizeof s->internalData);
    s->TrimTrailingWS();
    EXPECT_EQ(Held(*s), HeldInBlock(101, Letters(100)));
    s->TrimLeadingWS();
    EXPECT_EQ(s->data[s->length], '\0');
}

TEST(TqString, TrimLeadingStaysInsideTheArea) {
    const LastPage page;
    char* const place = page.End() - sizeof(TqString);
    std::memset(place, ' ', sizeof(TqString));
    TqString* const s = new (place) TqString(Letters(100).c_str());
    char* const behind = s->internalData + sizeof s->internalData;
    std::memset(s->internalData, ' ', sizeof s->internalData);
    s->TrimLeadingWS();
    EXPECT_EQ(std::string(behind, page.End()).find_first_not_of(' '), std::string::npos);
    s->~TqString();
}

// The byte behind the array is a derived class's own where that fits into the padding.
struct Followed : TqString {
    char behind = ' ';
};

TEST(TqString, TrimTrailingStaysInsideTheArray) {
    for (unsigned int length = 31; length < 40; ++length) {
        SCOPED_TRACE(length);
        Followed s;
        while (s.Length() < length) s.AppendChar(' ');
        std::memset(s.internalData, ' ', sizeof s.internalData);
        s.TrimTrailingWS();
        EXPECT_EQ(s.behind, ' ');
        const unsigned int trimmed = length <= 33 ? length : 0;
        EXPECT_EQ(std::string(s.internalData, 33),
                  std::string(trimmed, '\0') + Repeated(33 - trimmed, ' '));
    }
}

// Fields are public, and programs set them.

TEST(TqString, ALengthSetBeyondTheStorageReachesNothingOutsideIt) {
    Followed inside;
    inside.FromString("abc");
    inside.length = 60;
    inside.Empty();
    EXPECT_EQ(Held(inside), HeldInside(""));
    inside.length = 60;
    inside.FromString("xy");
    EXPECT_EQ(Held(inside), HeldInside("xy"));
    EXPECT_EQ(inside.behind, ' ');

    TqString block(Letters(36).c_str());
    block.length = 90;
    EXPECT_EQ(Held(TqString(block)), HeldInBlock(91, Letters(36) + Repeated(54, '\0')));
    TqString assigned;
    assigned.Assignment(block);
    EXPECT_EQ(Held(assigned), HeldInBlock(91, Letters(36) + Repeated(54, '\0')));
    block.Empty();
    EXPECT_EQ(Held(block), HeldInBlock(37, ""));
}

TEST(TqString, ACopyReadsNothingBehindAStorageThatTheLengthExceeds) {
    const LastPage page;
    TqString s;
    s.data = page.End() - sizeof "abc";
    std::memcpy(s.data, "abc", sizeof "abc");
    s.capacity = sizeof "abc";
    s.length = 60;
    EXPECT_EQ(Held(TqString(s)), HeldInBlock(61, "abc" + Repeated(57, '\0')));
    s.data = s.internalData;
}

TEST(TqString, ACopyReadsNothingBehindAStorageThatTheTextFills) {
    const LastPage page;
    const std::string text = Letters(40);
    TqString s;
    s.data = page.End() - text.size();
    std::memcpy(s.data, text.data(), text.size());
    s.capacity = 40;
    s.length = 40;
    EXPECT_EQ(Held(TqString(s)), HeldInBlock(41, text));
    s.data = s.internalData;
}

TEST(TqString, ACopyOfALongStringShortenedByItsLengthEndsThere) {
    TqString s(Letters(60).c_str());
    s.length = 50;
    EXPECT_EQ(Held(TqString(s)), HeldInBlock(51, Letters(60).substr(0, 50)));
}

TEST(TqString, AStringShortenedByItsLengthIsAddedToItself) {
    TqString s("abcdefgh");
    s.length = 2;
    s += s.data;
    EXPECT_EQ(Held(s), HeldInside("ababcdefgh"));
}

// Conversions.

TEST(TqString, ToStringAssignsTheStringToTheOther) {
    const TqString s("abc");
    Watched out(Letters(40).c_str());
    s.ToString(out);
    EXPECT_EQ(out.assignments, 1);
    EXPECT_EQ(Held(out), HeldInBlock(41, "abc"));
}

TEST(TqString, ToBufferAppendsTheItem) {
    EXPECT_EQ(ItemOf(TqString("hello")), "00005hello");
    EXPECT_EQ(ItemOf(TqString()), "00000");
    EXPECT_EQ(ItemOf(TqString("a\0b", 3)), Exactly("00003a\0\0"));
    EXPECT_EQ(ItemOf(TqString(Letters(123).c_str())), "00123" + Letters(123));
    TqBuffer buffer = BufferOf("before");
    TqString("x").ToBuffer(buffer);
    EXPECT_EQ(Bytes(buffer), "before00001x");
}

// The digits are written before the buffer asks for the bytes, and it moves to a block for both.
TEST(TqString, ToBufferOfMissingCharactersWritesTheLengthAloneAndIsReported) {
    for (unsigned int length : {3u, 0u, 0xFFFFFFFFu, 0xFFFFFFFBu}) {
        TqString string;
        string.data = nullptr;
        string.length = length;
        TqBuffer buffer = BufferOf(std::string(62, 'x'));
        string.ToBuffer(buffer);
        EXPECT_EQ(TakeReports(), Reports({"TqBuffer"}));
        ASSERT_EQ(buffer.length, 67u);
        const std::string digits = std::to_string(length);
        const std::string stated =
            std::string(digits.size() < 5 ? 5 - digits.size() : 0, '0') + digits.substr(0, 5);
        EXPECT_EQ(Bytes(buffer).substr(62), stated);
        EXPECT_EQ(buffer.capacity, length == 3 ? 70u : 67u);
    }
}

TEST(TqString, ToBufferStatesTheTypesOwnLengthAndWritesTheCountedCharacters) {
    Watched s("abc");
    s.lengthError = 9;
    EXPECT_EQ(ItemOf(s), "00012abc");
}

TEST(TqString, FromBufferTakesTheItemAndMovesOn) {
    TqBuffer buffer = BufferOf("00005hello00000000010");
    TqString s(Letters(50).c_str());
    s.FromBuffer(buffer);
    EXPECT_EQ(Held(s), HeldInside("hello"));
    EXPECT_EQ(buffer.readPosition, 10u);
    s.FromBuffer(buffer);
    EXPECT_EQ(Held(s), HeldInside(""));
    EXPECT_EQ(buffer.readPosition, 15u);
    s.FromBuffer(buffer);
    EXPECT_EQ(Held(s), HeldInside("0"));
    EXPECT_EQ(buffer.readPosition, 21u);
}

TEST(TqString, FromBufferSetsTheValue) {
    TqBuffer buffer = BufferOf("00032" + Letters(32) + "00033" + Letters(33));
    Watched s;
    s.FromBuffer(buffer);
    EXPECT_EQ(Held(s), HeldInside(Letters(32)));
    s.FromBuffer(buffer);
    EXPECT_EQ(Held(s), HeldInBlock(34, Letters(33)));
    EXPECT_EQ(s.clears, 2);
}

TEST(TqString, FromBufferTakesThePayloadUpToItsFirstNulAndCountsItAll) {
    TqBuffer buffer = BufferOf(Exactly("00005ab\0cd"));
    TqString s;
    s.FromBuffer(buffer);
    EXPECT_EQ(Held(s), HeldInside(Exactly("ab\0\0\0")));
    EXPECT_EQ(buffer.readPosition, 10u);
}

TEST(TqString, CloneIsACopy) {
    TqString s(Letters(100).c_str());
    s = Letters(40).c_str();
    const std::unique_ptr<TqDataType> clone(s.Clone());
    EXPECT_EQ(Held(static_cast<TqString&>(*clone)), HeldInBlock(41, Letters(40)));
    EXPECT_EQ(clone->TypeId(), 1);
}

TEST(TqString, AShorterTextLeavesNoCharacterOfTheLongerOneInside) {
    const std::string letters = "abcdefghijklmnopqrstuvwxyz01234";
    for (std::size_t before = 1; before <= letters.size(); ++before) {
        for (std::size_t after = 0; after < before; ++after) {
            TqString string(letters.substr(0, before).c_str());
            string = letters.substr(0, after).c_str();
            std::string area = letters.substr(0, after);
            area.resize(sizeof string.internalData);
            EXPECT_EQ(std::string(string.internalData, sizeof string.internalData), area);
        }
        TqString string(letters.substr(0, before).c_str());
        string.Empty();
        EXPECT_EQ(std::string(string.internalData, sizeof string.internalData),
                  std::string(sizeof string.internalData, '\0'));
    }
}

}  // namespace
