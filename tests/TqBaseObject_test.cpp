#include "TqBaseObject.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <memory>
#include <type_traits>
#include <typeinfo>

#include "Objects.h"
#include "Reports.h"
#include "TqCallback.h"
#include "TqClassInfo.h"
#include "TqClassRegistry.h"

namespace {

const unsigned int nextSeqNumAtLoad = TqBaseObject::nextSeqNum;

static_assert(std::is_same<decltype(TqBaseObject::refCount), int>::value, "");
static_assert(std::is_same<decltype(TqBaseObject::seqNum), unsigned int>::value, "");
static_assert(std::is_same<decltype(TqBaseObject::destroying), unsigned char>::value, "");
static_assert(std::is_same<decltype(TqBaseObject::nextSeqNum), unsigned int>::value, "");

// A class with a clone of its own.
class Named : public TqBaseObject {
public:
    TqBaseObject* Clone() const override { return new Named(*this); }
};

// A class without a descriptor, as it cannot come about with the macros.
class Nameless : public TqBaseObject {
public:
    TqClassInfo* ClassInfo() const override { return nullptr; }
};

TEST(TqBaseObject, StartsWithoutReferencesAndWithItsOwnAddress) {
    Grave<TqBaseObject> object;
    EXPECT_EQ(object->refCount, 0);
    EXPECT_EQ(object->seqNum, 0u);
    EXPECT_EQ(object->self, object.Get());
    EXPECT_EQ(object->destroying, 0);
    EXPECT_EQ(object->objectMutex.Lock(), 0);
    EXPECT_EQ(object->objectMutex.Unlock(), 0);
    object.Bury();
}

TEST(TqBaseObject, CopyIsANewObjectWithoutReferences) {
    TqBaseObject source;
    source.refCount = 3;
    source.seqNum = 7;
    Grave<TqBaseObject> copy(source);
    EXPECT_EQ(copy->refCount, 0);
    EXPECT_EQ(copy->seqNum, 0u);
    EXPECT_EQ(copy->self, copy.Get());
    EXPECT_EQ(copy->destroying, 0);
    EXPECT_EQ(source.refCount, 3);
    EXPECT_EQ(source.seqNum, 7u);
    EXPECT_EQ(source.self, &source);
    source.refCount = 0;
    copy.Bury();
}

TEST(TqBaseObject, CopyHasItsOwnMutex) {
    TqBaseObject source;
    ASSERT_EQ(source.objectMutex.Lock(), 0);
    TqBaseObject copy(source);
    EXPECT_EQ(copy.objectMutex.Lock(), 0);
    EXPECT_EQ(copy.objectMutex.Unlock(), 0);
    EXPECT_EQ(source.objectMutex.Unlock(), 0);
}

TEST(TqBaseObject, CopyOfAnObjectBeingDestroyedIsReportedAndNew) {
    TqBaseObject source;
    source.destroying = 1;
    const TqBaseObject copy(source);
    EXPECT_EQ(TakeReports(), Reports({"TqBaseObject"}));
    EXPECT_EQ(copy.destroying, 0);
    EXPECT_EQ(copy.self, &copy);
    EXPECT_EQ(copy.refCount, 0);
}

TEST(TqBaseObject, AssigningChangesNothing) {
    TqBaseObject source, target;
    source.refCount = 3;
    source.seqNum = 7;
    source.destroying = 1;
    target.refCount = 5;
    target.seqNum = 9;
    ASSERT_EQ(target.objectMutex.Lock(), 0);
    EXPECT_EQ(&(target = source), &target);
    EXPECT_EQ(target.refCount, 5);
    EXPECT_EQ(target.seqNum, 9u);
    EXPECT_EQ(target.self, &target);
    EXPECT_EQ(target.destroying, 0);
    EXPECT_EQ(target.objectMutex.Unlock(), 0) << "still held";
    source.refCount = target.refCount = 0;
}

TEST(TqBaseObject, AssigningToItselfChangesNothing) {
    TqBaseObject object;
    const TqBaseObject& same = object;
    object.seqNum = 7;
    object = same;
    EXPECT_EQ(object.seqNum, 7u);
    EXPECT_EQ(object.self, &object);
}

TEST(TqBaseObject, DestroyingAnObjectWithoutReferencesIsQuiet) {
    { TqBaseObject object; }
    EXPECT_EQ(TakeReports(), Reports());
}

TEST(TqBaseObject, DestroyingAnObjectWithReferencesIsReportedOnce) {
    {
        TqBaseObject object;
        Keep(&object);
    }
    EXPECT_EQ(TakeReports(), Reports({"TqBaseObject"}));
}

TEST(TqBaseObject, DestroyingAnObjectWithACountBelowZeroIsReportedOnce) {
    {
        TqBaseObject object;
        EXPECT_EQ(Drop(&object), 0);
        EXPECT_EQ(object.refCount, -1);
    }
    EXPECT_EQ(TakeReports(), Reports({"TqBaseObject"}));
}

TEST(TqBaseObject, DestroyingAnObjectThatIsNotItselfIsReportedOnce) {
    {
        TqBaseObject object, other;
        object.self = &other;
    }
    EXPECT_EQ(TakeReports(), Reports({"TqBaseObject"}));
}

TEST(TqBaseObject, DestructorReportsEachFaultByItself) {
    {
        TqBaseObject object;
        object.self = nullptr;
        object.refCount = 1;
    }
    EXPECT_EQ(TakeReports(), Reports({"TqBaseObject", "TqBaseObject"}));
}

TEST(TqBaseObject, DestructorClearsSelfAndStampInTheMemory) {
    Grave<TqBaseObject> object;
    object->seqNum = 7;
    object.Bury();
    EXPECT_EQ(object.Left(&TqBaseObject::self), nullptr);
    EXPECT_EQ(object.Left(&TqBaseObject::seqNum), 0u);
}

TEST(TqBaseObject, DestructorOfADerivedClassClearsSelfAndStampInTheMemory) {
    int deaths = 0;
    Grave<Mortal> object(deaths);
    object->seqNum = 7;
    object.Bury();
    EXPECT_EQ(object.Left(&TqBaseObject::self), nullptr);
    EXPECT_EQ(object.Left(&TqBaseObject::seqNum), 0u);
}

TEST(TqBaseObject, IsDeletedThroughItsVirtualDestructor) {
    int deaths = 0;
    TqBaseObject* object = new Mortal(deaths);
    delete object;
    EXPECT_EQ(deaths, 1);
}

TEST(TqBaseObject, CloneIsANewObjectWithoutReferences) {
    TqBaseObject object;
    object.refCount = 3;
    ASSERT_EQ(object.objectMutex.Lock(), 0);
    const std::unique_ptr<TqBaseObject> clone(object.Clone());
    EXPECT_NE(clone.get(), &object);
    EXPECT_EQ(clone->refCount, 0);
    EXPECT_EQ(clone->self, clone.get());
    EXPECT_EQ(clone->objectMutex.Lock(), 0);
    EXPECT_EQ(clone->objectMutex.Unlock(), 0);
    EXPECT_EQ(object.objectMutex.Unlock(), 0);
    EXPECT_EQ(object.refCount, 3);
    object.refCount = 0;
}

TEST(TqBaseObject, CloneIsMadeWithTheCopyConstructor) {
    TqBaseObject object;
    object.destroying = 1;
    const std::unique_ptr<TqBaseObject> clone(object.Clone());
    EXPECT_EQ(TakeReports(), Reports({"TqBaseObject"}));
}

TEST(TqBaseObject, CloneOfAClassThatDoesNotOverrideItIsABareBaseObject) {
    int deaths = 0;
    const Mortal object(deaths);
    const std::unique_ptr<TqBaseObject> clone(object.Clone());
    const TqBaseObject& cloned = *clone;
    EXPECT_TRUE(typeid(cloned) == typeid(TqBaseObject));
}

TEST(TqBaseObject, CloneIsVirtual) {
    const Named object;
    const TqBaseObject& base = object;
    const std::unique_ptr<TqBaseObject> clone(base.Clone());
    EXPECT_NE(dynamic_cast<Named*>(clone.get()), nullptr);
}

TEST(TqBaseObject, IsNeverMadeByName) {
    const TqBaseObject object;
    EXPECT_EQ(object.NewInstance(), nullptr);
    EXPECT_EQ(TqBaseObjectNewFunc(), nullptr);
    EXPECT_EQ(object.ClassInfo()->NewObject(), nullptr);
}

TEST(TqBaseObject, HasADescriptorWithoutAParent) {
    const TqBaseObject object;
    TqClassInfo* info = object.ClassInfo();
    ASSERT_NE(info, nullptr);
    EXPECT_STREQ(info->name.data, "TqBaseObject");
    EXPECT_EQ(info->parent, nullptr);
    EXPECT_EQ(info->createFunc, &TqBaseObjectNewFunc);
}

TEST(TqBaseObject, HasOneDescriptorForAll) {
    const TqBaseObject object, other;
    EXPECT_EQ(object.ClassInfo(), other.ClassInfo());
    EXPECT_EQ(object.ClassInfo(), TqBaseObject::TqBaseObjectInfo);
    EXPECT_EQ(object.ClassInfo(), TqBaseObject::TqBaseObjectInitInfo());
}

TEST(TqBaseObject, IsAOfADescriptorTellsKinship) {
    const TqBaseObject object;
    EXPECT_EQ(object.IsA(TqBaseObject::TqBaseObjectInitInfo()), 1);
    EXPECT_EQ(object.IsA(TqCallback::TqCallbackInitInfo()), 0);
}

TEST(TqBaseObject, IsAOfANullDescriptorIsReportedAndFalse) {
    const TqBaseObject object;
    EXPECT_EQ(object.IsA(static_cast<TqClassInfo*>(nullptr)), 0);
    EXPECT_EQ(TakeReports(), Reports({"TqBaseObject"}));
}

TEST(TqBaseObject, IsAOfANullNameIsReportedAndFalse) {
    const TqBaseObject object;
    EXPECT_EQ(object.IsA(static_cast<const char*>(nullptr)), 0);
    EXPECT_EQ(TakeReports(), Reports({"TqBaseObject"}));
}

TEST(TqBaseObject, IsAOfANameAsksTheRegistry) {
    const TqBaseObject object;
    EXPECT_EQ(object.IsA("TqBaseObject"), 0);
    {
        const Registered registered(TqBaseObject::TqBaseObjectInitInfo());
        EXPECT_EQ(object.IsA("TqBaseObject"), 1);
        EXPECT_EQ(object.IsA("tqbaseobject"), 0);
    }
    EXPECT_EQ(object.IsA("TqBaseObject"), 0);
}

TEST(TqBaseObject, IsAOfAnObjectWithoutADescriptorIsReportedAndFalse) {
    const Nameless object;
    EXPECT_EQ(object.IsA(TqBaseObject::TqBaseObjectInitInfo()), 0);
    EXPECT_EQ(TakeReports(), Reports({"TqBaseObject"}));
    EXPECT_EQ(object.IsA("TqBaseObject"), 0);
    EXPECT_EQ(TakeReports(), Reports({"TqBaseObject"}));
}

TEST(TqBaseObject, IsAReportsAMissingArgumentAndAMissingDescriptorEach) {
    const Nameless object;
    EXPECT_EQ(object.IsA(static_cast<TqClassInfo*>(nullptr)), 0);
    EXPECT_EQ(TakeReports(), Reports({"TqBaseObject", "TqBaseObject"}));
    EXPECT_EQ(object.IsA(static_cast<const char*>(nullptr)), 0);
    EXPECT_EQ(TakeReports(), Reports({"TqBaseObject", "TqBaseObject"}));
}

// A descriptor that answers for itself, and an object that has it.
class Boaster : public TqBaseObject {
public:
    class Info : public TqClassInfo {
    public:
        Info() : TqClassInfo("Boaster", nullptr, nullptr) {}
        int IsA(const char*) override { return 17; }
        int IsA(TqClassInfo*) override { return 18; }
    };

