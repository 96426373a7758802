#include "Layout.h"

#include <gtest/gtest.h>

#include <type_traits>

#include "TqBoolean.h"
#include "TqBuffer.h"
#include "TqCounter.h"
#include "TqDataType.h"
#include "TqNumber.h"
#include "TqString.h"

// A program that was linked against an earlier library reads these fields and calls through these
// slots: what moves here breaks it.

namespace {

static_assert(sizeof(unsigned int) == 4 && sizeof(short) == 2 && sizeof(int) == 4, "");
static_assert(std::is_same<decltype(TqString::data), char*>::value, "");
static_assert(std::is_same<decltype(TqString::length), unsigned int>::value, "");
static_assert(std::is_same<decltype(TqString::capacity), unsigned int>::value, "");
static_assert(std::is_same<decltype(TqString::internalData), char[33]>::value, "");
static_assert(std::is_same<decltype(TqBuffer::length), unsigned int>::value, "");
static_assert(std::is_same<decltype(TqBuffer::capacity), unsigned int>::value, "");
static_assert(std::is_same<decltype(TqBuffer::readPosition), unsigned int>::value, "");
static_assert(std::is_same<decltype(TqBuffer::data), unsigned char*>::value, "");
static_assert(std::is_same<decltype(TqBuffer::internalData), unsigned char[64]>::value, "");
static_assert(std::is_same<decltype(TqNumber::value), int>::value, "");
static_assert(std::is_same<decltype(TqCounter::count), unsigned int>::value, "");
static_assert(std::is_same<decltype(TqBoolean::state), int>::value, "");
static_assert(std::is_base_of<TqNumber, TqCounter>::value, "");
static_assert(std::is_base_of<TqNumber, TqBoolean>::value, "");

TEST(Layout, FieldsOfAString) {
    const TqString s;
    const Offsets layout = LayoutOf(s, s.data, s.length, s.capacity, s.internalData);
    EXPECT_TRUE(StrictlyIncreasing(layout));
    EXPECT_EQ(layout, PerTarget({4, 8, 12, 16, 52}, {8, 16, 20, 24, 64}));
}

TEST(Layout, FieldsOfABuffer) {
    const TqBuffer b;
    const Offsets layout =
        LayoutOf(b, b.length, b.capacity, b.readPosition, b.data, b.internalData);
    EXPECT_TRUE(StrictlyIncreasing(layout));
    EXPECT_EQ(layout, PerTarget({4, 8, 12, 16, 20, 84}, {8, 12, 16, 24, 32, 96}));
}

TEST(Layout, FieldsOfANumber) {
    const TqNumber n;
    EXPECT_EQ(LayoutOf(n, n.value), PerTarget({4, 8}, {8, 16}));
}

TEST(Layout, FieldsOfACounter) {
    const TqCounter c;
    EXPECT_EQ(LayoutOf(c, c.value, c.count), PerTarget({4, 8, 12}, {8, 12, 16}));
}

TEST(Layout, FieldsOfABoolean) {
    const TqBoolean b;
    EXPECT_EQ(LayoutOf(b, b.value, b.state), PerTarget({4, 8, 12}, {8, 12, 16}));
}

// The slots that every value type shares, asked of the type itself: an operation that a type
// redeclares with another signature would stand elsewhere.
template <class T>
void ExpectTheSlotsOfAValue() {
    EXPECT_EQ(SlotOf(&T::TypeId), 2);
    EXPECT_EQ(SlotOf(&T::Clone), 3);
    EXPECT_EQ(SlotOf(&T::ToString), 4);
    EXPECT_EQ(SlotOf(&T::FromString), 5);
    EXPECT_EQ(SlotOf(&T::ToBuffer), 6);
    EXPECT_EQ(SlotOf(&T::FromBuffer), 7);
    EXPECT_EQ(SlotOf(&T::Compare), 8);
    EXPECT_EQ(SlotOf(&T::Equals), 9);
    EXPECT_EQ(SlotOf(&T::DoesNotEqual), 10);
    EXPECT_EQ(SlotOf(&T::Assignment), 11);
    // A member that a class does not redeclare has the type of the class that does.
    EXPECT_TRUE((std::is_same<decltype(&T::DoesNotEqual),
                              bool (TqDataType::*)(const TqDataType*) const>::value));
}

TEST(Layout, SlotsOfAValue) {
    ExpectTheSlotsOfAValue<TqDataType>();
    ExpectTheSlotsOfAValue<TqString>();
    ExpectTheSlotsOfAValue<TqBuffer>();
    ExpectTheSlotsOfAValue<TqNumber>();
    ExpectTheSlotsOfAValue<TqCounter>();
    ExpectTheSlotsOfAValue<TqBoolean>();
}

TEST(Layout, SlotsThatAStringAdds) {
    EXPECT_EQ(SlotOf(&TqString::Length), 12);
    EXPECT_EQ(SlotOf(&TqString::Free), 13);
    EXPECT_EQ(SlotOf(&TqString::Empty), 14);
    EXPECT_EQ(SlotOf(&TqString::IsEmpty), 15);
    EXPECT_EQ(SlotOf(&TqString::IsNotEmpty), 16);
    EXPECT_EQ(SlotOf(&TqString::Clear), 17);
}

TEST(Layout, SlotThatANumberAdds) {
    EXPECT_EQ(SlotOf(&TqNumber::operator int), 12);
    EXPECT_EQ(SlotOf(&TqCounter::operator int), 12);
    EXPECT_EQ(SlotOf(&TqBoolean::operator int), 12);
}

// Whatever a class derived from T adds gets the slot behind T's last.
template <class T>
class Derived : public T {
public:
    virtual void Next() {}
};

TEST(Layout, NoTypeHasFurtherSlots) {
    EXPECT_EQ(SlotOf(&Derived<TqString>::Next), 18);
    EXPECT_EQ(SlotOf(&Derived<TqBuffer>::Next), 12);
    EXPECT_EQ(SlotOf(&Derived<TqNumber>::Next), 13);
    EXPECT_EQ(SlotOf(&Derived<TqCounter>::Next), 13);
    EXPECT_EQ(SlotOf(&Derived<TqBoolean>::Next), 13);
}

TEST(Layout, OtherOperationsAreNotVirtual) {
    EXPECT_EQ(SlotOf(&TqString::SetValue), -1);
    EXPECT_EQ(SlotOf(&TqString::AppendChar), -1);
    EXPECT_EQ(SlotOf(&TqString::TrimLeadingWS), -1);
    EXPECT_EQ(SlotOf(&TqBuffer::Append), -1);
    EXPECT_EQ(SlotOf(&TqBuffer::Clear), -1);
    EXPECT_EQ(SlotOf(&TqBuffer::AdvanceReadContext), -1);
    EXPECT_EQ(SlotOf(&TqBoolean::StringToValue), -1);
}

}  // namespace
