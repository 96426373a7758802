#include "TqClassInfo.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <type_traits>
#include <typeinfo>

#include "Objects.h"
#include "Reports.h"
#include "TqCallback.h"
#include "TqClassRegistry.h"

namespace {

static_assert(std::is_base_of<TqBaseObject, TqClassInfo>::value, "");

TqBaseObject* NewPlain() {
    return new TqBaseObject;
}

TEST(TqClassInfo, HoldsWhatItWasGiven) {
    TqClassInfo parent("Parent", nullptr, nullptr);
    const TqClassInfo info("Child", NewPlain, &parent);
    EXPECT_STREQ(info.name.data, "Child");
    EXPECT_EQ(info.name.Length(), 5u);
    EXPECT_EQ(info.createFunc, NewPlain);
    EXPECT_EQ(info.parent, &parent);
    EXPECT_EQ(info.tallyA.value, 0);
    EXPECT_EQ(info.tallyB.value, 0);
    EXPECT_EQ(info.refCount, 0);
}

TEST(TqClassInfo, CopiesItsName) {
    char name[] = "Child";
    const TqClassInfo info(name, nullptr, nullptr);
    name[0] = 'W';
    EXPECT_STREQ(info.name.data, "Child");
}

TEST(TqClassInfo, ANameMayBeLong) {
    const std::string name(500, 'x');
    const TqClassInfo info(name.c_str(), nullptr, nullptr);
    EXPECT_EQ(info.name.data, name);
}

TEST(TqClassInfo, ANullNameIsTheEmptyOne) {
    const TqClassInfo info(nullptr, nullptr, nullptr);
    EXPECT_STREQ(info.name.data, "");
    EXPECT_EQ(info.name.Length(), 0u);
}

TEST(TqClassInfo, TakesNoReferenceOnItsParent) {
    TqClassInfo parent("Parent", nullptr, nullptr);
    {
        const TqClassInfo info("Child", nullptr, &parent);
        EXPECT_EQ(parent.refCount, 0);
    }
    EXPECT_EQ(parent.refCount, 0);
}

TEST(TqClassInfo, EntersNoRegistry) {
    const unsigned int count = TqClassRegistry::GetRegistry()->classList.count;
    const TqClassInfo info("EntersNoRegistry", nullptr, nullptr);
    EXPECT_EQ(TqClassRegistry::GetRegistry()->classList.count, count);
    EXPECT_EQ(TqClassRegistry::GetRegistry()->ClassInfo("EntersNoRegistry"), nullptr);
}

TEST(TqClassInfo, CopyIsReportedAndEmpty) {
    TqClassInfo parent("Parent", nullptr, nullptr);
    TqClassInfo info("Child", NewPlain, &parent);
    info.tallyA.value = 3;
    info.tallyB.value = 4;
    const TqClassInfo copy(info);
    EXPECT_EQ(TakeReports(), Reports({"TqClassInfo"}));
    EXPECT_STREQ(copy.name.data, "");
    EXPECT_EQ(copy.createFunc, nullptr);
    EXPECT_EQ(copy.parent, nullptr);
    EXPECT_EQ(copy.tallyA.value, 0);
    EXPECT_EQ(copy.tallyB.value, 0);
    EXPECT_EQ(copy.self, &copy);
    EXPECT_EQ(copy.refCount, 0);
}

TEST(TqClassInfo, CopyOfADescriptorBeingDestroyedIsReportedOnce) {
    TqClassInfo info("Child", nullptr, nullptr);
    info.destroying = 1;
    const TqClassInfo copy(info);
    EXPECT_EQ(TakeReports(), Reports({"TqClassInfo"}));
}

TEST(TqClassInfo, AssigningIsReportedAndChangesNothing) {
    TqClassInfo parent("Parent", nullptr, nullptr);
    TqClassInfo info("Child", NewPlain, &parent);
    info.tallyA.value = 3;
    const TqClassInfo other("Other", nullptr, nullptr);
    EXPECT_EQ(&(info = other), &info);
    EXPECT_EQ(TakeReports(), Reports({"TqClassInfo"}));
    EXPECT_STREQ(info.name.data, "Child");
    EXPECT_EQ(info.createFunc, NewPlain);
    EXPECT_EQ(info.parent, &parent);
    EXPECT_EQ(info.tallyA.value, 3);
}

TEST(TqClassInfo, DestructorClearsFactoryParentAndTalliesInTheMemory) {
    TqClassInfo parent("Parent", nullptr, nullptr);
    Grave<TqClassInfo> info("Child", NewPlain, &parent);
    info->tallyA.value = 3;
    info->tallyB.value = 4;
    info->seqNum = 7;
    const int* const tallyA = &info->tallyA.value;
    const int* const tallyB = &info->tallyB.value;
    info.Bury();
    EXPECT_EQ(info.Left(&TqClassInfo::createFunc), nullptr);
    EXPECT_EQ(info.Left(&TqClassInfo::parent), nullptr);
    EXPECT_EQ(info.Left(&TqClassInfo::self), nullptr);
    EXPECT_EQ(info.Left(&TqClassInfo::seqNum), 0u);
    int left;
    std::memcpy(&left, tallyA, sizeof left);
    EXPECT_EQ(left, 0);
    std::memcpy(&left, tallyB, sizeof left);
    EXPECT_EQ(left, 0);
}

TEST(TqClassInfo, DestroyingOneThatIsReferencedIsReported) {
    {
        TqClassInfo info("Child", nullptr, nullptr);
        Keep(&info);
    }
    EXPECT_EQ(TakeReports(), Reports({"TqBaseObject"}));
}

TEST(TqClassInfo, NewObjectWithoutAFactoryIsNull) {
    const TqClassInfo info("Child", nullptr, nullptr);
    EXPECT_EQ(info.NewObject(), nullptr);
}

TEST(TqClassInfo, NewObjectCallsTheFactoryEachTime) {
    const TqClassInfo info("Child", NewPlain, nullptr);
    const std::unique_ptr<TqBaseObject> object(info.NewObject());
    const std::unique_ptr<TqBaseObject> other(info.NewObject());
    ASSERT_NE(object, nullptr);
    ASSERT_NE(other, nullptr);
    EXPECT_NE(object, other);
    EXPECT_EQ(object->refCount, 0);
}

TEST(TqClassInfo, SelfTestGivesZero) {
    TqClassInfo info("Child", NewPlain, nullptr);
    EXPECT_EQ(info.SelfTest(), 0);
}

TEST(TqClassInfo, ItsOwnClassIsTheBaseObjects) {
    const TqClassInfo info("Child", nullptr, nullptr);
    const TqBaseObject& object = info;
    EXPECT_EQ(object.ClassInfo(), TqBaseObject::TqBaseObjectInitInfo());
    EXPECT_EQ(object.IsA(TqBaseObject::TqBaseObjectInitInfo()), 1);
}

TEST(TqClassInfo, CloneIsABareBaseObject) {
    const TqClassInfo info("Child", NewPlain, nullptr);
    const std::unique_ptr<TqBaseObject> clone(info.Clone());
    const TqBaseObject& cloned = *clone;
    EXPECT_TRUE(typeid(cloned) == typeid(TqBaseObject));
    EXPECT_EQ(TakeReports(), Reports()) << "not a copy of a descriptor";
}

TEST(TqClassInfo, DescribesCallbacks) {
    const TqClassInfo* info = TqCallback::TqCallbackInitInfo();
    EXPECT_STREQ(info->name.data, "TqCallback");
    EXPECT_EQ(info->parent, TqBaseObject::TqBaseObjectInitInfo());
    EXPECT_EQ(info->NewObject(), nullptr);
}

// Root - Middle - Leaf, and Stranger beside them.
class TqClassInfoKinship : public testing::Test {
protected:
    TqClassInfo root{"Root", nullptr, nullptr};
    TqClassInfo middle{"Middle", nullptr, &root};
    TqClassInfo leaf{"Leaf", nullptr, &middle};
    TqClassInfo stranger{"Stranger", nullptr, &root};
};

TEST_F(TqClassInfoKinship, AClassIsAKindOfItselfAndItsAncestors) {
    EXPECT_EQ(leaf.IsA(&leaf), 1);
    EXPECT_EQ(leaf.IsA(&middle), 1);
    EXPECT_EQ(leaf.IsA(&root), 1);
    EXPECT_EQ(root.IsA(&root), 1);
}

TEST_F(TqClassInfoKinship, AClassIsNoKindOfOthers) {
    EXPECT_EQ(leaf.IsA(&stranger), 0);
    EXPECT_EQ(root.IsA(&leaf), 0);
    EXPECT_EQ(middle.IsA(&leaf), 0);
    EXPECT_EQ(stranger.IsA(&middle), 0);
}

TEST_F(TqClassInfoKinship, NullIsNobodysAncestorAndIsNotReported) {
    const Registered registered(&root);
    EXPECT_EQ(leaf.IsA(static_cast<TqClassInfo*>(nullptr)), 0);
    EXPECT_EQ(leaf.IsA(static_cast<const char*>(nullptr)), 0);
    EXPECT_EQ(TakeReports(), Reports());
}

TEST_F(TqClassInfoKinship, DescriptorsAreComparedByIdentityNotByName) {
    TqClassInfo namesake("Root", nullptr, nullptr);
    EXPECT_EQ(leaf.IsA(&namesake), 0);
    const Registered registered(&namesake);
    EXPECT_EQ(leaf.IsA("Root"), 0);
    EXPECT_EQ(namesake.IsA("Root"), 1);
}

TEST_F(TqClassInfoKinship, ANameThatIsNotRegisteredIsNeverMatched) {
    EXPECT_EQ(leaf.IsA("Root"), 0);
    EXPECT_EQ(leaf.IsA("Leaf"), 0) << "its own name";
    EXPECT_EQ(leaf.IsA(""), 0);
}

TEST_F(TqClassInfoKinship, ARegisteredNameIsMatchedByTheClassAndItsDescendants) {
    const Registered registered(&middle);
    EXPECT_EQ(leaf.IsA("Middle"), 1);
    EXPECT_EQ(middle.IsA("Middle"), 1);
    EXPECT_EQ(root.IsA("Middle"), 0);
    EXPECT_EQ(stranger.IsA("Middle"), 0);
    EXPECT_EQ(leaf.IsA("Leaf"), 0) << "not registered itself";
}

TEST_F(TqClassInfoKinship, ANameIsMatchedWholeAndCaseSensitively) {
    const Registered registered(&middle);
    EXPECT_EQ(leaf.IsA("middle"), 0);
    EXPECT_EQ(leaf.IsA("MIDDLE"), 0);
    EXPECT_EQ(leaf.IsA("Midd"), 0);
    EXPECT_EQ(leaf.IsA("Middles"), 0);
    EXPECT_EQ(leaf.IsA(""), 0);
}

TEST_F(TqClassInfoKinship, TheFirstOfTwoRegisteredNamesakesCounts) {
    TqClassInfo namesake("Middle", nullptr, nullptr);
    const Registered first(&namesake), second(&middle);
    EXPECT_EQ(leaf.IsA("Middle"), 0);
    EXPECT_EQ(namesake.IsA("Middle"), 1);
}

TEST_F(TqClassInfoKinship, AskingLeavesNoWalkBehind) {
    const Registered registered(&middle);
    leaf.IsA("Middle");
    leaf.IsA("Nothing");
    EXPECT_EQ(TqClassRegistry::GetRegistry()->classList.walkDepth, 0u);
}

}  // namespace
