#include "Layout.h"

#include <gtest/gtest.h>

#include <type_traits>

#include "TqBaseList.h"
#include "TqBaseObject.h"
#include "TqBasePtrList.h"
#include "TqBaseRef.h"
#include "TqBaseRefList.h"
#include "TqBoolean.h"
#include "TqBuffer.h"
#include "TqCallback.h"
#include "TqCallbackChain.h"
#include "TqCallbackData.h"
#include "TqClassInfo.h"
#include "TqClassRegistry.h"
#include "TqCounter.h"
#include "TqDataType.h"
#include "TqDateTime.h"
#include "TqFile.h"
#include "TqFloat.h"
#include "TqFunctionCb.h"
#include "TqIpAddress.h"
#include "TqNetworkMask.h"
#include "TqNumber.h"
#include "TqSnmpOid.h"
#include "TqSortedStringList.h"
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
static_assert(std::is_same<decltype(TqFloat::value), float>::value, "");
static_assert(std::is_same<decltype(TqDateTime::time), tm>::value, "");
static_assert(std::is_same<decltype(TqDateTime::text), TqString>::value, "");
static_assert(std::is_same<decltype(TqSnmpOid::values), unsigned int*>::value, "");
static_assert(std::is_same<decltype(TqSnmpOid::count), unsigned int>::value, "");
static_assert(std::is_same<decltype(TqSnmpOid::capacity), unsigned int>::value, "");
static_assert(std::is_same<decltype(TqSnmpOid::internalValues), unsigned int[16]>::value, "");
static_assert(std::is_same<decltype(TqSnmpOid::maxInternalValues), const unsigned int>::value, "");
static_assert(std::is_same<decltype(TqIpAddress::address), unsigned int>::value, "");
static_assert(std::is_same<decltype(TqIpAddress::valid), int>::value, "");
static_assert(std::is_same<decltype(TqFile::fileName), TqString>::value, "");
static_assert(std::is_same<decltype(TqFile::openMode), int>::value, "");
static_assert(std::is_same<decltype(TqFile::stream), FILE*>::value, "");
static_assert(std::is_same<decltype(TqFile::fileState), int>::value, "");
static_assert(std::is_same<decltype(TqFile::read), const int>::value, "");
static_assert(std::is_base_of<TqBaseObject, TqFile>::value, "");
static_assert(std::is_base_of<TqBaseList, TqSortedStringList>::value, "");
static_assert(sizeof(TqSortedStringList) == sizeof(TqBaseList), "the sorted list adds no field");
static_assert(std::is_base_of<TqIpAddress, TqNetworkMask>::value, "");
static_assert(sizeof(TqNetworkMask) == sizeof(TqIpAddress), "a mask adds no field");
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

TEST(Layout, FieldsOfAFloat) {
    const TqFloat f;
    EXPECT_EQ(LayoutOf(f, f.value), PerTarget({4, 8}, {8, 16}));
}

TEST(Layout, FieldsOfADate) {
    const TqDateTime d;
    EXPECT_EQ(LayoutOf(d, d.time, d.text), PerTarget({4, 48, 100}, {8, 64, 128}));
}

TEST(Layout, FieldsOfAnObjectIdentifier) {
    const TqSnmpOid o("");
    const Offsets layout = LayoutOf(o, o.values, o.count, o.capacity, o.internalValues);
    EXPECT_TRUE(StrictlyIncreasing(layout));
    EXPECT_EQ(layout, PerTarget({4, 8, 12, 16, 80}, {8, 16, 20, 24, 88}));
}

TEST(Layout, FieldsOfAnAddress) {
    const TqIpAddress a;
    EXPECT_EQ(LayoutOf(a, a.address, a.valid), PerTarget({4, 8, 12}, {8, 12, 16}));
    const TqNetworkMask m;
    EXPECT_EQ(LayoutOf(m, m.address, m.valid), PerTarget({4, 8, 12}, {8, 12, 16}));
}

