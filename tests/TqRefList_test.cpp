#include "TqRefList.h"

#include <gtest/gtest.h>

#include <type_traits>
#include <utility>
#include <vector>

#include "Objects.h"
#include "Reports.h"
#include "SecondBase.h"
#include "TqRef.h"

namespace {

using Ports = TqRefList<NamedObject>;

static_assert(std::is_same<decltype(std::declval<const Ports&>().At(1u)), NamedObject*>::value, "");

class FastPort : public NamedObject {
public:
    FastPort() : NamedObject("fast") {}
};

class TqRefListOfTwo : public testing::Test {
protected:
    TqRefListOfTwo() {
        list.Append(first);
        list.Append(second);
    }

    NamedObject* const first = new NamedObject("first");
    NamedObject* const second = new NamedObject("second");
    Ports list;
};

TEST_F(TqRefListOfTwo, AppendsBehindTheOthersWithAReference) {
    EXPECT_EQ(list.count, 2u);
    EXPECT_EQ(first->refCount, 1);
    EXPECT_EQ(TakeReports(), Reports());
}

TEST_F(TqRefListOfTwo, HoldsTheBaseOfAnObjectWhereverThatStands) {
    TqBaseObject* const base = first;
    EXPECT_EQ(list.slots[1], base);
    EXPECT_NE(list.slots[1], static_cast<void*>(first));
    EXPECT_EQ(list.At(1), first);
    EXPECT_EQ(list.At(2)->name, "second");
}

TEST_F(TqRefListOfTwo, TakesWhatDerivesFromItsItemType) {
    FastPort* const fast = new FastPort;
    list.Append(fast);
    EXPECT_EQ(list.Last(), fast);
    EXPECT_EQ(list.Find(fast), 3u);
}

TEST_F(TqRefListOfTwo, ReportsAnIndexOutOfRangeAndGivesNull) {
    for (const unsigned int index : {0u, 3u, 17u, 0xFFFFFFFFu}) {
        EXPECT_EQ(list.At(index), nullptr);
        EXPECT_EQ(TakeReports(), Reports({"./TqListItems"})) << index;
    }
}

TEST_F(TqRefListOfTwo, KnowsItsFirstAndItsLast) {
    EXPECT_EQ(list.First(), first);
    EXPECT_EQ(list.Last(), second);
    list.RemoveAllItems();
    EXPECT_EQ(list.First(), nullptr);
    EXPECT_EQ(list.Last(), nullptr);
    EXPECT_EQ(TakeReports(), Reports());
}

TEST_F(TqRefListOfTwo, FindsAndRemovesAnItemByItsOwnType) {
    const TqRef<NamedObject> keeping(first);
    EXPECT_EQ(list.FindSlot(first), 0u) << "the untyped search takes the other address";
    EXPECT_EQ(list.Find(first), 1u);
    EXPECT_TRUE(list.Remove(first));
    EXPECT_EQ(list.Find(first), 0u);
    EXPECT_FALSE(list.Remove(first));
    EXPECT_EQ(first->refCount, 1);
    EXPECT_EQ(list.At(1), second);
}

TEST_F(TqRefListOfTwo, ReportsANullThatIsAppended) {
    list.Append(static_cast<NamedObject*>(nullptr));
    EXPECT_EQ(TakeReports(), Reports({"TqBaseRefList", "TqBaseList"}));
    EXPECT_EQ(list.count, 2u);
}

TEST_F(TqRefListOfTwo, IsWalkedInSlotOrder) {
    std::vector<NamedObject*> seen;
    for (NamedObject* port : list) {
        EXPECT_EQ(list.walkDepth, 1u);
        seen.push_back(port);
    }
    EXPECT_EQ(seen, (std::vector<NamedObject*>{first, second}));
    EXPECT_EQ(list.walkDepth, 0u);
}

TEST_F(TqRefListOfTwo, IsWalkedWhenItIsConstant) {
    const Ports& constant = list;
    for (NamedObject* port : constant) EXPECT_EQ(port->refCount, 1);
    EXPECT_EQ(list.walkDepth, 0u);
}

TEST_F(TqRefListOfTwo, ReportsBeingAssignedToDuringAWalk) {
    Ports other;
    for (NamedObject* port : list) {
        EXPECT_NE(port, nullptr);
        list = other;
    }
    EXPECT_EQ(TakeReports(), Reports({"TqBaseList"}));
}

TEST(TqRefList, LetsItsItemsGo) {
    int deaths = 0;
    {
        TqRefList<Mortal> list;
        list.Append(new Mortal(deaths));
        list.Append(new Mortal(deaths));
        EXPECT_TRUE(list.Remove(list.First()));
        EXPECT_EQ(deaths, 1);
    }
    EXPECT_EQ(deaths, 2);
}

}  // namespace