    TqClassInfo* ClassInfo() const override { return &info; }

    mutable Info info;
};

TEST(TqBaseObject, IsAIsAnsweredByTheDescriptorsOwnVirtualIsA) {
    const Boaster object;
    EXPECT_EQ(object.IsA("whatever"), 17);
    EXPECT_EQ(object.IsA(TqCallback::TqCallbackInitInfo()), 18);
}

TEST(TqBaseObject, NextSeqNumIsOneAndStaysSo) {
    EXPECT_EQ(nextSeqNumAtLoad, 1u);
    const TqBaseObject object;
    const TqBaseObject copy(object);
    EXPECT_EQ(copy.seqNum, 0u);
    EXPECT_EQ(TqBaseObject::nextSeqNum, 1u);
}

TEST(TqBaseObject, CountingNullDoesNothing) {
    TqBaseObject::IncrementRefCount(nullptr, 0);
    TqBaseObject::IncrementRefCount(nullptr, 9);
    EXPECT_EQ(TqBaseObject::DecrementRefCount(nullptr, 0), 0);
    EXPECT_EQ(TqBaseObject::DecrementRefCount(nullptr, 9), 0);
}

TEST(TqBaseObject, LastReferenceDeletes) {
    int deaths = 0;
    TqBaseObject* object = new Mortal(deaths);
    TqBaseObject::IncrementRefCount(object, object->seqNum);
    EXPECT_EQ(object->refCount, 1);
    EXPECT_EQ(deaths, 0);
    EXPECT_EQ(TqBaseObject::DecrementRefCount(object, object->seqNum), 1);
    EXPECT_EQ(deaths, 1);
}

TEST(TqBaseObject, ReferenceThatIsNotTheLastDoesNotDelete) {
    int deaths = 0;
    TqBaseObject* object = new Mortal(deaths);
    Keep(object);
    Keep(object);
    EXPECT_EQ(Drop(object), 0);
    EXPECT_EQ(object->refCount, 1);
    EXPECT_EQ(object->destroying, 0);
    EXPECT_EQ(deaths, 0);
    EXPECT_EQ(Drop(object), 1);
    EXPECT_EQ(deaths, 1);
}

TEST(TqBaseObject, DestructorRunsUnlockedAndMarked) {
    int deaths = 0;
    TqBaseObject* object = nullptr;
    object = new Mortal(deaths, [&object] {
        EXPECT_EQ(object->destroying, 1);
        EXPECT_EQ(object->refCount, 0);
        EXPECT_EQ(object->self, object);
        EXPECT_EQ(object->objectMutex.Lock(), 0) << "still held by the count operation";
        EXPECT_EQ(object->objectMutex.Unlock(), 0);
    });
    Keep(object);
    EXPECT_EQ(Drop(object), 1);
    EXPECT_EQ(deaths, 1);
}

TEST(TqBaseObject, CountingAnObjectThatIsBeingDeletedIsReportedAndCounts) {
    int deaths = 0;
    TqBaseObject* object = nullptr;
    object = new Mortal(deaths, [&object] {
        Keep(object);
        EXPECT_EQ(TakeReports(), Reports({"TqBaseObject"}));
        EXPECT_EQ(object->refCount, 1);
    });
    Keep(object);
    EXPECT_EQ(Drop(object), 1);
    EXPECT_EQ(TakeReports(), Reports({"TqBaseObject"})) << "the reference taken in the end remains";
    EXPECT_EQ(deaths, 1);
}

TEST(TqBaseObject, OwnStampIsNotReported) {
    TqBaseObject object;
    object.seqNum = 0x80000001u;
    TqBaseObject::IncrementRefCount(&object, 0x80000001u);
    TqBaseObject::IncrementRefCount(&object, 0x80000001u);
    EXPECT_EQ(TqBaseObject::DecrementRefCount(&object, 0x80000001u), 0);
    EXPECT_EQ(object.refCount, 1);
    object.refCount = 0;
}

// A fault of an object that both count operations report before they count all the same.
void ExpectCountedAndReported(TqBaseObject& object, unsigned int stamp, const Reports& reports) {
    object.refCount = 5;
    TqBaseObject::IncrementRefCount(&object, stamp);
    EXPECT_EQ(TakeReports(), reports);
    EXPECT_EQ(object.refCount, 6);
    EXPECT_EQ(TqBaseObject::DecrementRefCount(&object, stamp), 0);
    EXPECT_EQ(TakeReports(), reports);
    EXPECT_EQ(object.refCount, 5);
    object.refCount = 0;
    object.self = &object;
}

TEST(TqBaseObject, AnotherStampIsReportedAndCounted) {
    TqBaseObject object;
    object.seqNum = 7;
    ExpectCountedAndReported(object, 8, {"TqBaseObject"});
    ExpectCountedAndReported(object, 0, {"TqBaseObject"});
}

TEST(TqBaseObject, AForeignSelfIsReportedAndCounted) {
    TqBaseObject object, other;
    object.self = &other;
    ExpectCountedAndReported(object, 0, {"TqBaseObject"});
    object.self = nullptr;
    ExpectCountedAndReported(object, 0, {"TqBaseObject"});
}

TEST(TqBaseObject, AnObjectMarkedAsBeingDestroyedIsReportedAndCounted) {
    TqBaseObject object;
    object.destroying = 1;
    ExpectCountedAndReported(object, 0, {"TqBaseObject"});
}

TEST(TqBaseObject, EachFaultOfACountedObjectIsReportedByItself) {
    TqBaseObject object;
    object.self = nullptr;
    object.destroying = 1;
    ExpectCountedAndReported(object, 1, {"TqBaseObject", "TqBaseObject", "TqBaseObject"});
}

TEST(TqBaseObject, LastReferenceDeletesWhateverWasReported) {
    int deaths = 0;
    TqBaseObject* object = new Mortal(deaths);
    Keep(object);
    EXPECT_EQ(TqBaseObject::DecrementRefCount(object, 99), 1);
    EXPECT_EQ(TakeReports(), Reports({"TqBaseObject"}));
    EXPECT_EQ(deaths, 1);
}

TEST(TqBaseObject, MutexThatTheCallerHoldsIsReportedAndCountingGoesOn) {
    TqBaseObject object;
    ASSERT_EQ(object.objectMutex.Lock(), 0);
    Keep(&object);
    EXPECT_EQ(TakeReports(), Reports({"TqBaseObject"}));
    EXPECT_EQ(object.refCount, 1);
    EXPECT_EQ(object.objectMutex.Unlock(), EPERM) << "the operation has given it back";
    object.refCount = 0;
}

TEST(TqBaseObject, CountBelowZeroDeletesNothing) {
    int deaths = 0;
    {
        Mortal object(deaths);
        EXPECT_EQ(Drop(&object), 0);
        EXPECT_EQ(Drop(&object), 0);
        EXPECT_EQ(object.refCount, -2);
        EXPECT_EQ(object.destroying, 0);
        Keep(&object);
        Keep(&object);
        EXPECT_EQ(object.refCount, 0);
        EXPECT_EQ(deaths, 0);
    }
    EXPECT_EQ(deaths, 1);
}

}  // namespace
