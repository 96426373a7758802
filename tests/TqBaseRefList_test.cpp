#include "TqBaseRefList.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <memory>
#include <type_traits>
#include <typeinfo>

#include "Objects.h"
#include "Reports.h"
#include "TqBaseRef.h"

namespace {

static_assert(std::is_base_of<TqBaseList, TqBaseRefList>::value, "");
static_assert(std::is_base_of<TqBaseRefList, TqRefList<Mortal>>::value, "");
static_assert(sizeof(TqRefList<Mortal>) == sizeof(TqBaseRefList), "no field is added");

void Append(TqBaseList& list, std::initializer_list<TqBaseObject*> items) {
    for (TqBaseObject* item : items) list.InsertSlot(list.count + 1, item);
}

void ExpectFree(TqLinuxMutex& mutex) {
    EXPECT_EQ(mutex.Lock(), 0);
    EXPECT_EQ(mutex.Unlock(), 0);
}

using Numbers = std::vector<int>;

// Four objects, kept alive by the test: a count of 1 is the test's own.
class TqBaseRefListOf : public testing::Test {
protected:
    TqBaseRefListOf() {
        for (TqBaseObject* object : {a, b, c, d}) Keep(object);
    }
    ~TqBaseRefListOf() override {
        list.RemoveAllItems();
        EXPECT_EQ(deaths, 0);
        for (TqBaseObject* object : {a, b, c, d}) {
            object->self = object;
            object->refCount = 1;
            Drop(object);
        }
        EXPECT_EQ(deaths, 4);
    }

    // The references of a, b, c and d beside the test's own.
    Numbers Counts() const {
        return {a->refCount - 1, b->refCount - 1, c->refCount - 1, d->refCount - 1};
    }

