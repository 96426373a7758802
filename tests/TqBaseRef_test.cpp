#include "TqBaseRef.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <memory>
#include <type_traits>
#include <typeinfo>

#include "Objects.h"
#include "Reports.h"
#include "TqBuffer.h"
#include "TqString.h"

namespace {

static_assert(std::is_base_of<TqDataType, TqBaseRef>::value, "");
static_assert(std::is_abstract<TqBaseRef>::value, "a bare handle cannot be cloned");
static_assert(std::is_base_of<TqBaseRef, TqRef<Mortal>>::value, "");
static_assert(sizeof(TqRef<Mortal>) == sizeof(TqBaseRef), "no field is added");
static_assert(std::is_same<decltype(TqBaseRef::typeId), short>::value, "");

using Handle = TqRef<TqBaseObject>;

// A handle whose type id is another one.
class OddHandle : public Handle {
public:
    explicit OddHandle(TqBaseObject* obj) : Handle(obj) {}
    short TypeId() const override { return 99; }
};

void ExpectFree(TqLinuxMutex& mutex) {
    EXPECT_EQ(mutex.Lock(), 0);
    EXPECT_EQ(mutex.Unlock(), 0);
}

class TqBaseRefTo : public testing::Test {
protected:
    int deaths = 0;
    TqBaseObject* const object = new Mortal(deaths);
};

// Taking and letting go.

TEST(TqBaseRef, MayBeEmpty) {
    Handle handle, other(static_cast<TqBaseObject*>(nullptr));
    EXPECT_EQ(handle.object, nullptr);
    EXPECT_EQ(handle.objectSeqNum, 0u);
    EXPECT_EQ(other.object, nullptr);
    ExpectFree(handle.refMutex);
}

TEST_F(TqBaseRefTo, TakesTheObjectWithAReferenceAndItsStamp) {
    object->seqNum = 7;
    Handle handle(object);
    EXPECT_EQ(handle.object, object);
    EXPECT_EQ(handle.objectSeqNum, 7u);
    EXPECT_EQ(object->refCount, 1);
    ExpectFree(handle.refMutex);
    ExpectFree(object->objectMutex);
}

TEST_F(TqBaseRefTo, LastHandleDeletesTheObject) {
    {
        const Handle handle(object);
        EXPECT_EQ(deaths, 0);
    }
    EXPECT_EQ(deaths, 1);
}

TEST_F(TqBaseRefTo, ObjectLivesUntilTheLastOfTwoHandlesGoes) {
    {
        const Handle handle(object);
        {
            const Handle other(object);
            EXPECT_EQ(object->refCount, 2);
        }
        EXPECT_EQ(object->refCount, 1);
        EXPECT_EQ(deaths, 0);
    }
    EXPECT_EQ(deaths, 1);
}

TEST_F(TqBaseRefTo, DestructorOfTheBaseLetsTheObjectGo) {
    TqBaseRef* handle = new Handle(object);
    delete handle;
    EXPECT_EQ(deaths, 1);
}

TEST_F(TqBaseRefTo, DestructorOfTheRootLetsTheObjectGo) {
    TqDataType* handle = new Handle(object);
    delete handle;
    EXPECT_EQ(deaths, 1);
}

TEST_F(TqBaseRefTo, DestructorEmptiesTheHandleInTheMemory) {
    object->seqNum = 7;
    Grave<Handle> handle(object);
    handle.Bury();
    EXPECT_EQ(deaths, 1);
    EXPECT_EQ(handle.Left(&Handle::object), nullptr);
    EXPECT_EQ(handle.Left(&Handle::objectSeqNum), 0u);
}

TEST_F(TqBaseRefTo, CopyTakesAnotherReference) {
    object->seqNum = 7;
    Handle handle(object);
    const Handle copy(handle);
    EXPECT_EQ(copy.object, object);
    EXPECT_EQ(copy.objectSeqNum, 7u);
    EXPECT_EQ(handle.object, object);
    EXPECT_EQ(object->refCount, 2);
    ExpectFree(handle.refMutex);
    ExpectFree(copy.refMutex);
}

TEST_F(TqBaseRefTo, CopyMayBeMadeOfTheUntypedHandle) {
    const Handle handle(object);
    const TqBaseRef& base = handle;
    const TqRef<Mortal> copy(base);
    EXPECT_EQ(copy.object, object);
    EXPECT_EQ(object->refCount, 2);
}

TEST(TqBaseRef, CopyOfAnEmptyHandleIsEmpty) {
    const Handle handle;
    const Handle copy(handle);
    EXPECT_EQ(copy.object, nullptr);
    EXPECT_EQ(copy.objectSeqNum, 0u);
}

TEST_F(TqBaseRefTo, CopyLocksTheSource) {
    Handle handle(object);
    ASSERT_EQ(handle.refMutex.Lock(), 0);
    const Handle copy(handle);
    EXPECT_EQ(TakeReports(), Reports({"TqBaseRef"})) << "held already";
    EXPECT_EQ(handle.refMutex.Unlock(), EPERM) << "given back by the copying";
    EXPECT_EQ(copy.object, object);
    EXPECT_EQ(object->refCount, 2);
}

TEST_F(TqBaseRefTo, CopyRefersByTheStampThatTheObjectHasNow) {
    Handle handle(object);
    object->seqNum = 9;
    const Handle copy(handle);
    EXPECT_EQ(copy.objectSeqNum, 9u);
    handle.objectSeqNum = 9;
}

TEST_F(TqBaseRefTo, AssigningAHandleTakesItsObject) {
    object->seqNum = 7;
    const Handle source(object);
    Handle handle;
    EXPECT_EQ(&(handle = source), &handle);
    EXPECT_EQ(handle.object, object);
    EXPECT_EQ(handle.objectSeqNum, 7u);
    EXPECT_EQ(object->refCount, 2);
}

TEST_F(TqBaseRefTo, AssigningTheUntypedHandleTakesItsObject) {
    const Handle source(object);
    const TqBaseRef& base = source;
    TqRef<Mortal> handle;
    EXPECT_EQ(&(handle = base), &handle);
    EXPECT_EQ(handle.object, object);
    EXPECT_EQ(object->refCount, 2);
}

TEST_F(TqBaseRefTo, AssigningToTheUntypedHandleReturnsIt) {
    const Handle source(object);
    Handle handle;
    TqBaseRef& base = handle;
    EXPECT_EQ(&(base = static_cast<const TqBaseRef&>(source)), &base);
    EXPECT_EQ(handle.object, object);
    EXPECT_EQ(&(base = static_cast<TqBaseObject*>(nullptr)), &base);
    EXPECT_EQ(handle.object, nullptr);
}

TEST_F(TqBaseRefTo, AssigningAHandleDoesNotLockIt) {
    const Handle source(object);
    Handle handle;
    ASSERT_EQ(source.refMutex.Lock(), 0);
    handle = source;
    EXPECT_EQ(TakeReports(), Reports());
    EXPECT_EQ(source.refMutex.Unlock(), 0) << "still held";
}

TEST_F(TqBaseRefTo, AssigningAnObjectTakesIt) {
    Handle handle;
    EXPECT_EQ(&(handle = object), &handle);
    EXPECT_EQ(handle.object, object);
    EXPECT_EQ(object->refCount, 1);
}

TEST_F(TqBaseRefTo, AssigningLetsTheOldObjectGo) {
    TqBaseObject* next = new Mortal(deaths);
    next->seqNum = 8;
    Handle handle(object);
    handle = next;
    EXPECT_EQ(deaths, 1);
    EXPECT_EQ(handle.object, next);
    EXPECT_EQ(handle.objectSeqNum, 8u);
    EXPECT_EQ(next->refCount, 1);
}

TEST_F(TqBaseRefTo, AssigningNullLetsTheObjectGo) {
    object->seqNum = 7;
    Handle handle(object);
    handle = nullptr;
    EXPECT_EQ(deaths, 1);
    EXPECT_EQ(handle.object, nullptr);
    EXPECT_EQ(handle.objectSeqNum, 0u);
    ExpectFree(handle.refMutex);
}

TEST_F(TqBaseRefTo, AssigningItsOwnObjectChangesNothing) {
    Handle handle(object);
    handle = object;
    EXPECT_EQ(object->refCount, 1);
    handle = static_cast<const Handle&>(handle);
    EXPECT_EQ(object->refCount, 1);
    handle.Assignment(handle);
    EXPECT_EQ(object->refCount, 1);
    handle.AssignNewObject(handle.object);
    EXPECT_EQ(object->refCount, 1);
    EXPECT_EQ(deaths, 0);
    ExpectFree(handle.refMutex);
}

TEST_F(TqBaseRefTo, AssigningItsOwnObjectKeepsTheStampOfOld) {
    Handle handle(object);
    object->seqNum = 9;
    handle = object;
    EXPECT_EQ(TakeReports(), Reports({"TqBaseRef"})) << "the stamps differ";
    EXPECT_EQ(handle.objectSeqNum, 0u);
    object->seqNum = 0;
}

// An object that keeps another one alive.
class Holder : public Mortal {
public:
    Holder(int& deathCount, TqBaseObject* kept) : Mortal(deathCount), next(kept) {}
    Handle next;
};

TEST_F(TqBaseRefTo, NewObjectMayBeKeptAliveByTheOldOneAlone) {
    Holder* holder = new Holder(deaths, object);
    Handle handle(holder);
    handle = holder->next;
    EXPECT_EQ(deaths, 1) << "the holder";
    EXPECT_EQ(handle.object, object);
    EXPECT_EQ(object->refCount, 1);
}

TEST_F(TqBaseRefTo, NewObjectIsCountedBeforeTheOldOneIsLetGo) {
    int countInTheEnd = 0;
    Handle handle(new Mortal(deaths, [&] { countInTheEnd = object->refCount; }));
    handle = object;
    EXPECT_EQ(countInTheEnd, 1);
}

TEST_F(TqBaseRefTo, OldObjectStaysInTheHandleWhileItIsLetGo) {
    Handle handle;
    TqBaseObject* seen = nullptr;
    handle = new Mortal(deaths, [&] { seen = handle.object; });
    TqBaseObject* const old = handle.object;
    handle = object;
    EXPECT_EQ(seen, old);
    EXPECT_EQ(handle.object, object);
}

TEST_F(TqBaseRefTo, ChainOfHoldersIsDeletedByItsLastHandle) {
    TqBaseObject* last = object;
    for (int i = 0; i < 50; ++i) last = new Holder(deaths, last);
    { const Handle handle(last); }
    EXPECT_EQ(deaths, 51);
}

TEST_F(TqBaseRefTo, MutexOfTheHandleIsHeldWhileTheObjectsCountChanges) {
    Handle handle;
    handle = new Mortal(deaths, [&] { EXPECT_EQ(handle.refMutex.Lock(), EDEADLK); });
    handle = object;
    EXPECT_EQ(deaths, 1);
}

// Checks.

TEST_F(TqBaseRefTo, GutCheckOfASoundHandleIsQuiet) {
    Handle().GutCheck();
    object->seqNum = 7;
    const Handle handle(object);
    handle.GutCheck();
    EXPECT_EQ(TakeReports(), Reports());
}

TEST_F(TqBaseRefTo, GutCheckReportsADeadObject) {
    const Handle handle(object);
    object->self = nullptr;
    handle.GutCheck();
    EXPECT_EQ(TakeReports(), Reports({"TqBaseRef"}));
    object->self = object;
}

TEST_F(TqBaseRefTo, GutCheckReportsAnotherStamp) {
    const Handle handle(object);
    object->seqNum = 1;
    handle.GutCheck();
    EXPECT_EQ(TakeReports(), Reports({"TqBaseRef"}));
    object->seqNum = 0;
}

TEST_F(TqBaseRefTo, GutCheckReportsEachFaultByItself) {
    const Handle handle(object);
    object->self = nullptr;
    object->seqNum = 1;
    handle.GutCheck();
    EXPECT_EQ(TakeReports(), Reports({"TqBaseRef", "TqBaseRef"}));
    object->self = object;
    object->seqNum = 0;
}

TEST(TqBaseRef, GutCheckSeesAnObjectThatWasDestroyedBehindItsBack) {
    Grave<TqBaseObject> object;
    object->seqNum = 7;
    Handle handle(object.Get());
    object.Bury();
    EXPECT_EQ(TakeReports(), Reports({"TqBaseObject"})) << "destroyed with a reference";
    handle.GutCheck();
    EXPECT_EQ(TakeReports(), Reports({"TqBaseRef", "TqBaseRef"}));
    handle.object = nullptr;
}

TEST_F(TqBaseRefTo, ChangingAHandleChecksTheOldObjectFirst) {
    TqBaseObject* next = new Mortal(deaths);
    Handle handle(object);
    object->self = nullptr;
    Keep(next);
    handle = next;
    // The handle's check, the count operation's and the destructor's.
    EXPECT_EQ(TakeReports(), Reports({"TqBaseRef", "TqBaseObject", "TqBaseObject"}));
    EXPECT_EQ(deaths, 1);
    EXPECT_EQ(handle.object, next);
    Drop(next);
}

TEST_F(TqBaseRefTo, OldObjectIsLetGoWithTheStampOfTheHandle) {
    Handle handle(object);
    object->seqNum = 5;
    handle = nullptr;
    EXPECT_EQ(TakeReports(), Reports({"TqBaseRef", "TqBaseObject"}));
    EXPECT_EQ(deaths, 1);
    EXPECT_EQ(handle.object, nullptr);
}

TEST_F(TqBaseRefTo, DeadNewObjectIsReportedAndTaken) {
    Handle handle;
    object->self = nullptr;
    handle = object;
    EXPECT_EQ(TakeReports(), Reports({"TqBaseObject"}));
    EXPECT_EQ(handle.object, object);
    EXPECT_EQ(object->refCount, 1);
    object->self = object;
}

// The value operations.

TEST(TqBaseRef, TypeIdIs8) {
    const Handle handle;
    EXPECT_EQ(handle.TypeId(), 8);
    EXPECT_EQ(TqBaseRef::typeId, 8);
    TqBaseRef::typeId = 99;
    EXPECT_EQ(handle.TypeId(), 8);
    TqBaseRef::typeId = 8;
}

TEST(TqBaseRef, SelfTestGivesOne) {
    EXPECT_EQ(Handle().SelfTest(), 1);
}

TEST_F(TqBaseRefTo, CompareIsATestOfIdentity) {
    const Handle handle(object), same(object), other(new Mortal(deaths)), empty, alsoEmpty;
    EXPECT_EQ(handle.Compare(same), 1);
    EXPECT_EQ(handle.Compare(handle), 1);
    EXPECT_EQ(handle.Compare(other), 0);
    EXPECT_EQ(other.Compare(handle), 0);
    EXPECT_EQ(handle.Compare(empty), 0);
    EXPECT_EQ(empty.Compare(handle), 0);
    EXPECT_EQ(empty.Compare(alsoEmpty), 1);
}

TEST_F(TqBaseRefTo, CompareReportsAnotherTypeAndCompares) {
    const Handle handle(object);
    const OddHandle odd(object), empty(nullptr);
    EXPECT_EQ(handle.Compare(odd), 1);
    EXPECT_EQ(TakeReports(), Reports({"TqBaseRef"}));
    EXPECT_EQ(handle.Compare(empty), 0);
    EXPECT_EQ(TakeReports(), Reports({"TqBaseRef"}));
    EXPECT_EQ(odd.Compare(odd), 1);
    EXPECT_EQ(TakeReports(), Reports()) << "its own id is its own type";
}

TEST_F(TqBaseRefTo, EqualsIsATestOfIdentity) {
    const Handle handle(object), same(object), other(new Mortal(deaths)), empty, alsoEmpty;
    EXPECT_TRUE(handle.Equals(&same));
    EXPECT_FALSE(handle.DoesNotEqual(&same));
    EXPECT_FALSE(handle.Equals(&other));
    EXPECT_TRUE(handle.DoesNotEqual(&other));
    EXPECT_FALSE(handle.Equals(&empty));
    EXPECT_TRUE(empty.Equals(&alsoEmpty));
}

TEST_F(TqBaseRefTo, NullIsEqualToNoHandleAndIsNotReported) {
    const Handle handle(object), empty;
    EXPECT_FALSE(handle.Equals(nullptr));
    EXPECT_TRUE(handle.DoesNotEqual(nullptr));
    EXPECT_FALSE(empty.Equals(nullptr));
    EXPECT_EQ(TakeReports(), Reports());
}

TEST_F(TqBaseRefTo, EqualsReportsAnotherTypeUnderTheNameOfTheHeaderAndCompares) {
    const Handle handle(object);
    const OddHandle odd(object), empty(nullptr);
    EXPECT_TRUE(handle.Equals(&odd));
    EXPECT_EQ(TakeReports(), Reports({"./TqBaseRef"}));
    EXPECT_FALSE(handle.Equals(&empty));
    EXPECT_EQ(TakeReports(), Reports({"./TqBaseRef"}));
    EXPECT_TRUE(odd.Equals(&odd));
    EXPECT_EQ(TakeReports(), Reports());
}

TEST_F(TqBaseRefTo, AssignmentTakesTheObjectOfAHandle) {
    const Handle source(object);
    Handle handle(new Mortal(deaths));
    ASSERT_EQ(source.refMutex.Lock(), 0);
    handle.Assignment(source);
    EXPECT_EQ(source.refMutex.Unlock(), 0) << "the source is not locked";
    EXPECT_EQ(deaths, 1);
    EXPECT_EQ(handle.object, object);
    EXPECT_EQ(object->refCount, 2);
}

TEST_F(TqBaseRefTo, AssignmentReportsAnotherTypeAndTakesItsObject) {
    const OddHandle odd(object);
    Handle handle;
    handle.Assignment(odd);
    EXPECT_EQ(TakeReports(), Reports({"TqBaseRef"}));
    EXPECT_EQ(handle.object, object);
    EXPECT_EQ(object->refCount, 2);
}

TEST_F(TqBaseRefTo, HasNoText) {
    Handle handle(object);
    TqString text("before");
    handle.ToString(text);
    EXPECT_EQ(TakeReports(), Reports({"TqBaseRef"}));
    EXPECT_STREQ(text.data, "before");
    handle.FromString("text");
    EXPECT_EQ(TakeReports(), Reports({"TqBaseRef"}));
    EXPECT_EQ(handle.object, object);
    EXPECT_EQ(object->refCount, 1);
}

TEST_F(TqBaseRefTo, HasNoItem) {
    Handle handle(object);
    TqBuffer buffer;
    TqString("item").ToBuffer(buffer);
    const unsigned int length = buffer.length;
    handle.ToBuffer(buffer);
    EXPECT_EQ(TakeReports(), Reports({"TqBaseRef"}));
    EXPECT_EQ(buffer.length, length);
    handle.FromBuffer(buffer);
    EXPECT_EQ(TakeReports(), Reports({"TqBaseRef"}));
    EXPECT_EQ(buffer.readPosition, 0u);
    EXPECT_EQ(handle.object, object);
    EXPECT_EQ(object->refCount, 1);
}

TEST_F(TqBaseRefTo, CloneIsASecondHandle) {
    const TqRef<Mortal> handle(static_cast<Mortal*>(object));
    const TqDataType& value = handle;
    const std::unique_ptr<TqDataType> clone(value.Clone());
    const TqDataType& cloned = *clone;
    EXPECT_TRUE(typeid(cloned) == typeid(TqRef<Mortal>));
    EXPECT_EQ(object->refCount, 2);
    EXPECT_TRUE(clone->Equals(&handle));
}

TEST_F(TqBaseRefTo, CloneIsMadeWithTheCopyConstructor) {
    Handle handle(object);
    ASSERT_EQ(handle.refMutex.Lock(), 0);
    const std::unique_ptr<TqDataType> clone(handle.Clone());
    EXPECT_EQ(TakeReports(), Reports({"TqBaseRef"})) << "which locks the source";
}

// A destructor that reaches back to the handle that is letting its object go. The handle's own
// mutex makes two reports of it: what the destructor does cannot lock, and gives the mutex back, so
// that the handle cannot.
class TqBaseRefReentered : public testing::Test {
protected:
    int deaths = 0;
    TqBaseObject next;
    std::unique_ptr<Handle> handle{new Handle};
};

TEST_F(TqBaseRefReentered, GivingItTheDyingObjectAgainMakesTwoReports) {
    *handle = new Mortal(deaths, [this] { *handle = handle->object; });
    *handle = nullptr;
    EXPECT_EQ(TakeReports(), Reports({"TqBaseRef", "TqBaseRef"}));
    EXPECT_EQ(deaths, 1);
    EXPECT_EQ(handle->object, nullptr);
    ExpectFree(handle->refMutex);
}

TEST_F(TqBaseRefReentered, EmptyingItDropsTheDyingObjectAgainAndMakesFourReports) {
    *handle = new Mortal(deaths, [this] { *handle = nullptr; });
    *handle = nullptr;
    // Between the two: counted down while being deleted, and deleted with a count of -1.
    EXPECT_EQ(TakeReports(), Reports({"TqBaseRef", "TqBaseObject", "TqBaseObject", "TqBaseRef"}));
    EXPECT_EQ(deaths, 1);
    EXPECT_EQ(handle->object, nullptr);
    ExpectFree(handle->refMutex);
}

TEST_F(TqBaseRefReentered, WhatItWasGivenInBetweenIsOverwritten) {
    *handle = new Mortal(deaths, [this] { *handle = &next; });
    *handle = nullptr;
    EXPECT_EQ(TakeReports(), Reports({"TqBaseRef", "TqBaseObject", "TqBaseObject", "TqBaseRef"}));
    EXPECT_EQ(deaths, 1);
    EXPECT_EQ(handle->object, nullptr);
    EXPECT_EQ(next.refCount, 1) << "nobody knows of this reference any more";
    next.refCount = 0;
}

TEST_F(TqBaseRefReentered, CopyingItLocksItToo) {
    Keep(&next);
    *handle = new Mortal(deaths, [this] {
        Handle copy(*handle);
        copy.object = nullptr;
    });
    *handle = &next;
    // Not to be locked; a count taken of the dying object, which it is then deleted with; not to
    // be unlocked.
    EXPECT_EQ(TakeReports(), Reports({"TqBaseRef", "TqBaseObject", "TqBaseObject", "TqBaseRef"}));
    EXPECT_EQ(deaths, 1);
    EXPECT_EQ(handle->object, &next);
    EXPECT_EQ(next.refCount, 2);
    handle.reset();
    next.refCount = 0;
}

TEST_F(TqBaseRefReentered, InItsDestructorItDoesNotHangEither) {
    TqBaseRef& dying = *handle;
    *handle = new Mortal(deaths, [&dying] { dying.AssignNewObject(nullptr); });
    handle.reset();
    EXPECT_EQ(TakeReports(), Reports({"TqBaseRef", "TqBaseObject", "TqBaseObject", "TqBaseRef"}));
    EXPECT_EQ(deaths, 1);
}

}  // namespace
