#include "TqListItems.h"

#include <gtest/gtest.h>

#include <vector>

#include "Reports.h"
#include "TqBasePtrList.h"

namespace {

class TqListWalkOver : public testing::Test {
protected:
    TqListWalkOver() {
        for (int& number : numbers) list.Append(&number);
    }

    bool ReturnsInTheMiddle() {
        for (const int* number : list) {
            if (*number == 20) return list.walkDepth == 1;
        }
        return false;
    }

    int numbers[3] = {10, 20, 30};
    TqPtrList<int> list;
};

TEST_F(TqListWalkOver, IsOverAtTheEndOfTheLoop) {
    for (const int* number : list) EXPECT_EQ(list.walkDepth, 1u) << *number;
    EXPECT_EQ(list.walkDepth, 0u);
}

TEST_F(TqListWalkOver, IsOverWhenItIsLeftByBreak) {
    for (const int* number : list) {
        if (*number == 20) break;
    }
    EXPECT_EQ(list.walkDepth, 0u);
}

TEST_F(TqListWalkOver, IsOverWhenItIsLeftByReturn) {
    EXPECT_TRUE(ReturnsInTheMiddle());
    EXPECT_EQ(list.walkDepth, 0u);
}

TEST_F(TqListWalkOver, IsOverWhenItIsLeftByAnException) {
    EXPECT_THROW(for (const int* number : list) throw *number, int);
    EXPECT_EQ(list.walkDepth, 0u);
}

TEST_F(TqListWalkOver, CountsOnceForEachThatIsNested) {
    for (const int* outer : list) {
        for (const int* inner : list) EXPECT_EQ(list.walkDepth, 2u) << *outer << *inner;
        EXPECT_EQ(list.walkDepth, 1u);
    }
    EXPECT_EQ(list.walkDepth, 0u);
}

TEST_F(TqListWalkOver, ReachesWhatIsAppendedOnTheWay) {
    int late = 40;
    std::vector<int> seen;
    for (const int* number : list) {
        if (*number == 30) list.Append(&late);
        seen.push_back(*number);
    }
    EXPECT_EQ(seen, std::vector<int>({10, 20, 30, 40}));
}

TEST_F(TqListWalkOver, NeverLeavesAListThatIsEmptiedOnTheWay) {
    int steps = 0;
    for (const int* number : list) {
        EXPECT_EQ(*number, 10);
        list.RemoveAllItems();
        ++steps;
    }
    EXPECT_EQ(steps, 1);
}

TEST_F(TqListWalkOver, PassesOverWhatFollowsARemovedItem) {
    std::vector<int> seen;
    for (const int* number : list) {
        seen.push_back(*number);
        if (*number == 10) list.RemoveSlot(1);
    }
    EXPECT_EQ(seen, std::vector<int>({10, 30}));
}

TEST_F(TqListWalkOver, ACopyCountsUntilItGoes) {
    {
        auto walk = list.begin();
        auto copy = walk;
        EXPECT_EQ(list.walkDepth, 2u);
        EXPECT_TRUE(copy == walk);
        EXPECT_EQ(*copy++, &numbers[0]);
        EXPECT_EQ(list.walkDepth, 2u);
        EXPECT_EQ(*copy, &numbers[1]);
        EXPECT_TRUE(copy != walk);
        copy = list.end();
        EXPECT_EQ(list.walkDepth, 1u);
        copy = walk;
        EXPECT_EQ(list.walkDepth, 2u);
        EXPECT_EQ(*copy, &numbers[0]);
        auto& same = copy;
        copy = same;
        EXPECT_EQ(list.walkDepth, 2u);
    }
    EXPECT_EQ(list.walkDepth, 0u);
}

TEST_F(TqListWalkOver, StandsAtTheEndOrDoesNot) {
    EXPECT_TRUE(list.end() == list.end());
    EXPECT_TRUE(list.begin() != list.end());
    EXPECT_TRUE(++ ++ ++list.begin() == list.end());
    EXPECT_TRUE(list.begin() == list.begin());
    EXPECT_TRUE(++list.begin() != list.begin());
    EXPECT_TRUE(++ ++ ++list.begin() == ++ ++ ++list.begin());
    EXPECT_TRUE(++ ++ ++list.begin() != list.begin());
    const auto end = list.end();
    const auto copy = end;
    EXPECT_TRUE(copy == list.end());
}

TEST_F(TqListWalkOver, IsReportedByAListThatIsAssignedTo) {
    const TqPtrList<int> other;
    for (const int* number : list) {
        EXPECT_EQ(*number, 10);
        list = other;
    }
    EXPECT_EQ(TakeReports(), Reports({"TqBaseList"}));
}

}  // namespace