TEST(Layout, FieldsOfAFile) {
    const TqFile f;
    const Offsets layout = LayoutOf(f, f.fileName, f.openMode, f.stream, f.fileState);
    EXPECT_TRUE(StrictlyIncreasing(layout));
    EXPECT_EQ(layout, PerTarget({44, 96, 100, 104, 108}, {72, 136, 144, 152, 160}));
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
    ExpectTheSlotsOfAValue<TqFloat>();
    ExpectTheSlotsOfAValue<TqDateTime>();
    ExpectTheSlotsOfAValue<TqSnmpOid>();
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

TEST(Layout, SlotThatAnObjectIdentifierAdds) {
    EXPECT_EQ(SlotOf(&TqSnmpOid::Convert), 12);
}

template <class T>
void ExpectTheSlotsOfAnAddress() {
    EXPECT_EQ(SlotOf(&T::fromUInt32), 2);
    EXPECT_EQ(SlotOf(&T::fromString), 3);
    EXPECT_EQ(SlotOf(&T::getIpAddress), 4);
    EXPECT_EQ(SlotOf(&T::toString), 5);
}

TEST(Layout, SlotsOfAddressesAndMasks) {
    ExpectTheSlotsOfAnAddress<TqIpAddress>();
    ExpectTheSlotsOfAnAddress<TqNetworkMask>();
}

TEST(Layout, SlotsOfAFile) {
    EXPECT_EQ(SlotOf(&TqFile::Clone), 2);
    EXPECT_EQ(SlotOf(&TqFile::ClassInfo), 3);
    EXPECT_EQ(SlotOf(&TqFile::Open), 4);
    EXPECT_EQ(SlotOf(&TqFile::Close), 5);
    EXPECT_EQ(SlotOf(&TqFile::NextLine), 6);
    EXPECT_EQ(SlotOf(&TqFile::NewInstance), -1);
}

TEST(Layout, ASortedListOverridesNoOperation) {
    EXPECT_TRUE((std::is_same<decltype(&TqSortedStringList::InsertSlot),
                              void (TqBaseList::*)(unsigned int, void*)>::value));
    EXPECT_TRUE((std::is_same<decltype(&TqSortedStringList::RemoveSlot),
                              void (TqBaseList::*)(unsigned int)>::value));
    EXPECT_TRUE((std::is_same<decltype(&TqSortedStringList::ReplaceSlot),
                              void (TqBaseList::*)(unsigned int, void*)>::value));
    EXPECT_TRUE((std::is_same<decltype(&TqSortedStringList::SwapItems),
                              void (TqBaseList::*)(unsigned int, unsigned int)>::value));
    EXPECT_TRUE((std::is_same<decltype(&TqSortedStringList::RemoveAllItems),
                              void (TqBaseList::*)()>::value));
    EXPECT_TRUE((std::is_same<decltype(&TqSortedStringList::Clone),
                              TqBaseObject* (TqBaseObject::*)() const>::value));
    EXPECT_EQ(SlotOf(&TqSortedStringList::Add), -1);
}

// Objects, handles, lists and callbacks. The offsets behind a mutex are those with the mutex of
// glibc, 24 bytes on the targets of 32 bits and 40 on x86-64.

TEST(Layout, FieldsOfABaseObject) {
    const TqBaseObject o;
    const Offsets layout = LayoutOf(o, o.refCount, o.seqNum, o.self, o.objectMutex, o.destroying);
    EXPECT_TRUE(StrictlyIncreasing(layout));
    EXPECT_EQ(layout, PerTarget({4, 8, 12, 16, 40, 44}, {8, 12, 16, 24, 64, 72}));
}

TEST(Layout, FieldsOfADescriptor) {
    const TqClassInfo i("", nullptr, nullptr);
    const Offsets layout = LayoutOf(i, i.name, i.createFunc, i.parent, i.tallyA, i.tallyB);
    EXPECT_TRUE(StrictlyIncreasing(layout));
    EXPECT_EQ(layout, PerTarget({44, 96, 100, 104, 112, 120}, {72, 136, 144, 152, 168, 184}));
}

TEST(Layout, FieldsOfAHandle) {
    const TqRef<TqBaseObject> r;
    const Offsets layout = LayoutOf(r, r.object, r.objectSeqNum, r.refMutex);
    EXPECT_TRUE(StrictlyIncreasing(layout));
    EXPECT_EQ(layout, PerTarget({4, 8, 12, 36}, {8, 16, 24, 64}));
}

TEST(Layout, FieldsOfABaseList) {
    const TqBaseList l;
    const Offsets layout = LayoutOf(l, l.capacity, l.count, l.slots, l.walkDepth);
    EXPECT_TRUE(StrictlyIncreasing(layout));
    EXPECT_EQ(layout, PerTarget({44, 48, 52, 56, 60}, {68, 72, 80, 88, 96}));
}

TEST(Layout, APointerListAndAChainAddNoField) {
    EXPECT_EQ(sizeof(TqBasePtrList), sizeof(TqBaseList));
    EXPECT_EQ(sizeof(TqPtrList<int>), sizeof(TqBaseList));
    EXPECT_EQ(sizeof(TqCallbackChain), sizeof(TqBaseList));
}

TEST(Layout, FieldOfAReferenceList) {
    const TqRefList<TqBaseObject> l;
    EXPECT_EQ(LayoutOf(l, l.listMutex), PerTarget({60, 84}, {96, 136}));
}

TEST(Layout, FieldOfTheRegistry) {
    const TqClassRegistry r;
    EXPECT_EQ(LayoutOf(r, r.classList), PerTarget({44, 128}, {72, 208}));
}

TEST(Layout, FieldsOfCallbacks) {
    const TqFunctionCb c(nullptr, nullptr);
    EXPECT_EQ(LayoutOf(c, c.userData, c.function), PerTarget({44, 48, 52}, {72, 80, 88}));
    EXPECT_EQ(sizeof(TqCallback), sizeof(void*) == 4 ? 48u : 80u);
    EXPECT_EQ(sizeof(TqCallbackData), sizeof(TqBaseObject));
}

// The slots that every object shares.
template <class T>
void ExpectTheSlotsOfAnObject() {
    EXPECT_EQ(SlotOf(&T::Clone), 2);
    EXPECT_EQ(SlotOf(static_cast<TqClassInfo* (T::*)() const>(&T::ClassInfo)), 3);
}

TEST(Layout, SlotsOfAnObject) {
    ExpectTheSlotsOfAnObject<TqBaseObject>();
    ExpectTheSlotsOfAnObject<TqClassInfo>();
    ExpectTheSlotsOfAnObject<TqClassRegistry>();
    ExpectTheSlotsOfAnObject<TqBaseList>();
    ExpectTheSlotsOfAnObject<TqBasePtrList>();
    ExpectTheSlotsOfAnObject<TqBaseRefList>();
    ExpectTheSlotsOfAnObject<TqCallback>();
    ExpectTheSlotsOfAnObject<TqFunctionCb>();
    ExpectTheSlotsOfAnObject<TqCallbackData>();
    ExpectTheSlotsOfAnObject<TqCallbackChain>();
}

TEST(Layout, SlotsThatADescriptorAdds) {
    EXPECT_EQ(SlotOf(&TqClassInfo::SelfTest), 4);
    EXPECT_EQ(SlotOf(static_cast<int (TqClassInfo::*)(const char*)>(&TqClassInfo::IsA)), 5);
    EXPECT_EQ(SlotOf(static_cast<int (TqClassInfo::*)(TqClassInfo*)>(&TqClassInfo::IsA)), 6);
}

TEST(Layout, SlotThatTheRegistryAdds) {
    EXPECT_EQ(SlotOf(&TqClassRegistry::SelfTest), 4);
}

template <class T>
void ExpectTheSlotsOfAList() {
    EXPECT_EQ(SlotOf(&T::SwapItems), 4);
    EXPECT_EQ(SlotOf(&T::RemoveAllItems), 5);
    EXPECT_EQ(SlotOf(&T::RemoveSlot), 6);
    EXPECT_EQ(SlotOf(&T::InsertSlot), 7);
    EXPECT_EQ(SlotOf(&T::ReplaceSlot), 8);
}

TEST(Layout, SlotsOfAList) {
    ExpectTheSlotsOfAList<TqBaseList>();
    ExpectTheSlotsOfAList<TqBasePtrList>();
    ExpectTheSlotsOfAList<TqBaseRefList>();
    ExpectTheSlotsOfAList<TqCallbackChain>();
}

TEST(Layout, SlotThatACallbackAdds) {
    EXPECT_EQ(SlotOf(&TqCallback::Invoke), 4);
    EXPECT_EQ(SlotOf(&TqFunctionCb::Invoke), 4);
}

TEST(Layout, SlotsOfAHandle) {
    ExpectTheSlotsOfAValue<TqBaseRef>();
    ExpectTheSlotsOfAValue<TqRef<TqBaseObject>>();
    EXPECT_EQ(SlotOf(&TqBaseRef::SelfTest), 12);
}

// Whatever a class derived from T adds gets the slot behind T's last.
template <class T>
class Derived : public T {
public:
    using T::T;
    virtual void Next() {}
};

TEST(Layout, NoTypeHasFurtherSlots) {
    EXPECT_EQ(SlotOf(&Derived<TqString>::Next), 18);
    EXPECT_EQ(SlotOf(&Derived<TqBuffer>::Next), 12);
    EXPECT_EQ(SlotOf(&Derived<TqNumber>::Next), 13);
    EXPECT_EQ(SlotOf(&Derived<TqCounter>::Next), 13);
    EXPECT_EQ(SlotOf(&Derived<TqBoolean>::Next), 13);
    EXPECT_EQ(SlotOf(&Derived<TqFloat>::Next), 12);
    EXPECT_EQ(SlotOf(&Derived<TqDateTime>::Next), 12);
    EXPECT_EQ(SlotOf(&Derived<TqSnmpOid>::Next), 13);
    EXPECT_EQ(SlotOf(&Derived<TqIpAddress>::Next), 6);
    EXPECT_EQ(SlotOf(&Derived<TqNetworkMask>::Next), 6);
    EXPECT_EQ(SlotOf(&Derived<TqFile>::Next), 7);
    EXPECT_EQ(SlotOf(&Derived<TqSortedStringList>::Next), 9);
    EXPECT_EQ(SlotOf(&Derived<TqBaseObject>::Next), 4);
    EXPECT_EQ(SlotOf(&Derived<TqClassInfo>::Next), 7);
    EXPECT_EQ(SlotOf(&Derived<TqClassRegistry>::Next), 5);
    EXPECT_EQ(SlotOf(&Derived<TqBaseRef>::Next), 13);
    EXPECT_EQ(SlotOf(&Derived<TqRef<TqBaseObject>>::Next), 13);
    EXPECT_EQ(SlotOf(&Derived<TqBaseList>::Next), 9);
    EXPECT_EQ(SlotOf(&Derived<TqPtrList<int>>::Next), 9);
    EXPECT_EQ(SlotOf(&Derived<TqRefList<TqBaseObject>>::Next), 9);
    EXPECT_EQ(SlotOf(&Derived<TqCallback>::Next), 5);
    EXPECT_EQ(SlotOf(&Derived<TqFunctionCb>::Next), 5);
    EXPECT_EQ(SlotOf(&Derived<TqCallbackData>::Next), 4);
    EXPECT_EQ(SlotOf(&Derived<TqCallbackChain>::Next), 9);
}

TEST(Layout, OtherOperationsAreNotVirtual) {
    EXPECT_EQ(SlotOf(&TqString::SetValue), -1);
    EXPECT_EQ(SlotOf(&TqString::AppendChar), -1);
    EXPECT_EQ(SlotOf(&TqString::TrimLeadingWS), -1);
    EXPECT_EQ(SlotOf(&TqBuffer::Append), -1);
    EXPECT_EQ(SlotOf(&TqBuffer::Clear), -1);
    EXPECT_EQ(SlotOf(&TqBuffer::AdvanceReadContext), -1);
    EXPECT_EQ(SlotOf(&TqBoolean::StringToValue), -1);
    EXPECT_EQ(SlotOf(&TqDateTime::SetNow), -1);
    EXPECT_EQ(SlotOf(&TqDateTime::SetTime), -1);
    EXPECT_EQ(SlotOf(&TqSnmpOid::CheckAllocSize), -1);
    EXPECT_EQ(SlotOf(&TqSnmpOid::SetValues), -1);
    EXPECT_EQ(SlotOf(&TqSnmpOid::Reset), -1);
    EXPECT_EQ(SlotOf(&TqSnmpOid::Increment), -1);
    EXPECT_EQ(SlotOf(&TqSnmpOid::SameTable), -1);
    EXPECT_EQ(SlotOf(static_cast<void (TqSnmpOid::*)(unsigned long)>(&TqSnmpOid::Append)), -1);
    EXPECT_EQ(SlotOf(static_cast<void (TqIpAddress::*)(unsigned long)>(&TqIpAddress::LogicalAND)),
              -1);
    EXPECT_EQ(SlotOf(&TqIpAddress::operator unsigned long), -1);
    EXPECT_EQ(SlotOf(&TqBaseObject::NewInstance), -1);
    EXPECT_EQ(SlotOf(static_cast<int (TqBaseObject::*)(const char*) const>(&TqBaseObject::IsA)),
              -1);
    EXPECT_EQ(SlotOf(static_cast<int (TqBaseObject::*)(TqClassInfo*) const>(&TqBaseObject::IsA)),
              -1);
    EXPECT_EQ(SlotOf(&TqClassInfo::NewObject), -1);
    EXPECT_EQ(SlotOf(&TqClassRegistry::Find), -1);
    EXPECT_EQ(SlotOf(&TqClassRegistry::Remove), -1);
    EXPECT_EQ(SlotOf(&TqBaseRef::AssignNewObject), -1);
    EXPECT_EQ(SlotOf(&TqBaseRef::GutCheck), -1);
    EXPECT_EQ(SlotOf(&TqBaseList::PreAlloc), -1);
    EXPECT_EQ(SlotOf(&TqBaseList::FindSlot), -1);
    EXPECT_EQ(
        SlotOf(static_cast<void* (TqBasePtrList::*)(unsigned int)>(&TqBasePtrList::RemoveItem)),
        -1);
    EXPECT_EQ(SlotOf(static_cast<void* (TqBasePtrList::*)(void*)>(&TqBasePtrList::RemoveItem)), -1);
    EXPECT_EQ(SlotOf(&TqCallback::UserData), -1);
    EXPECT_EQ(SlotOf(&TqCallbackChain::Invoke), -1);
}

}  // namespace
