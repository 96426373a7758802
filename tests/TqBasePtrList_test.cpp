#include "TqBasePtrList.h"

#include <gtest/gtest.h>

#include <memory>
#include <type_traits>
#include <typeinfo>

#include "Objects.h"
#include "Reports.h"

namespace {

static_assert(std::is_base_of<TqBaseList, TqBasePtrList>::value, "");
static_assert(std::is_base_of<TqBasePtrList, TqPtrList<int>>::value, "");
static_assert(sizeof(TqBasePtrList) == sizeof(TqBaseList), "no field is added");
static_assert(sizeof(TqPtrList<int>) == sizeof(TqBaseList), "no field is added");
static_assert(std::is_same<decltype(std::declval<TqPtrList<int>&>().RemoveItem(1u)), void*>::value,
              "");

int things[4];
void* const p = &things[0];
void* const q = &things[1];
void* const r = &things[2];
void* const s = &things[3];

template <class List>
void Append(List& list, const Items& items) {
    for (void* item : items) list.InsertSlot(list.count + 1, item);
}

// The list p, q, r.
class TqBasePtrListOfThree : public testing::Test {
protected:
    TqBasePtrListOfThree() { Append(list, {p, q, r}); }

    TqBasePtrList list;
};

// A list that notes what is removed from it.
class Noting : public TqBasePtrList {
public:
    void RemoveSlot(unsigned int index) override {
        removed.push_back(index);
        TqBasePtrList::RemoveSlot(index);
    }
    std::vector<unsigned int> removed;
};

TEST(TqBasePtrList, StartsEmpty) {
    const TqBasePtrList list;
    EXPECT_EQ(list.count, 0u);
    EXPECT_EQ(list.capacity, 16u);
    EXPECT_EQ(list.walkDepth, 0u);
}

TEST_F(TqBasePtrListOfThree, RemoveByIndexHandsTheItemBack) {
    EXPECT_EQ(list.RemoveItem(2u), q);
    EXPECT_EQ(ItemsOf(list), Items({p, r}));
    EXPECT_EQ(list.RemoveItem(2u), r);
    EXPECT_EQ(list.RemoveItem(1u), p);
    EXPECT_EQ(list.count, 0u);
    EXPECT_EQ(TakeReports(), Reports());
}

TEST_F(TqBasePtrListOfThree, RemoveByIndexZeroIsReportedAndDropsTheFirstItem) {
    EXPECT_EQ(list.RemoveItem(0u), nullptr);
    EXPECT_EQ(TakeReports(), Reports({"TqBasePtrList"}));
    EXPECT_EQ(ItemsOf(list), Items({q, r}));
    EXPECT_EQ(list.slots[0], p);
}

TEST_F(TqBasePtrListOfThree, RemoveByIndexZeroHandsBackWhatStandsInEntryZero) {
    list.InsertSlot(0, s);
    EXPECT_EQ(list.RemoveItem(0u), s);
    EXPECT_EQ(TakeReports(), Reports({"TqBasePtrList"}));
    EXPECT_EQ(list.slots[0], nullptr);
    EXPECT_EQ(ItemsOf(list), Items({p, q, r}));
}

TEST(TqBasePtrList, RemoveByIndexZeroFromAnEmptyListWrapsTheCountAround) {
    TqBasePtrList list;
    EXPECT_EQ(list.RemoveItem(0u), nullptr);
    EXPECT_EQ(TakeReports(), Reports({"TqBasePtrList"}));
    EXPECT_EQ(list.count, 0xFFFFFFFFu);
    list.count = 0;
}

TEST_F(TqBasePtrListOfThree, RemoveByAnIndexPastTheItemsIsReportedAndRemovesNothing) {
    for (const unsigned int index : {4u, 16u, 1000000u, 0xFFFFFFFFu}) {
        EXPECT_EQ(list.RemoveItem(index), nullptr);
        EXPECT_EQ(TakeReports(), Reports({"TqBasePtrList"}));
        EXPECT_EQ(ItemsOf(list), Items({p, q, r}));
    }
}

TEST(TqBasePtrList, RemoveByIndexFromAnEmptyListIsReportedAndRemovesNothing) {
    TqBasePtrList list;
    EXPECT_EQ(list.RemoveItem(1u), nullptr);
    EXPECT_EQ(TakeReports(), Reports({"TqBasePtrList"}));
    EXPECT_EQ(list.count, 0u);
}

TEST_F(TqBasePtrListOfThree, RemoveByIndexFromAMissingArrayGivesNull) {
    void** const slots = list.slots;
    list.slots = nullptr;
    EXPECT_EQ(list.RemoveItem(3u), nullptr);
    EXPECT_EQ(TakeReports(), Reports());
    EXPECT_EQ(list.count, 2u);
    list.slots = slots;
}

TEST_F(TqBasePtrListOfThree, RemoveByPointerHandsTheItemBack) {
    EXPECT_EQ(list.RemoveItem(q), q);
    EXPECT_EQ(ItemsOf(list), Items({p, r}));
    EXPECT_EQ(list.RemoveItem(p), p);
    EXPECT_EQ(list.RemoveItem(r), r);
    EXPECT_EQ(list.count, 0u);
}

TEST(TqBasePtrList, RemoveByPointerTakesTheFirstOfTwo) {
    TqBasePtrList list;
    Append(list, {p, q, r, q});
    EXPECT_EQ(list.RemoveItem(q), q);
    EXPECT_EQ(ItemsOf(list), Items({p, r, q}));
}

TEST_F(TqBasePtrListOfThree, RemoveByAPointerThatIsNotThereChangesNothing) {
    EXPECT_EQ(list.RemoveItem(s), nullptr);
    EXPECT_EQ(TakeReports(), Reports());
    EXPECT_EQ(ItemsOf(list), Items({p, q, r}));
}

TEST(TqBasePtrList, RemoveByPointerFromAnEmptyListGivesNull) {
    TqBasePtrList list;
    EXPECT_EQ(list.RemoveItem(p), nullptr);
    EXPECT_EQ(list.count, 0u);
}

TEST_F(TqBasePtrListOfThree, RemoveByNullIsReportedAndLookedFor) {
    EXPECT_EQ(list.RemoveItem(static_cast<void*>(nullptr)), nullptr);
    EXPECT_EQ(TakeReports(), Reports({"TqBasePtrList"}));
    EXPECT_EQ(ItemsOf(list), Items({p, q, r}));
    list.slots[2] = nullptr;
    EXPECT_EQ(list.RemoveItem(static_cast<void*>(nullptr)), nullptr);
    EXPECT_EQ(TakeReports(), Reports({"TqBasePtrList"}));
    EXPECT_EQ(ItemsOf(list), Items({p, r})) << "the null slot is gone";
}

TEST(TqBasePtrList, RemoveByNullFromAnEmptyListIsReported) {
    TqBasePtrList list;
    EXPECT_EQ(list.RemoveItem(static_cast<void*>(nullptr)), nullptr);
    EXPECT_EQ(TakeReports(), Reports({"TqBasePtrList"}));
    EXPECT_EQ(list.count, 0u);
}

TEST(TqBasePtrList, BothRemovalsGoThroughTheVirtualRemoveSlot) {
    Noting list;
    Append(list, {p, q, r});
    list.RemoveItem(2u);
    list.RemoveItem(r);
    list.RemoveItem(s);
    EXPECT_EQ(list.removed, std::vector<unsigned int>({2, 2}));
    EXPECT_EQ(list.RemoveItem(0u), nullptr);
    EXPECT_EQ(list.removed.back(), 0u);
    EXPECT_EQ(TakeReports(), Reports({"TqBasePtrList"}));
}

TEST_F(TqBasePtrListOfThree, CopyIsReportedAndComplete) {
    list.PreAlloc(40);
    list.walkDepth = 1;
    TqBasePtrList copy(list);
    EXPECT_EQ(TakeReports(), Reports({"TqBasePtrList"}));
    EXPECT_EQ(ItemsOf(copy), Items({p, q, r}));
    EXPECT_EQ(copy.capacity, 40u);
    EXPECT_EQ(copy.walkDepth, 0u);
    EXPECT_EQ(copy.RemoveItem(2u), q);
    EXPECT_EQ(ItemsOf(list), Items({p, q, r}));
    list.walkDepth = 0;
}

TEST_F(TqBasePtrListOfThree, AssigningIsNotReported) {
    TqBasePtrList target;
    Append(target, {s});
    EXPECT_EQ(&(target = list), &target);
    EXPECT_EQ(TakeReports(), Reports());
    EXPECT_EQ(ItemsOf(target), Items({p, q, r}));
    EXPECT_EQ(ItemsOf(list), Items({p, q, r}));
}

TEST_F(TqBasePtrListOfThree, AssigningDuringAWalkIsReportedByTheBaseList) {
    TqBasePtrList target;
    target.walkDepth = 1;
    target = list;
    EXPECT_EQ(TakeReports(), Reports({"TqBaseList"}));
    EXPECT_EQ(ItemsOf(target), Items({p, q, r}));
    target.walkDepth = 0;
}

TEST(TqBasePtrList, DestroyingDuringAWalkIsReportedByTheBaseList) {
    {
        TqBasePtrList list;
        list.walkDepth = 1;
    }
    EXPECT_EQ(TakeReports(), Reports({"TqBaseList"}));
}

TEST(TqBasePtrList, NeverDeletesAnItem) {
    int deaths = 0;
    Mortal item(deaths);
    {
        TqBasePtrList list;
        Append(list, {&item, &item, &item});
        list.RemoveItem(&item);
        list.RemoveItem(1u);
        EXPECT_EQ(deaths, 0);
        list.RemoveAllItems();
        EXPECT_EQ(deaths, 0);
        Append(list, {&item});
    }
    EXPECT_EQ(deaths, 0);
    EXPECT_EQ(item.refCount, 0);
}

TEST(TqBasePtrList, DestructorForgetsTheArrayInTheMemory) {
    Grave<TqBasePtrList> list;
    list.Bury();
    EXPECT_EQ(list.Left(&TqBaseList::slots), nullptr);
    EXPECT_EQ(list.Left(&TqBaseObject::self), nullptr);
}

TEST_F(TqBasePtrListOfThree, ItsClassAndCloneAreTheBaseObjects) {
    EXPECT_EQ(list.ClassInfo(), TqBaseObject::TqBaseObjectInitInfo());
    const std::unique_ptr<TqBaseObject> clone(list.Clone());
    const TqBaseObject& cloned = *clone;
    EXPECT_TRUE(typeid(cloned) == typeid(TqBaseObject));
    EXPECT_EQ(TakeReports(), Reports());
}

TEST(TqPtrList, IsThePointerListOfAType) {
    int numbers[] = {10, 20, 30};
    TqPtrList<int> list;
    for (int& number : numbers) list.InsertSlot(list.count + 1, &number);
    EXPECT_EQ(*static_cast<int*>(list.slots[2]), 20);
    EXPECT_EQ(list.RemoveItem(2u), &numbers[1]);
    EXPECT_EQ(list.RemoveItem(&numbers[2]), &numbers[2]);
    EXPECT_EQ(list.count, 1u);
}

TEST(TqPtrList, CopiesWithAReportAndAssignsWithout) {
    TqPtrList<int> list, target;
    list.InsertSlot(1, p);
    const TqPtrList<int> copy(list);
    EXPECT_EQ(TakeReports(), Reports({"TqBasePtrList"}));
    EXPECT_EQ(ItemsOf(copy), Items({p}));
    EXPECT_EQ(&(target = list), &target);
    EXPECT_EQ(TakeReports(), Reports());
    EXPECT_EQ(ItemsOf(target), Items({p}));
}

}  // namespace
