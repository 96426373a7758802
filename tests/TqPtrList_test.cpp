#include "TqPtrList.h"

#include <gtest/gtest.h>

#include <vector>

#include "Objects.h"
#include "Reports.h"
#include "SecondBase.h"

namespace {

class TqPtrListOfNumbers : public testing::Test {
protected:
    TqPtrListOfNumbers() {
        for (int& number : numbers) list.Append(&number);
    }

    int numbers[3] = {10, 20, 30};
    TqPtrList<int> list;
};

TEST_F(TqPtrListOfNumbers, HoldsThePointersAsTheyAre) {
    EXPECT_EQ(ItemsOf(list), Items({&numbers[0], &numbers[1], &numbers[2]}));
    EXPECT_EQ(list.At(2), &numbers[1]);
    EXPECT_EQ(list.First(), &numbers[0]);
    EXPECT_EQ(list.Last(), &numbers[2]);
}

TEST_F(TqPtrListOfNumbers, ReportsAnIndexOutOfRangeAndGivesNull) {
    for (const unsigned int index : {0u, 4u, 17u, 0xFFFFFFFFu}) {
        EXPECT_EQ(list.At(index), nullptr);
        EXPECT_EQ(TakeReports(), Reports({"./TqListItems"})) << index;
    }
}

TEST_F(TqPtrListOfNumbers, FindsAndRemovesTheFirstSlotOfAnItem) {
    list.Append(&numbers[1]);
    EXPECT_EQ(list.Find(&numbers[1]), 2u);
    EXPECT_TRUE(list.Remove(&numbers[1]));
    EXPECT_EQ(list.Find(&numbers[1]), 3u);
    int stranger = 0;
    EXPECT_FALSE(list.Remove(&stranger));
    EXPECT_EQ(TakeReports(), Reports());
}

TEST_F(TqPtrListOfNumbers, ReportsANullThatIsAppended) {
    list.Append(static_cast<int*>(nullptr));
    EXPECT_EQ(TakeReports(), Reports({"TqBaseList"}));
    EXPECT_EQ(list.count, 3u);
}

TEST_F(TqPtrListOfNumbers, IsWalkedInSlotOrder) {
    std::vector<int> seen;
    for (const int* number : list) seen.push_back(*number);
    EXPECT_EQ(seen, std::vector<int>({10, 20, 30}));
    EXPECT_EQ(list.walkDepth, 0u);
}

TEST(TqPtrList, ItsFirstAndLastAreNullWhenItIsEmpty) {
    TqPtrList<int> list;
    EXPECT_EQ(list.First(), nullptr);
    EXPECT_EQ(list.Last(), nullptr);
    for (const int* number : list) FAIL() << *number;
    EXPECT_EQ(TakeReports(), Reports());
}

TEST(TqPtrList, HoldsPointersToWhatIsConstant) {
    static const int limits[] = {1, 2};
    TqPtrList<const int> list;
    list.Append(&limits[0]);
    int plain = 3;
    list.Append(&plain);
    EXPECT_EQ(list.At(1), &limits[0]);
    EXPECT_EQ(list.Last(), &plain);
}

TEST(TqPtrList, TakesADerivedObjectAtTheAddressOfItsItemType) {
    NamedObject object("port");
    TqPtrList<TqBaseObject> list;
    list.Append(&object);
    EXPECT_EQ(list.At(1), &object);
    EXPECT_EQ(list.Find(&object), 1u);
    EXPECT_TRUE(list.Remove(&object));
    EXPECT_EQ(list.count, 0u);
}

// Appends through the virtual operation, as applications that override it count on.
TEST(TqPtrList, AppendsThroughTheVirtualInsertSlot) {
    class Counting : public TqPtrList<int> {
    public:
        void InsertSlot(unsigned int index, void* item) override {
            ++inserted;
            TqPtrList<int>::InsertSlot(index, item);
        }
        int inserted = 0;
    };
    int number = 0;
    Counting list;
    list.Append(&number);
    EXPECT_EQ(list.inserted, 1);
    EXPECT_EQ(list.count, 1u);
}

}  // namespace
