#include "TqBaseList.h"

#include <gtest/gtest.h>

#include <memory>
#include <type_traits>
#include <typeinfo>
#include <vector>

#include "Objects.h"
#include "Reports.h"
#include "SystemCalls.h"

namespace {

static_assert(std::is_base_of<TqBaseObject, TqBaseList>::value, "");
static_assert(std::is_same<decltype(TqBaseList::capacity), unsigned int>::value, "");
static_assert(std::is_same<decltype(TqBaseList::count), unsigned int>::value, "");
static_assert(std::is_same<decltype(TqBaseList::slots), void**>::value, "");
static_assert(std::is_same<decltype(TqBaseList::walkDepth), unsigned int>::value, "");
static_assert(std::is_same<decltype(TqBaseList::allocInc), unsigned int>::value, "");

// Things to point at. The list does not look at them.
int things[100];
void* const p = &things[0];
void* const q = &things[1];
void* const r = &things[2];
void* const s = &things[3];

void Append(TqBaseList& list, const Items& items) {
    for (void* item : items) list.InsertSlot(list.count + 1, item);
}

// The list p, q, r.
class TqBaseListOfThree : public testing::Test {
protected:
    TqBaseListOfThree() { Append(list, {p, q, r}); }

    TqBaseList list;
};

TEST(TqBaseList, StartsEmptyWithSixteenEntries) {
    Grave<TqBaseList> list;
    EXPECT_EQ(list->capacity, 16u);
    EXPECT_EQ(list->count, 0u);
    EXPECT_EQ(list->walkDepth, 0u);
    ASSERT_NE(list->slots, nullptr);
    EXPECT_EQ(list->slots[0], nullptr);
    EXPECT_EQ(list->refCount, 0);
    EXPECT_EQ(list->self, list.Get());
    list.Bury();
}

TEST(TqBaseList, FindsNothingWhileEmpty) {
    const TqBaseList list;
    EXPECT_EQ(list.FindSlot(p), 0u);
    EXPECT_EQ(TakeReports(), Reports());
    EXPECT_EQ(list.FindSlot(nullptr), 0u);
    EXPECT_EQ(TakeReports(), Reports({"TqBaseList"}));
}

// Growth.

TEST(TqBaseList, GrowsBySixteenEntriesWhenEntryZeroAndTheItemsFillIt) {
    TqBaseList list;
    for (unsigned int i = 1; i <= 64; ++i) {
        list.InsertSlot(i, &things[i]);
        const unsigned int expected = i < 16 ? 16 : i < 32 ? 32 : i < 48 ? 48 : i < 64 ? 64 : 80;
        EXPECT_EQ(list.capacity, expected) << "after " << i;
    }
    for (unsigned int i = 1; i <= 64; ++i) EXPECT_EQ(list.slots[i], &things[i]);
    EXPECT_EQ(list.slots[0], nullptr);
}

TEST(TqBaseList, GrowsWhereTheInsertionIsInTheMiddle) {
    TqBaseList list;
    for (unsigned int i = 1; i <= 15; ++i) list.InsertSlot(i, &things[i]);
    EXPECT_EQ(list.capacity, 16u);
    list.InsertSlot(8, p);
    EXPECT_EQ(list.capacity, 32u);
    EXPECT_EQ(list.slots[7], &things[7]);
    EXPECT_EQ(list.slots[8], p);
    EXPECT_EQ(list.slots[9], &things[8]);
    EXPECT_EQ(list.slots[16], &things[15]);
}

TEST(TqBaseList, AllocIncTellsTheStepAndIsNotRead) {
    EXPECT_EQ(TqBaseList::allocInc, 16u);
    TqBaseList::allocInc = 5;
    TqBaseList list;
    EXPECT_EQ(list.capacity, 16u);
    for (unsigned int i = 1; i <= 16; ++i) list.InsertSlot(i, p);
    EXPECT_EQ(list.capacity, 32u);
    EXPECT_EQ(TqBaseList::allocInc, 5u);
    TqBaseList::allocInc = 16;
}

TEST(TqBaseList, GrowsToTheCountAndSixteenAfterAnOddPreAlloc) {
    TqBaseList list;
    list.PreAlloc(20);
    for (unsigned int i = 1; i <= 19; ++i) list.InsertSlot(i, p);
    EXPECT_EQ(list.capacity, 20u);
    list.InsertSlot(20, p);
    EXPECT_EQ(list.capacity, 36u);
}

TEST_F(TqBaseListOfThree, PreAllocMakesRoomAndKeepsTheItems) {
    list.PreAlloc(100);
    EXPECT_EQ(list.capacity, 100u);
    EXPECT_EQ(ItemsOf(list), Items({p, q, r}));
    EXPECT_EQ(list.slots[0], nullptr);
    for (int i = 3; i < 99; ++i) list.InsertSlot(list.count + 1, s);
    EXPECT_EQ(list.count, 99u);
    EXPECT_EQ(list.capacity, 100u) << "room for one item fewer than entries";
    list.InsertSlot(100, s);
    EXPECT_EQ(list.capacity, 116u);
}

TEST_F(TqBaseListOfThree, PreAllocNeverShrinks) {
    void** const slots = list.slots;
    list.PreAlloc(16);
    list.PreAlloc(15);
    list.PreAlloc(0);
    EXPECT_EQ(list.capacity, 16u);
    EXPECT_EQ(list.slots, slots);
    list.PreAlloc(17);
    EXPECT_EQ(list.capacity, 17u);
    list.PreAlloc(16);
    EXPECT_EQ(list.capacity, 17u);
}

// Insertion.

TEST(TqBaseList, InsertingAtOnePrepends) {
    TqBaseList list;
    Append(list, {q, r});
    list.InsertSlot(1, p);
    EXPECT_EQ(ItemsOf(list), Items({p, q, r}));
}

TEST_F(TqBaseListOfThree, InsertingBehindTheLastAppends) {
    list.InsertSlot(list.count + 1, s);
    EXPECT_EQ(ItemsOf(list), Items({p, q, r, s}));
}

TEST_F(TqBaseListOfThree, InsertingInTheMiddleMovesTheItemsAbove) {
    list.InsertSlot(2, s);
    EXPECT_EQ(ItemsOf(list), Items({p, s, q, r}));
    list.InsertSlot(4, s);
    EXPECT_EQ(ItemsOf(list), Items({p, s, q, s, r}));
    EXPECT_EQ(list.slots[0], nullptr);
}

TEST_F(TqBaseListOfThree, InsertingAtZeroMovesEverythingIntoTheNumberedSlots) {
    list.InsertSlot(0, s);
    EXPECT_EQ(list.count, 4u);
    EXPECT_EQ(list.slots[0], s);
    EXPECT_EQ(ItemsOf(list), Items({nullptr, p, q, r}));
}

TEST(TqBaseList, InsertingAtZeroGrowsAFullListToo) {
    TqBaseList list;
    for (unsigned int i = 1; i <= 15; ++i) list.InsertSlot(i, &things[i]);
    list.InsertSlot(0, p);
    EXPECT_EQ(list.capacity, 32u);
    EXPECT_EQ(list.slots[16], &things[15]);
    EXPECT_EQ(list.slots[2], &things[1]);
    EXPECT_EQ(list.slots[1], nullptr);
}

TEST_F(TqBaseListOfThree, InsertingFurtherUpIsNotTrapped) {
    list.InsertSlot(6, s);
    EXPECT_EQ(list.count, 4u);
    EXPECT_EQ(list.slots[6], s);
    EXPECT_EQ(list.slots[3], r);
}

TEST_F(TqBaseListOfThree, InsertingNullIsReportedAndNotDone) {
    list.InsertSlot(2, nullptr);
    EXPECT_EQ(TakeReports(), Reports({"TqBaseList"}));
    EXPECT_EQ(ItemsOf(list), Items({p, q, r}));
    EXPECT_EQ(list.capacity, 16u);
}

TEST_F(TqBaseListOfThree, TheSamePointerMayStandInSeveralSlots) {
    list.InsertSlot(1, q);
    EXPECT_EQ(ItemsOf(list), Items({q, p, q, r}));
}

// Removal.

TEST_F(TqBaseListOfThree, RemovingTheLastMovesNothing) {
    list.slots[4] = s;
    list.RemoveSlot(3);
    EXPECT_EQ(ItemsOf(list), Items({p, q}));
    EXPECT_EQ(list.slots[3], r);
    EXPECT_EQ(list.slots[4], s);
}

TEST_F(TqBaseListOfThree, RemovingMovesTheItemsAboveDown) {
    list.slots[4] = s;
    list.RemoveSlot(1);
    EXPECT_EQ(ItemsOf(list), Items({q, r}));
    EXPECT_EQ(list.slots[0], nullptr);
    EXPECT_EQ(list.slots[3], r) << "and no more than those";
    list.RemoveSlot(1);
    EXPECT_EQ(ItemsOf(list), Items({r}));
    list.RemoveSlot(1);
    EXPECT_EQ(ItemsOf(list), Items());
}

TEST_F(TqBaseListOfThree, RemovingInTheMiddleKeepsTheItemsBelow) {
    list.RemoveSlot(2);
    EXPECT_EQ(ItemsOf(list), Items({p, r}));
}

TEST_F(TqBaseListOfThree, RemovingKeepsTheCapacity) {
    list.PreAlloc(40);
    list.RemoveSlot(2);
    EXPECT_EQ(list.capacity, 40u);
}

TEST_F(TqBaseListOfThree, RemovingSlotZeroDropsTheFirstItemOutOfTheNumberedSlots) {
    list.RemoveSlot(0);
    EXPECT_EQ(TakeReports(), Reports());
    EXPECT_EQ(ItemsOf(list), Items({q, r}));
    EXPECT_EQ(list.slots[0], p);
}

TEST(TqBaseList, RemovingFromAnEmptyListWrapsTheCountAround) {
    TqBaseList list;
    list.RemoveSlot(0);
    EXPECT_EQ(list.count, 0xFFFFFFFFu);
    list.count = 0;
}

TEST_F(TqBaseListOfThree, RemovingAllKeepsArrayAndCapacity) {
    list.PreAlloc(40);
    void** const slots = list.slots;
    list.RemoveAllItems();
    EXPECT_EQ(list.count, 0u);
    EXPECT_EQ(list.capacity, 40u);
    EXPECT_EQ(list.slots, slots);
    EXPECT_EQ(list.FindSlot(p), 0u);
    Append(list, {r});
    EXPECT_EQ(ItemsOf(list), Items({r}));
}

// Replacing and swapping.

TEST_F(TqBaseListOfThree, ReplacingPutsTheItemIntoTheSlot) {
    list.ReplaceSlot(2, s);
    EXPECT_EQ(ItemsOf(list), Items({p, s, r}));
    list.ReplaceSlot(1, s);
    list.ReplaceSlot(3, s);
    EXPECT_EQ(ItemsOf(list), Items({s, s, s}));
}

TEST_F(TqBaseListOfThree, ReplacingWithNullIsReportedAndNotDone) {
    list.ReplaceSlot(2, nullptr);
    EXPECT_EQ(TakeReports(), Reports({"TqBaseList"}));
    EXPECT_EQ(ItemsOf(list), Items({p, q, r}));
}

TEST_F(TqBaseListOfThree, ReplacingDoesNotCheckTheIndex) {
    list.ReplaceSlot(0, s);
    list.ReplaceSlot(7, s);
    EXPECT_EQ(list.slots[0], s);
    EXPECT_EQ(list.slots[7], s);
    EXPECT_EQ(ItemsOf(list), Items({p, q, r}));
}

TEST_F(TqBaseListOfThree, SwappingExchangesTwoSlots) {
    list.SwapItems(1, 3);
    EXPECT_EQ(ItemsOf(list), Items({r, q, p}));
    list.SwapItems(3, 2);
    EXPECT_EQ(ItemsOf(list), Items({r, p, q}));
    list.SwapItems(2, 2);
    EXPECT_EQ(ItemsOf(list), Items({r, p, q}));
}

TEST_F(TqBaseListOfThree, SwappingWithTheEntryPastTheItemsIsReportedAndDone) {
    list.slots[4] = s;
    list.SwapItems(1, list.count + 1);
    EXPECT_EQ(TakeReports(), Reports({"TqBaseList"}));
    EXPECT_EQ(ItemsOf(list), Items({s, q, r}));
    EXPECT_EQ(list.slots[4], p);
    list.SwapItems(list.count + 1, 2);
    EXPECT_EQ(TakeReports(), Reports({"TqBaseList"}));
    EXPECT_EQ(ItemsOf(list), Items({s, p, r}));
    EXPECT_EQ(list.slots[4], q);
}

// A full array: entry 0 and the items take all that `capacity` says.
TEST(TqBaseList, SwappingWithTheEntryPastTheItemsIsDoneInAFullArray) {
    int item = 0, past = 0;
    for (unsigned int count : {15u, 31u, 47u}) {
        SCOPED_TRACE(count);
        TqBaseList list;
        while (list.count < count) list.InsertSlot(list.count + 1, &item);
        ASSERT_EQ(list.capacity, count + 1);
        list.slots[count + 1] = &past;
        list.SwapItems(1, count + 1);
        EXPECT_EQ(TakeReports(), Reports({"TqBaseList"}));
        EXPECT_EQ(list.slots[1], &past);
        EXPECT_EQ(list.slots[count + 1], &item);
        EXPECT_EQ(list.capacity, count + 1);
        EXPECT_EQ(list.count, count);
    }
}

TEST(TqBaseList, TheEntryPastTheItemsIsThereInACopyAndAfterPreAlloc) {
    int item = 0, past = 0;
    TqBaseList list;
    list.PreAlloc(20);
    while (list.count < 19) list.InsertSlot(list.count + 1, &item);
    TqBaseList copy(list), assigned;
    assigned = list;
    for (TqBaseList* each : {&list, &copy, &assigned}) {
        ASSERT_EQ(each->capacity, 20u);
        each->slots[20] = &past;
        each->SwapItems(20, 2);
        EXPECT_EQ(TakeReports(), Reports({"TqBaseList"}));
        EXPECT_EQ(each->slots[2], &past);
        EXPECT_EQ(each->slots[20], &item);
    }
}

TEST_F(TqBaseListOfThree, SwappingWithEntryZeroIsReportedAndDone) {
    list.SwapItems(0, 1);
    EXPECT_EQ(TakeReports(), Reports({"TqBaseList"}));
    EXPECT_EQ(ItemsOf(list), Items({nullptr, q, r}));
    EXPECT_EQ(list.slots[0], p);
    list.SwapItems(2, 0);
    EXPECT_EQ(TakeReports(), Reports({"TqBaseList"}));
    EXPECT_EQ(ItemsOf(list), Items({nullptr, p, r}));
    EXPECT_EQ(list.slots[0], q);
}

TEST_F(TqBaseListOfThree, SwappingReportsEachIndexByItself) {
    list.slots[4] = s;
    list.SwapItems(0, 4);
    EXPECT_EQ(TakeReports(), Reports({"TqBaseList", "TqBaseList"}));
    EXPECT_EQ(list.slots[0], s);
    EXPECT_EQ(list.slots[4], nullptr);
}

// Search.

TEST_F(TqBaseListOfThree, FindsEachItemAtItsIndex) {
    EXPECT_EQ(list.FindSlot(p), 1u);
    EXPECT_EQ(list.FindSlot(q), 2u);
    EXPECT_EQ(list.FindSlot(r), 3u);
    EXPECT_EQ(list.FindSlot(s), 0u);
}

TEST_F(TqBaseListOfThree, FindsTheFirstOfTwo) {
    Append(list, {q, q});
    EXPECT_EQ(list.FindSlot(q), 2u);
}

TEST_F(TqBaseListOfThree, DoesNotFindWhatStandsPastTheItemsOrInEntryZero) {
    list.slots[0] = s;
    list.slots[4] = s;
    EXPECT_EQ(list.FindSlot(s), 0u);
    list.RemoveSlot(3);
    EXPECT_EQ(list.FindSlot(r), 0u);
}

TEST_F(TqBaseListOfThree, SearchForNullIsReportedAndDone) {
    EXPECT_EQ(list.FindSlot(nullptr), 0u);
    EXPECT_EQ(TakeReports(), Reports({"TqBaseList"}));
    list.slots[2] = nullptr;
    EXPECT_EQ(list.FindSlot(nullptr), 2u);
    EXPECT_EQ(TakeReports(), Reports({"TqBaseList"}));
}

TEST_F(TqBaseListOfThree, AMissingArrayHoldsNulls) {
    void** const slots = list.slots;
    list.slots = nullptr;
    EXPECT_EQ(list.FindSlot(p), 0u);
    EXPECT_EQ(TakeReports(), Reports());
    EXPECT_EQ(list.FindSlot(nullptr), 1u);
    EXPECT_EQ(TakeReports(), Reports({"TqBaseList"}));
    list.slots = slots;
}

// Copies, assignment and the end.

TEST_F(TqBaseListOfThree, CopyHoldsTheSamePointersInItsOwnArray) {
    list.PreAlloc(40);
    list.slots[0] = s;
    list.walkDepth = 2;
    const TqBaseList copy(list);
    EXPECT_EQ(ItemsOf(copy), Items({p, q, r}));
    EXPECT_EQ(copy.slots[0], s) << "entry 0 is copied as well";
    EXPECT_EQ(copy.capacity, 40u);
    EXPECT_EQ(copy.walkDepth, 0u);
    EXPECT_NE(copy.slots, list.slots);
    EXPECT_EQ(list.walkDepth, 2u);
    list.walkDepth = 0;
    list.SwapItems(1, 2);
    EXPECT_EQ(ItemsOf(copy), Items({p, q, r}));
    EXPECT_EQ(ItemsOf(list), Items({q, p, r}));
}

TEST(TqBaseList, CopyOfAnEmptyListIsEmpty) {
    const TqBaseList list;
    const TqBaseList copy(list);
    EXPECT_EQ(copy.count, 0u);
    EXPECT_EQ(copy.capacity, 16u);
    EXPECT_EQ(copy.slots[0], nullptr);
}

TEST(TqBaseList, CopyOfAFullListGrowsLikeIt) {
    TqBaseList list;
    for (unsigned int i = 1; i <= 15; ++i) list.InsertSlot(i, &things[i]);
    TqBaseList copy(list);
    EXPECT_EQ(ItemsOf(copy), ItemsOf(list));
    copy.InsertSlot(16, p);
    EXPECT_EQ(copy.capacity, 32u);
    EXPECT_EQ(list.capacity, 16u);
}

TEST_F(TqBaseListOfThree, CopyIsAnObjectOfItsOwn) {
    list.refCount = 3;
    const TqBaseList copy(list);
    EXPECT_EQ(copy.refCount, 0);
    EXPECT_EQ(copy.self, &copy);
    list.refCount = 0;
}

TEST_F(TqBaseListOfThree, CopyOfAListBeingDestroyedIsReported) {
    list.destroying = 1;
    const TqBaseList copy(list);
    EXPECT_EQ(TakeReports(), Reports({"TqBaseObject"}));
    EXPECT_EQ(ItemsOf(copy), Items({p, q, r}));
}

TEST_F(TqBaseListOfThree, AssigningTakesItemsAndCapacity) {
    TqBaseList target;
    Append(target, {s, s, s, s, s});
    target.PreAlloc(60);
    list.slots[0] = s;
    EXPECT_EQ(&(target = list), &target);
    EXPECT_EQ(ItemsOf(target), Items({p, q, r}));
    EXPECT_EQ(target.slots[0], s);
    EXPECT_EQ(target.capacity, 16u) << "also where it had more";
    EXPECT_NE(target.slots, list.slots);
    EXPECT_EQ(ItemsOf(list), Items({p, q, r}));
}

TEST_F(TqBaseListOfThree, AssigningKeepsTheObjectsOwnCountAndWalks) {
    TqBaseList target;
    target.refCount = 2;
    list.walkDepth = 3;
    target = list;
    EXPECT_EQ(target.refCount, 2);
    EXPECT_EQ(target.self, &target);
    EXPECT_EQ(target.walkDepth, 0u);
    target.refCount = 0;
    list.walkDepth = 0;
}

TEST_F(TqBaseListOfThree, AssigningDuringAWalkIsReportedAndDone) {
    TqBaseList target;
    target.walkDepth = 1;
    target = list;
    EXPECT_EQ(TakeReports(), Reports({"TqBaseList"}));
    EXPECT_EQ(ItemsOf(target), Items({p, q, r}));
    EXPECT_EQ(target.walkDepth, 1u);
    target.walkDepth = 0;
}

TEST_F(TqBaseListOfThree, AssigningAnEmptyListEmpties) {
    const TqBaseList empty;
    list = empty;
    EXPECT_EQ(list.count, 0u);
    Append(list, {s});
    EXPECT_EQ(ItemsOf(list), Items({s}));
}

TEST_F(TqBaseListOfThree, AssigningToItselfKeepsTheItems) {
    const TqBaseList& same = list;
    list = same;
    EXPECT_EQ(ItemsOf(list), Items({p, q, r}));
    EXPECT_EQ(list.capacity, 16u);
}

TEST(TqBaseList, DestroyingDuringAWalkIsReported) {
    {
        TqBaseList list;
        list.walkDepth = 1;
    }
    EXPECT_EQ(TakeReports(), Reports({"TqBaseList"}));
}

TEST(TqBaseList, InsertionAndRemovalDuringAWalkAreNotReported) {
    TqBaseList list;
    list.walkDepth = 1;
    Append(list, {p, q});
    list.RemoveSlot(1);
    list.SwapItems(1, 1);
    list.RemoveAllItems();
    EXPECT_EQ(TakeReports(), Reports());
    EXPECT_EQ(list.walkDepth, 1u);
    list.walkDepth = 0;
}

TEST(TqBaseList, DestructorForgetsTheArrayInTheMemory) {
    Grave<TqBaseList> list;
    list->seqNum = 7;
    list.Bury();
    EXPECT_EQ(list.Left(&TqBaseList::slots), nullptr);
    EXPECT_EQ(list.Left(&TqBaseList::self), nullptr);
    EXPECT_EQ(list.Left(&TqBaseList::seqNum), 0u);
}

TEST(TqBaseList, DestructorGivesTheArrayBack) {
    const int blocks = LiveBlocks();
    {
        TqBaseList list;
        Append(list, {p});
    }
    EXPECT_EQ(LiveBlocks(), blocks);
}

TEST(TqBaseList, NeverTouchesItsItems) {
    int deaths = 0;
    Mortal item(deaths);
    {
        TqBaseList list;
        Append(list, {&item, &item, &item});
        TqBaseList copy(list);
        copy = list;
        list.RemoveSlot(1);
        list.ReplaceSlot(1, p);
        list.SwapItems(1, 2);
        list.RemoveAllItems();
    }
    EXPECT_EQ(deaths, 0);
    EXPECT_EQ(item.refCount, 0);
}

TEST(TqBaseList, ItsClassIsTheBaseObjects) {
    const TqBaseList list;
    EXPECT_EQ(list.ClassInfo(), TqBaseObject::TqBaseObjectInitInfo());
}

TEST_F(TqBaseListOfThree, CloneIsABareBaseObject) {
    const std::unique_ptr<TqBaseObject> clone(list.Clone());
    const TqBaseObject& cloned = *clone;
    EXPECT_TRUE(typeid(cloned) == typeid(TqBaseObject));
}

TEST_F(TqBaseListOfThree, IsDeletedThroughItsVirtualDestructor) {
    TqBaseObject* const copy = new TqBaseList(list);
    Keep(copy);
    EXPECT_EQ(Drop(copy), 1) << "and the leak checker sees no array";
}

}  // namespace