    int deaths = 0;
    TqBaseObject* const a = new Mortal(deaths);
    TqBaseObject* const b = new Mortal(deaths);
    TqBaseObject* const c = new Mortal(deaths);
    TqBaseObject* const d = new Mortal(deaths);
    TqBaseRefList list;
};

TEST(TqBaseRefList, StartsEmptyAndUnlocked) {
    TqBaseRefList list;
    EXPECT_EQ(list.count, 0u);
    EXPECT_EQ(list.capacity, 16u);
    EXPECT_EQ(list.slots[0], nullptr);
    EXPECT_EQ(list.walkDepth, 0u);
    ExpectFree(list.listMutex);
}

// Insertion.

TEST_F(TqBaseRefListOf, InsertingTakesAReferenceForEachSlot) {
    list.InsertSlot(1, a);
    EXPECT_EQ(Counts(), Numbers({1, 0, 0, 0}));
    list.InsertSlot(1, a);
    EXPECT_EQ(Counts(), Numbers({2, 0, 0, 0}));
    list.InsertSlot(2, b);
    EXPECT_EQ(Counts(), Numbers({2, 1, 0, 0}));
    EXPECT_EQ(ItemsOf(list), Items({a, b, a}));
    ExpectFree(list.listMutex);
}

TEST_F(TqBaseRefListOf, InsertingUsesTheStampOfTheItem) {
    a->seqNum = 0x80000007u;
    list.InsertSlot(1, a);
    list.RemoveSlot(1);
    EXPECT_EQ(TakeReports(), Reports());
}

TEST_F(TqBaseRefListOf, InsertingGrowsAsTheBaseListDoes) {
    for (unsigned int i = 1; i <= 15; ++i) list.InsertSlot(i, a);
    EXPECT_EQ(list.capacity, 16u);
    list.InsertSlot(16, b);
    EXPECT_EQ(list.capacity, 32u);
    EXPECT_EQ(Counts(), Numbers({15, 1, 0, 0}));
}

TEST_F(TqBaseRefListOf, InsertingNullIsReportedTwiceAndNotDone) {
    Append(list, {a});
    list.InsertSlot(1, nullptr);
    EXPECT_EQ(TakeReports(), Reports({"TqBaseRefList", "TqBaseList"}));
    EXPECT_EQ(ItemsOf(list), Items({a}));
    ExpectFree(list.listMutex);
}

TEST_F(TqBaseRefListOf, InsertingADeadItemIsReportedByTheCountAndDone) {
    a->self = nullptr;
    list.InsertSlot(1, a);
    EXPECT_EQ(TakeReports(), Reports({"TqBaseObject"}));
    EXPECT_EQ(ItemsOf(list), Items({a}));
    EXPECT_EQ(Counts(), Numbers({1, 0, 0, 0}));
    a->self = a;
}

TEST_F(TqBaseRefListOf, InsertingAtZeroMovesEverythingIntoTheNumberedSlots) {
    Append(list, {a});
    list.InsertSlot(0, b);
    EXPECT_EQ(list.slots[0], b);
    EXPECT_EQ(ItemsOf(list), Items({nullptr, a}));
    EXPECT_EQ(Counts(), Numbers({1, 1, 0, 0}));
    list.RemoveSlot(0);
    EXPECT_EQ(TakeReports(), Reports()) << "entry 0 holds an item now";
    EXPECT_EQ(list.slots[0], nullptr);
    EXPECT_EQ(ItemsOf(list), Items({a}));
    EXPECT_EQ(Counts(), Numbers({1, 0, 0, 0}));
}

// Removal.

TEST_F(TqBaseRefListOf, RemovingDropsTheReferenceOfTheSlot) {
    Append(list, {a, b, a});
    list.RemoveSlot(1);
    EXPECT_EQ(Counts(), Numbers({1, 1, 0, 0}));
    EXPECT_EQ(ItemsOf(list), Items({b, a}));
    list.RemoveSlot(2);
    EXPECT_EQ(Counts(), Numbers({0, 1, 0, 0}));
    EXPECT_EQ(ItemsOf(list), Items({b}));
    ExpectFree(list.listMutex);
}

TEST(TqBaseRefList, RemovingTheLastReferenceDeletesTheItem) {
    int deaths = 0;
    TqBaseRefList list;
    Append(list, {new Mortal(deaths), new Mortal(deaths)});
    list.RemoveSlot(1);
    EXPECT_EQ(deaths, 1);
    list.RemoveSlot(1);
    EXPECT_EQ(deaths, 2);
    EXPECT_EQ(list.count, 0u);
}

TEST_F(TqBaseRefListOf, RemovingSlotZeroIsReportedAndNotDone) {
    Append(list, {a, b});
    list.RemoveSlot(0);
    EXPECT_EQ(TakeReports(), Reports({"TqBaseRefList"}));
    EXPECT_EQ(ItemsOf(list), Items({a, b}));
    EXPECT_EQ(Counts(), Numbers({1, 1, 0, 0}));
    ExpectFree(list.listMutex);
}

TEST_F(TqBaseRefListOf, RemovingPastTheItemsIsReportedAndNotDone) {
    Append(list, {a, b, c});
    list.RemoveSlot(3);
    for (const unsigned int index : {3u, 16u, 0xFFFFFFFFu}) {
        list.RemoveSlot(index);
        EXPECT_EQ(TakeReports(), Reports({"TqBaseRefList"}));
    }
    EXPECT_EQ(ItemsOf(list), Items({a, b}));
    EXPECT_EQ(Counts(), Numbers({1, 1, 0, 0}));
}

TEST_F(TqBaseRefListOf, RemovingFromAnEmptyListIsReportedAndNotDone) {
    list.RemoveSlot(0);
    list.RemoveSlot(1);
    EXPECT_EQ(TakeReports(), Reports({"TqBaseRefList", "TqBaseRefList"}));
    EXPECT_EQ(list.count, 0u);
}

TEST_F(TqBaseRefListOf, RemovingANullSlotIsReportedAndNotDone) {
    Append(list, {a, b});
    list.slots[1] = nullptr;
    list.RemoveSlot(1);
    EXPECT_EQ(TakeReports(), Reports({"TqBaseRefList"}));
    EXPECT_EQ(ItemsOf(list), Items({nullptr, b}));
    list.slots[1] = a;
}

TEST_F(TqBaseRefListOf, RemovingFromAMissingArrayIsReportedAndNotDone) {
    Append(list, {a});
    void** const slots = list.slots;
    list.slots = nullptr;
    list.RemoveSlot(1);
    EXPECT_EQ(TakeReports(), Reports({"TqBaseRefList"}));
    EXPECT_EQ(list.count, 1u);
    EXPECT_EQ(Counts(), Numbers({1, 0, 0, 0}));
    list.slots = slots;
}

TEST_F(TqBaseRefListOf, RemovingADeadItemIsReportedByListAndCountAndDone) {
    Append(list, {a, b});
    a->self = nullptr;
    list.RemoveSlot(1);
    EXPECT_EQ(TakeReports(), Reports({"TqBaseRefList", "TqBaseObject"}));
    EXPECT_EQ(ItemsOf(list), Items({b}));
    EXPECT_EQ(Counts(), Numbers({0, 1, 0, 0}));
}

TEST_F(TqBaseRefListOf, ItemIsStillInItsSlotWhileItsReferenceIsDropped) {
    unsigned int found = 0;
    TqBaseObject* item = nullptr;
    item = new Mortal(deaths, [&] { found = list.FindSlot(item); });
    Append(list, {a, item});
    list.RemoveSlot(2);
    EXPECT_EQ(found, 2u);
    EXPECT_EQ(TakeReports(), Reports()) << "searching does not lock";
    EXPECT_EQ(deaths, 1);
    deaths = 0;
}

// Clearing.

TEST_F(TqBaseRefListOf, RemovingAllDropsEveryReference) {
    Append(list, {a, b, a});
    list.PreAlloc(40);
    list.RemoveAllItems();
    EXPECT_EQ(list.count, 0u);
    EXPECT_EQ(list.capacity, 40u);
    EXPECT_EQ(Counts(), Numbers({0, 0, 0, 0}));
    ExpectFree(list.listMutex);
}

TEST(TqBaseRefList, RemovingAllDeletesWhatNobodyElseKeeps) {
    int deaths = 0;
    TqBaseRefList list;
    const TqRef<Mortal> kept(new Mortal(deaths));
    Append(list, {new Mortal(deaths), kept.object, new Mortal(deaths)});
    list.RemoveAllItems();
    EXPECT_EQ(deaths, 2);
    EXPECT_EQ(kept.object->refCount, 1);
}

TEST_F(TqBaseRefListOf, RemovingAllReportsAndSkipsANullSlot) {
    Append(list, {a, b, c});
    list.slots[2] = nullptr;
    list.RemoveAllItems();
    EXPECT_EQ(TakeReports(), Reports({"TqBaseRefList"}));
    EXPECT_EQ(list.count, 0u);
    EXPECT_EQ(Counts(), Numbers({0, 1, 0, 0}));
}

TEST_F(TqBaseRefListOf, RemovingAllReportsEachSlotOfAMissingArray) {
    Append(list, {a, b});
    void** const slots = list.slots;
    list.slots = nullptr;
    list.RemoveAllItems();
    EXPECT_EQ(TakeReports(), Reports({"TqBaseRefList", "TqBaseRefList"}));
    EXPECT_EQ(list.count, 0u);
    list.slots = slots;
}

TEST_F(TqBaseRefListOf, RemovingAllReportsADeadItemByListAndCount) {
    Append(list, {a, b});
    b->self = a;
    list.RemoveAllItems();
    EXPECT_EQ(TakeReports(), Reports({"TqBaseRefList", "TqBaseObject"}));
    EXPECT_EQ(Counts(), Numbers({0, 0, 0, 0}));
}

// Swapping.

TEST_F(TqBaseRefListOf, SwappingLeavesTheCountsAlone) {
    Append(list, {a, b, c});
    list.SwapItems(1, 3);
    EXPECT_EQ(ItemsOf(list), Items({c, b, a}));
    EXPECT_EQ(Counts(), Numbers({1, 1, 1, 0}));
    ExpectFree(list.listMutex);
}

TEST_F(TqBaseRefListOf, SwappingReportsAWrongIndexByBothListsAndIsDone) {
    Append(list, {a, b});
    list.slots[3] = nullptr;
    list.SwapItems(3, 1);
    EXPECT_EQ(TakeReports(), Reports({"TqBaseRefList", "TqBaseList"}));
    EXPECT_EQ(ItemsOf(list), Items({nullptr, b}));
    list.SwapItems(1, 3);
    EXPECT_EQ(TakeReports(), Reports({"TqBaseRefList", "TqBaseList"}));
    EXPECT_EQ(ItemsOf(list), Items({a, b}));
}

TEST_F(TqBaseRefListOf, SwappingWithZeroIsReportedByBothListsAndIsDone) {
    Append(list, {a, b});
    list.SwapItems(0, 1);
    EXPECT_EQ(TakeReports(), Reports({"TqBaseRefList", "TqBaseList"}));
    EXPECT_EQ(list.slots[0], a);
    list.SwapItems(1, 0);
    EXPECT_EQ(TakeReports(), Reports({"TqBaseRefList", "TqBaseList"}));
    EXPECT_EQ(ItemsOf(list), Items({a, b}));
}

TEST_F(TqBaseRefListOf, SwappingReportsBothIndexesBeforeTheBaseListDoes) {
    Append(list, {a});
    list.slots[2] = nullptr;
    list.SwapItems(0, 2);
    EXPECT_EQ(TakeReports(),
              Reports({"TqBaseRefList", "TqBaseRefList", "TqBaseList", "TqBaseList"}));
    EXPECT_EQ(ItemsOf(list), Items({a}));
}

// Replacing, which is none.

TEST_F(TqBaseRefListOf, ReplacingInsertsAndTakesOneReferenceOfBoth) {
    Append(list, {a});
    Keep(d);
    EXPECT_EQ(Counts(), Numbers({1, 0, 0, 1}));
    list.ReplaceSlot(1, d);
    EXPECT_EQ(ItemsOf(list), Items({d, a}));
    EXPECT_EQ(Counts(), Numbers({0, 0, 0, 0}));
    list.count = 0;
}

TEST_F(TqBaseRefListOf, ReplacingInTheMiddleMovesTheOldItemUp) {
    Append(list, {a, b, c});
    Keep(d);
    list.ReplaceSlot(2, d);
    EXPECT_EQ(ItemsOf(list), Items({a, d, b, c}));
    EXPECT_EQ(Counts(), Numbers({1, 0, 1, 0}));
    EXPECT_EQ(list.count, 4u);
    ExpectFree(list.listMutex);
    list.count = 0;
}

TEST_F(TqBaseRefListOf, ReplacingAnItemWithItselfInsertsItAgainUncounted) {
    Append(list, {a, b});
    list.ReplaceSlot(2, b);
    EXPECT_EQ(ItemsOf(list), Items({a, b, b}));
    EXPECT_EQ(Counts(), Numbers({1, 1, 0, 0}));
    list.count = 0;
}

TEST_F(TqBaseRefListOf, ReplacingGrowsAFullList) {
    for (unsigned int i = 1; i <= 15; ++i) list.InsertSlot(i, a);
    Keep(b);
    list.ReplaceSlot(15, b);
    EXPECT_EQ(list.capacity, 32u);
    EXPECT_EQ(list.slots[15], b);
    EXPECT_EQ(list.slots[16], a);
    list.count = 0;
}

TEST_F(TqBaseRefListOf, ReplacingDeletesAnOldItemThatHadNoOtherReference) {
    TqBaseObject* const old = new Mortal(deaths);
    Append(list, {old});
    Keep(d);
    list.ReplaceSlot(1, d);
    EXPECT_EQ(deaths, 1);
    EXPECT_EQ(ItemsOf(list), Items({d, old})) << "its pointer stays";
    list.count = 0;
    deaths = 0;
}

TEST_F(TqBaseRefListOf, ReplacingDeletesANewItemThatHadOneReference) {
    TqBaseObject* const item = new Mortal(deaths);
    Keep(item);
    Append(list, {a});
    list.ReplaceSlot(1, item);
    EXPECT_EQ(deaths, 1);
    EXPECT_EQ(ItemsOf(list), Items({item, a})) << "its pointer stays";
    list.count = 0;
    deaths = 0;
}

TEST_F(TqBaseRefListOf, ReplacingDropsTheOldItemBeforeTheNew) {
    Numbers order;
    Append(list, {new Mortal(deaths, [&] { order.push_back(1); })});
    TqBaseObject* const item = new Mortal(deaths, [&] { order.push_back(2); });
    Keep(item);
    list.ReplaceSlot(1, item);
    EXPECT_EQ(order, Numbers({1, 2}));
    list.count = 0;
    deaths = 0;
}

TEST_F(TqBaseRefListOf, ReplacingWithNullIsReportedTwiceAndCountsTheOldItemDown) {
    Append(list, {a});
    list.ReplaceSlot(1, nullptr);
    EXPECT_EQ(TakeReports(), Reports({"TqBaseRefList", "TqBaseList"}));
    EXPECT_EQ(ItemsOf(list), Items({a}));
    EXPECT_EQ(Counts(), Numbers({0, 0, 0, 0}));
    ExpectFree(list.listMutex);
    list.count = 0;
}

TEST_F(TqBaseRefListOf, ReplacingWhereNothingIsIsReportedAndNotDone) {
    Append(list, {a, b});
    for (const unsigned int index : {0u, 3u, 16u, 0xFFFFFFFFu}) {
        list.ReplaceSlot(index, d);
        EXPECT_EQ(TakeReports(), Reports({"TqBaseRefList"}));
    }
    EXPECT_EQ(ItemsOf(list), Items({a, b}));
    EXPECT_EQ(Counts(), Numbers({1, 1, 0, 0}));
    ExpectFree(list.listMutex);
}

TEST_F(TqBaseRefListOf, ReplacingANullSlotOrAMissingArrayIsReportedAndNotDone) {
    Append(list, {a, b});
    list.slots[1] = nullptr;
    list.ReplaceSlot(1, d);
    EXPECT_EQ(TakeReports(), Reports({"TqBaseRefList"}));
    EXPECT_EQ(ItemsOf(list), Items({nullptr, b}));
    list.slots[1] = a;
    void** const slots = list.slots;
    list.slots = nullptr;
    list.ReplaceSlot(1, d);
    EXPECT_EQ(TakeReports(), Reports({"TqBaseRefList"}));
    list.slots = slots;
    EXPECT_EQ(Counts(), Numbers({1, 1, 0, 0}));
}

TEST_F(TqBaseRefListOf, ReplacingADeadItemIsReportedByListAndCountAndDone) {
    Append(list, {a});
    Keep(d);
    a->self = nullptr;
    list.ReplaceSlot(1, d);
    EXPECT_EQ(TakeReports(), Reports({"TqBaseRefList", "TqBaseObject"}));
    EXPECT_EQ(ItemsOf(list), Items({d, a}));
    EXPECT_EQ(Counts(), Numbers({0, 0, 0, 0}));
    list.count = 0;
}

// Copies.

TEST_F(TqBaseRefListOf, CopyTakesReferencesOfItsOwn) {
    Append(list, {a, b, a});
    list.PreAlloc(40);
    {
        TqBaseRefList copy(list);
        EXPECT_EQ(ItemsOf(copy), Items({a, b, a}));
        EXPECT_EQ(copy.capacity, 40u);
        EXPECT_EQ(Counts(), Numbers({4, 2, 0, 0}));
        ExpectFree(copy.listMutex);
        ExpectFree(list.listMutex);
    }
    EXPECT_EQ(Counts(), Numbers({2, 1, 0, 0}));
}

TEST_F(TqBaseRefListOf, CopyLocksTheSource) {
    Append(list, {a});
    ASSERT_EQ(list.listMutex.Lock(), 0);
    const TqBaseRefList copy(list);
    EXPECT_EQ(TakeReports(), Reports({"TqBaseRefList"})) << "held already";
    EXPECT_EQ(list.listMutex.Unlock(), EPERM) << "given back by the copying";
    EXPECT_EQ(Counts(), Numbers({2, 0, 0, 0}));
}

TEST_F(TqBaseRefListOf, CopyReportsANullSlotAndSkipsIt) {
    Append(list, {a, b, c});
    list.slots[2] = nullptr;
    TqBaseRefList copy(list);
    EXPECT_EQ(TakeReports(), Reports({"TqBaseRefList"}));
    EXPECT_EQ(ItemsOf(copy), Items({a, nullptr, c}));
    EXPECT_EQ(Counts(), Numbers({2, 1, 2, 0}));
    list.slots[2] = copy.slots[2] = b;
    Keep(b);
}

TEST_F(TqBaseRefListOf, CopyReportsADeadItemByListAndCount) {
    Append(list, {a, b});
    a->self = nullptr;
    const TqBaseRefList copy(list);
    EXPECT_EQ(TakeReports(), Reports({"TqBaseRefList", "TqBaseObject"}));
    EXPECT_EQ(Counts(), Numbers({2, 2, 0, 0}));
    a->self = a;
}

TEST_F(TqBaseRefListOf, CopyOfAListBeingDestroyedIsReportedByTheBase) {
    Append(list, {a});
    list.destroying = 1;
    const TqBaseRefList copy(list);
    EXPECT_EQ(TakeReports(), Reports({"TqBaseObject"}));
    EXPECT_EQ(Counts(), Numbers({2, 0, 0, 0}));
}

// Assignment.

TEST_F(TqBaseRefListOf, AssigningTakesTheItemsAndLetsTheOldOnesGo) {
    TqBaseRefList other;
    Append(list, {a, b});
    Append(other, {c, d, c});
    other.PreAlloc(40);
    EXPECT_EQ(&(list = other), &list);
    EXPECT_EQ(ItemsOf(list), Items({c, d, c}));
    EXPECT_EQ(list.capacity, 40u);
    EXPECT_EQ(Counts(), Numbers({0, 0, 4, 2}));
    ExpectFree(list.listMutex);
    ExpectFree(other.listMutex);
}

TEST(TqBaseRefList, AssigningDeletesWhatOnlyTheOldItemsKept) {
    int deaths = 0;
    TqBaseRefList list, other;
    Append(list, {new Mortal(deaths), new Mortal(deaths)});
    list = other;
    EXPECT_EQ(deaths, 2);
    EXPECT_EQ(list.count, 0u);
}

TEST(TqBaseRefList, AssigningKeepsWhatStandsInBothLists) {
    int deaths = 0;
    TqBaseRefList list, other;
    TqBaseObject* const shared = new Mortal(deaths);
    Append(list, {shared});
    Append(other, {shared});
    list = other;
    EXPECT_EQ(deaths, 0);
    EXPECT_EQ(shared->refCount, 2);
}

TEST(TqBaseRefList, AssigningTakesTheNewReferencesBeforeItDropsTheOld) {
    int deaths = 0, countInTheEnd = 0;
    TqBaseObject* const next = new Mortal(deaths);
    TqBaseRefList list, other;
    Append(list, {new Mortal(deaths, [&] { countInTheEnd = next->refCount; })});
    Append(other, {next});
    list = other;
    EXPECT_EQ(deaths, 1);
    EXPECT_EQ(countInTheEnd, 2);
}

TEST_F(TqBaseRefListOf, AssigningReportsANullItemOfTheOtherAndSkipsIt) {
    TqBaseRefList other;
    Append(other, {a, b});
    other.slots[1] = nullptr;
    list = other;
    EXPECT_EQ(TakeReports(), Reports({"TqBaseRefList"}));
    EXPECT_EQ(ItemsOf(list), Items({nullptr, b}));
    EXPECT_EQ(Counts(), Numbers({1, 2, 0, 0}));
    list.slots[1] = other.slots[1] = a;
    Keep(a);
}

TEST_F(TqBaseRefListOf, AssigningReportsADeadItemOfTheOther) {
    TqBaseRefList other;
    Append(other, {a});
    a->self = nullptr;
    list = other;
    EXPECT_EQ(TakeReports(), Reports({"TqBaseRefList", "TqBaseObject"}));
    EXPECT_EQ(Counts(), Numbers({2, 0, 0, 0}));
    a->self = a;
}

TEST_F(TqBaseRefListOf, AssigningReportsANullSlotOfItsOwnAndSkipsIt) {
    TqBaseRefList other;
    Append(list, {a, b});
    list.slots[1] = nullptr;
    list = other;
    EXPECT_EQ(TakeReports(), Reports({"TqBaseRefList"}));
    EXPECT_EQ(list.count, 0u);
    EXPECT_EQ(Counts(), Numbers({1, 0, 0, 0}));
}

TEST_F(TqBaseRefListOf, AssigningReportsAMissingArrayOfItsOwn) {
    TqBaseRefList other;
    Append(list, {a});
    Append(other, {b});
    void** const slots = list.slots;
    list.slots = nullptr;
    list = other;
    EXPECT_EQ(TakeReports(), Reports({"TqBaseRefList"}));
    EXPECT_EQ(ItemsOf(list), Items({b}));
    std::free(slots);
}

TEST_F(TqBaseRefListOf, AssigningReportsADeadItemOfItsOwn) {
    TqBaseRefList other;
    Append(list, {a});
    a->self = nullptr;
    list = other;
    EXPECT_EQ(TakeReports(), Reports({"TqBaseRefList", "TqBaseObject"}));
    EXPECT_EQ(Counts(), Numbers({0, 0, 0, 0}));
}

TEST_F(TqBaseRefListOf, AssigningDuringAWalkIsReportedByTheBaseListAndDone) {
    TqBaseRefList other;
    Append(other, {a});
    list.walkDepth = 1;
    list = other;
    EXPECT_EQ(TakeReports(), Reports({"TqBaseList"}));
    EXPECT_EQ(ItemsOf(list), Items({a}));
    list.walkDepth = 0;
}

TEST_F(TqBaseRefListOf, AssigningToItselfMeetsItsOwnMutexAndKeepsTheItems) {
    Append(list, {a, b});
    const TqBaseRefList& same = list;
    list = same;
    EXPECT_EQ(TakeReports(), Reports({"TqBaseRefList", "TqBaseRefList"}));
    EXPECT_EQ(ItemsOf(list), Items({a, b}));
    EXPECT_EQ(Counts(), Numbers({1, 1, 0, 0}));
    ExpectFree(list.listMutex);
}

// The end.

TEST(TqBaseRefList, DestructorLetsEveryItemGo) {
    int deaths = 0;
    const TqRef<Mortal> kept(new Mortal(deaths));
    {
        TqBaseRefList list;
        Append(list, {new Mortal(deaths), kept.object, kept.object, new Mortal(deaths)});
        EXPECT_EQ(deaths, 0);
    }
    EXPECT_EQ(deaths, 2);
    EXPECT_EQ(kept.object->refCount, 1);
}

TEST(TqBaseRefList, DestructorOfTheRootLetsEveryItemGo) {
    int deaths = 0;
    TqBaseRefList* list = new TqBaseRefList;
    Append(*list, {new Mortal(deaths)});
    TqBaseObject* object = list;
    delete object;
    EXPECT_EQ(deaths, 1);
}

TEST_F(TqBaseRefListOf, DestructorReportsANullSlotAndADeadItem) {
    {
        TqBaseRefList dying;
        Append(dying, {a, b, c});
        dying.slots[1] = nullptr;
        b->self = nullptr;
    }
    EXPECT_EQ(TakeReports(), Reports({"TqBaseRefList", "TqBaseRefList", "TqBaseObject"}));
    EXPECT_EQ(Counts(), Numbers({1, 0, 0, 0}));
}

TEST_F(TqBaseRefListOf, DestructorReportsEachSlotOfAMissingArray) {
    void** slots = nullptr;
    {
        TqBaseRefList dying;
        Append(dying, {a, b});
        slots = dying.slots;
        dying.slots = nullptr;
    }
    EXPECT_EQ(TakeReports(), Reports({"TqBaseRefList", "TqBaseRefList"}));
    std::free(slots);
}

TEST_F(TqBaseRefListOf, DestructorReportsAWalkByTheBaseList) {
    {
        TqBaseRefList dying;
        Append(dying, {a});
        dying.walkDepth = 1;
    }
    EXPECT_EQ(TakeReports(), Reports({"TqBaseList"}));
    EXPECT_EQ(Counts(), Numbers({0, 0, 0, 0}));
}

TEST_F(TqBaseRefListOf, DestructorReportsAMutexThatIsHeld) {
    Grave<TqBaseRefList> dying;
    Append(*dying.Get(), {a});
    ASSERT_EQ(dying->listMutex.Lock(), 0);
    dying.Bury();
    EXPECT_EQ(TakeReports(), Reports({"TqBaseRefList"}));
    EXPECT_EQ(Counts(), Numbers({0, 0, 0, 0}));
    EXPECT_EQ(dying.Left(&TqBaseList::slots), nullptr);
    EXPECT_EQ(dying.Left(&TqBaseObject::self), nullptr);
}

// The virtual operations.

// A list that notes the virtual operations as they come.
class Noting : public TqBaseRefList {
public:
    void InsertSlot(unsigned int index, void* item) override {
        ++calls;
        TqBaseRefList::InsertSlot(index, item);
    }
    void RemoveSlot(unsigned int index) override {
        ++calls;
        TqBaseRefList::RemoveSlot(index);
    }
    void RemoveAllItems() override {
        ++calls;
        TqBaseRefList::RemoveAllItems();
    }
    void SwapItems(unsigned int first, unsigned int second) override {
        ++calls;
        TqBaseRefList::SwapItems(first, second);
    }
    Noting() {}
    Noting(const Noting& other) : TqBaseRefList(other) {}
    int calls = 0;
};

TEST_F(TqBaseRefListOf, OperationsOfTheBaseListReachTheReferenceList) {
    TqBaseList& base = list;
    base.InsertSlot(1, a);
    base.InsertSlot(2, b);
    EXPECT_EQ(Counts(), Numbers({1, 1, 0, 0}));
    ASSERT_EQ(list.listMutex.Lock(), 0);
    base.SwapItems(1, 2);
    EXPECT_EQ(TakeReports(), Reports({"TqBaseRefList"})) << "which locks";
    base.RemoveSlot(1);
    EXPECT_EQ(Counts(), Numbers({1, 0, 0, 0}));
    base.ReplaceSlot(1, a);
    EXPECT_EQ(base.count, 2u);
    Keep(a);
    base.RemoveAllItems();
    EXPECT_EQ(Counts(), Numbers({0, 0, 0, 0}));
}

TEST_F(TqBaseRefListOf, OperationsDoNotCallEachOtherThroughTheTable) {
    Noting noting;
    noting.InsertSlot(1, a);
    noting.calls = 0;
    noting.ReplaceSlot(1, a);
    EXPECT_EQ(noting.calls, 0);
    noting.count = 1;
    const Noting copy(noting);
    EXPECT_EQ(copy.calls, 0);
    const TqBaseRefList other;
    static_cast<TqBaseRefList&>(noting) = other;
    EXPECT_EQ(noting.calls, 0);
}

TEST_F(TqBaseRefListOf, ItsClassAndCloneAreTheBaseObjects) {
    Append(list, {a});
    EXPECT_EQ(list.ClassInfo(), TqBaseObject::TqBaseObjectInitInfo());
    const std::unique_ptr<TqBaseObject> clone(list.Clone());
    const TqBaseObject& cloned = *clone;
    EXPECT_TRUE(typeid(cloned) == typeid(TqBaseObject));
    EXPECT_EQ(Counts(), Numbers({1, 0, 0, 0}));
}

TEST_F(TqBaseRefListOf, MutexOfTheItemIsTakenInsideTheMutexOfTheList) {
    int result = 0;
    Append(list, {new Mortal(deaths, [&] { result = list.listMutex.Lock(); })});
    list.RemoveSlot(1);
    EXPECT_EQ(result, EDEADLK);
    deaths = 0;
}

TEST_F(TqBaseRefListOf, AHeldMutexIsReportedByEachOperationWhichGoesOn) {
    const auto held = [this] { ASSERT_EQ(list.listMutex.Lock(), 0); };
    held();
    list.InsertSlot(1, a);
    held();
    list.InsertSlot(2, b);
    held();
    list.SwapItems(1, 2);
    held();
    list.ReplaceSlot(1, b);
    held();
    list.RemoveSlot(1);
    EXPECT_EQ(TakeReports(), Reports(5, "TqBaseRefList"));
    EXPECT_EQ(ItemsOf(list), Items({b, a}));
    EXPECT_EQ(Counts(), Numbers({1, 0, 0, 0}));
    Keep(b);
    held();
    list.RemoveAllItems();
    EXPECT_EQ(TakeReports(), Reports({"TqBaseRefList"}));
    EXPECT_EQ(Counts(), Numbers({0, 0, 0, 0}));
}

// A destructor that reaches back to the list that is letting its object go. The list's own mutex
// makes two reports of it: what the destructor does cannot lock, and gives the mutex back, so that
// the list cannot.
class TqBaseRefListReentered : public testing::Test {
protected:
    ~TqBaseRefListReentered() override { EXPECT_EQ(other->refCount, 1); }

    int deaths = 0;
    const TqRef<TqBaseObject> kept{new TqBaseObject};
    TqBaseObject* const other = kept.object;
    std::unique_ptr<TqBaseRefList> list{new TqBaseRefList};

    void AppendMortal(std::function<void()> lastWords) {
        Append(*list, {new Mortal(deaths, lastWords)});
    }
    void AppendOther() { list->InsertSlot(list->count + 1, other); }
};

const Reports twoOfTheList = {"TqBaseRefList", "TqBaseRefList"};

TEST_F(TqBaseRefListReentered, InsertingWhileASlotIsRemoved) {
    AppendMortal([this] { AppendOther(); });
    list->RemoveSlot(1);
    EXPECT_EQ(TakeReports(), twoOfTheList);
    EXPECT_EQ(deaths, 1);
    EXPECT_EQ(ItemsOf(*list), Items({other}));
    ExpectFree(list->listMutex);
    list.reset();
}

TEST_F(TqBaseRefListReentered, RemovingAnotherSlotWhileASlotIsRemoved) {
    AppendMortal([this] { list->RemoveSlot(2); });
    AppendOther();
    AppendOther();
    list->RemoveSlot(1);
    EXPECT_EQ(TakeReports(), twoOfTheList);
    EXPECT_EQ(deaths, 1);
    EXPECT_EQ(ItemsOf(*list), Items({other}));
    EXPECT_EQ(other->refCount, 2);
    list.reset();
}

// The dying object is counted down once more, and deleted with a count of -1.
const Reports twoOfTheListAndTheObject = {"TqBaseRefList", "TqBaseObject", "TqBaseObject",
                                          "TqBaseRefList"};

TEST_F(TqBaseRefListReentered, RemovingTheSameSlotLeavesNothingToRemove) {
    AppendMortal([this] { list->RemoveSlot(1); });
    list->RemoveSlot(1);
    EXPECT_EQ(TakeReports(), twoOfTheListAndTheObject);
    EXPECT_EQ(deaths, 1);
    EXPECT_EQ(list->count, 0u);
    AppendOther();
    EXPECT_EQ(ItemsOf(*list), Items({other}));
    list.reset();
}

TEST_F(TqBaseRefListReentered, RemovingAllWhileASlotIsRemovedLeavesNothingToRemove) {
    AppendOther();
    AppendMortal([this] { list->RemoveAllItems(); });
    list->RemoveSlot(2);
    EXPECT_EQ(TakeReports(), twoOfTheListAndTheObject);
    EXPECT_EQ(list->count, 0u);
    EXPECT_EQ(other->refCount, 1);
}

TEST_F(TqBaseRefListReentered, WhatIsInsertedWhileAllAreRemovedIsRemovedToo) {
    AppendMortal([this] { AppendOther(); });
    AppendOther();
    list->RemoveAllItems();
    EXPECT_EQ(TakeReports(), twoOfTheList);
    EXPECT_EQ(list->count, 0u);
    EXPECT_EQ(other->refCount, 1);
    ExpectFree(list->listMutex);
}

TEST_F(TqBaseRefListReentered, RemovingAllWhileAllAreRemoved) {
    AppendMortal([this] { list->RemoveAllItems(); });
    AppendOther();
    list->RemoveAllItems();
    EXPECT_EQ(TakeReports(), twoOfTheListAndTheObject);
    EXPECT_EQ(deaths, 1);
    EXPECT_EQ(list->count, 0u);
}

TEST_F(TqBaseRefListReentered, WhatIsInsertedWhileTheListGoesIsLetGoToo) {
    TqBaseRefList& dying = *list;
    AppendMortal([&] { dying.InsertSlot(dying.count + 1, other); });
    list.reset();
    EXPECT_EQ(TakeReports(), twoOfTheList);
    EXPECT_EQ(deaths, 1);
    EXPECT_EQ(other->refCount, 1);
}

TEST_F(TqBaseRefListReentered, WhatIsInsertedWhileTheListIsAssignedIsLetGoToo) {
    TqBaseRefList source;
    AppendMortal([this] { AppendOther(); });
    *list = source;
    EXPECT_EQ(TakeReports(), twoOfTheList);
    EXPECT_EQ(list->count, 0u);
    EXPECT_EQ(other->refCount, 1);
}

TEST_F(TqBaseRefListReentered, InsertingWhileASlotIsReplaced) {
    AppendMortal([this] { AppendOther(); });
    Keep(other);
    list->ReplaceSlot(1, other);
    EXPECT_EQ(TakeReports(), twoOfTheList);
    EXPECT_EQ(deaths, 1);
    ASSERT_EQ(list->count, 3u);
    EXPECT_EQ(list->slots[1], other);
    EXPECT_EQ(list->slots[3], other);
    EXPECT_EQ(other->refCount, 2);
    list->count = 0;
    Drop(other);
}

TEST_F(TqBaseRefListReentered, InsertingInFrontWhileASlotIsRemovedRemovesTheDeadItemAllTheSame) {
    AppendMortal([this] { list->InsertSlot(1, other); });
    AppendOther();
    list->RemoveSlot(1);
    EXPECT_EQ(TakeReports(), twoOfTheList);
    EXPECT_EQ(ItemsOf(*list), Items({other, other}));
    EXPECT_EQ(other->refCount, 3);
    list.reset();
}

TEST_F(TqBaseRefListReentered, RemovingTheSameSlotLeavesTheNextOneAlone) {
    AppendMortal([this] { list->RemoveSlot(1); });
    AppendOther();
    list->RemoveSlot(1);
    EXPECT_EQ(TakeReports(), twoOfTheListAndTheObject);
    EXPECT_EQ(ItemsOf(*list), Items({other}));
    list.reset();
}

TEST_F(TqBaseRefListReentered, InsertingInFrontWhileAllAreRemovedLetsNothingGoTwice) {
    AppendMortal([this] { list->InsertSlot(1, other); });
    AppendMortal(nullptr);
    list->RemoveAllItems();
    // The mutex twice, and the slot of the first item, which the walk meets again and finds empty.
    EXPECT_EQ(TakeReports(), Reports(3, "TqBaseRefList"));
    EXPECT_EQ(deaths, 2);
    EXPECT_EQ(list->count, 0u);
    EXPECT_EQ(other->refCount, 2) << "inserted behind the walk's back and so left alive";
    Drop(other);
}

TEST_F(TqBaseRefListReentered, RemovingAllWhileAllAreRemovedDropsEachReferenceOnce) {
    AppendOther();
    AppendMortal([this] { list->RemoveAllItems(); });
    list->RemoveAllItems();
    // Beside the four: the nested walk finds the slot of `other` empty.
    EXPECT_EQ(TakeReports(), Reports({"TqBaseRefList", "TqBaseRefList", "TqBaseObject",
                                      "TqBaseObject", "TqBaseRefList"}));
    EXPECT_EQ(other->refCount, 1);
    EXPECT_EQ(deaths, 1);
}

TEST_F(TqBaseRefListReentered, RemovingAnEarlierSlotWhileAllAreRemovedTouchesNoDeadItem) {
    AppendMortal(nullptr);
    AppendMortal([this] { list->RemoveSlot(1); });
    AppendOther();
    list->RemoveAllItems();
    // The mutex, the slot of the first item, which is empty, and the mutex.
    EXPECT_EQ(TakeReports(), Reports(3, "TqBaseRefList"));
    EXPECT_EQ(deaths, 2);
    EXPECT_EQ(list->count, 0u);
    EXPECT_EQ(other->refCount, 1);
}

TEST_F(TqBaseRefListReentered, RemovingAnEarlierSlotWhileTheListGoesTouchesNoDeadItem) {
    TqBaseRefList& dying = *list;
    AppendMortal(nullptr);
    AppendMortal([&] { dying.RemoveSlot(1); });
    list.reset();
    EXPECT_EQ(TakeReports(), Reports(3, "TqBaseRefList"));
    EXPECT_EQ(deaths, 2);
}

TEST_F(TqBaseRefListReentered, InsertingIntoTheAssignedListLeavesTheItemToThatList) {
    TqBaseRefList source;
    AppendMortal([&] { source.InsertSlot(1, other); });
    *list = source;
    EXPECT_EQ(TakeReports(), twoOfTheList);
    EXPECT_EQ(list->count, 0u) << "as the other list was when its items were counted";
    EXPECT_EQ(ItemsOf(source), Items({other}));
    EXPECT_EQ(other->refCount, 2);
}

TEST_F(TqBaseRefListReentered, EmptyingTheAssignedListLeavesItsItemsToTheOther) {
    TqBaseRefList source;
    source.InsertSlot(1, other);
    AppendMortal([&] { source.RemoveAllItems(); });
    *list = source;
    EXPECT_EQ(TakeReports(), twoOfTheList);
    EXPECT_EQ(ItemsOf(*list), Items({other}));
    EXPECT_EQ(source.count, 0u);
    EXPECT_EQ(other->refCount, 2);
    list.reset();
}

TEST_F(TqBaseRefListReentered, EmptyingTheListWhileASlotIsReplacedPutsTheNewItemAtItsEnd) {
    AppendOther();
    AppendOther();
    AppendMortal([this] { list->RemoveAllItems(); });
    Keep(other);
    Keep(other);
    list->ReplaceSlot(3, other);
    EXPECT_EQ(TakeReports(), twoOfTheListAndTheObject);
    EXPECT_EQ(ItemsOf(*list), Items({other}));
    EXPECT_EQ(other->refCount, 2);
    list.reset();
}

TEST(TqRefList, IsTheReferenceListOfAType) {
    int deaths = 0;
    TqRefList<Mortal> list;
    list.InsertSlot(1, new Mortal(deaths));
    {
        const TqRefList<Mortal> copy(list);
        EXPECT_EQ(static_cast<TqBaseObject*>(copy.slots[1])->refCount, 2);
    }
    TqRefList<Mortal> target;
    EXPECT_EQ(&(target = list), &target);
    EXPECT_EQ(ItemsOf(target), ItemsOf(list));
    list.RemoveAllItems();
    EXPECT_EQ(deaths, 0);
    target.RemoveSlot(1);
    EXPECT_EQ(deaths, 1);
}

}  // namespace
