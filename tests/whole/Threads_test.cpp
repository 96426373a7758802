// Objects that threads share. The thread sanitizer watches these tests in its preset.

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <functional>
#include <thread>
#include <vector>

#include "Objects.h"
#include "Reports.h"
#include "TqBaseRef.h"
#include "TqBaseRefList.h"

namespace {

const unsigned int threadCount = 8;

// An object that threads may delete.
class Shared : public TqBaseObject {
public:
    explicit Shared(std::atomic<int>& deathCount) : deaths(deathCount) {}
    ~Shared() override { ++deaths; }

private:
    std::atomic<int>& deaths;
};

using Handle = TqRef<Shared>;

// Runs `work` on eight threads that begin at the same time, and waits for them.
void OnEightThreads(const std::function<void(unsigned int)>& work) {
    std::atomic<unsigned int> ready(0);
    std::vector<std::thread> threads;
    for (unsigned int i = 0; i < threadCount; ++i) {
        threads.emplace_back([&, i] {
            ++ready;
            while (ready < threadCount) std::this_thread::yield();
            work(i);
        });
    }
    for (std::thread& thread : threads) thread.join();
}

TEST(Threads, TakeAndDropHandlesOnASharedObject) {
    std::atomic<int> deaths(0);
    Handle shared(new Shared(deaths));
    Shared* const object = static_cast<Shared*>(shared.object);
    OnEightThreads([&](unsigned int) {
        for (int i = 0; i < 2000; ++i) {
            Handle mine(object);
            Handle copy(mine);
            mine = nullptr;
            mine = copy;
        }
    });
    EXPECT_EQ(object->refCount, 1);
    EXPECT_EQ(deaths, 0);
    shared = nullptr;
    EXPECT_EQ(deaths, 1);
}

TEST(Threads, CopyAHandleThatAnotherThreadChanges) {
    std::atomic<int> deaths(0);
    const Handle first(new Shared(deaths)), second(new Shared(deaths));
    Handle changing(first);
    OnEightThreads([&](unsigned int thread) {
        for (int i = 0; i < 2000; ++i) {
            if (thread == 0) {
                changing.AssignNewObject(i % 2 == 0 ? second.object : first.object);
            } else {
                const Handle copy(changing);
                EXPECT_TRUE(copy.object == first.object || copy.object == second.object);
            }
        }
    });
    changing = nullptr;
    EXPECT_EQ(first.object->refCount, 1);
    EXPECT_EQ(second.object->refCount, 1);
    EXPECT_EQ(deaths, 0);
}

TEST(Threads, AssignOneHandleFromAllSides) {
    std::atomic<int> deaths(0);
    Handle contended;
    OnEightThreads([&](unsigned int) {
        for (int i = 0; i < 1000; ++i) contended = new Shared(deaths);
    });
    EXPECT_EQ(deaths, 8 * 1000 - 1);
    EXPECT_EQ(contended.object->refCount, 1);
    contended = nullptr;
    EXPECT_EQ(deaths, 8 * 1000);
}

TEST(Threads, LastHolderDeletesExactlyOnce) {
    const unsigned int objectCount = 1000;
    std::atomic<int> deaths(0), deletions(0);
    std::vector<TqBaseObject*> objects;
    for (unsigned int i = 0; i < objectCount; ++i) {
        objects.push_back(new Shared(deaths));
        for (unsigned int thread = 0; thread < threadCount; ++thread) Keep(objects.back());
    }
    OnEightThreads([&](unsigned int) {
        for (TqBaseObject* object : objects) deletions += Drop(object);
    });
    EXPECT_EQ(deaths, 1000);
    EXPECT_EQ(deletions, 1000);
}

TEST(Threads, LastOfEightHandlesDeletesExactlyOnce) {
    std::atomic<int> deaths(0);
    for (int round = 0; round < 20; ++round) {
        std::vector<Handle> handles(threadCount, Handle(new Shared(deaths)));
        OnEightThreads([&](unsigned int thread) { handles[thread] = nullptr; });
        EXPECT_EQ(deaths, round + 1);
    }
}

TEST(Threads, InsertIntoAndRemoveFromOneReferenceList) {
    std::atomic<int> deaths(0);
    const Handle shared(new Shared(deaths));
    TqRefList<Shared> list;
    // Each thread has inserted before it removes, so that slot 1 is always there.
    OnEightThreads([&](unsigned int thread) {
        for (int i = 0; i < 1000; ++i) {
            list.InsertSlot(1, shared.object);
            list.InsertSlot(1, new Shared(deaths));
            list.RemoveSlot(1);
            if (thread % 2 == 0) list.RemoveSlot(1);
        }
    });
    EXPECT_EQ(list.count, 4u * 1000);
    list.RemoveAllItems();
    EXPECT_EQ(deaths, 8 * 1000);
    EXPECT_EQ(shared.object->refCount, 1);
}

TEST(Threads, FillAndClearOneReferenceList) {
    std::atomic<int> deaths(0);
    TqRefList<Shared> list;
    OnEightThreads([&](unsigned int thread) {
        for (int i = 0; i < 500; ++i) {
            list.InsertSlot(1, new Shared(deaths));
            if (thread == 0 && i % 10 == 0) list.RemoveAllItems();
        }
    });
    list.RemoveAllItems();
    EXPECT_EQ(deaths, 8 * 500);
}

// The array grows at 16, 32 and 48 entries, so copies are taken on both sides of each step.
TEST(Threads, CopyAndAssignAReferenceListThatAnotherThreadChanges) {
    std::atomic<int> deaths(0);
    std::atomic<unsigned int> copying(threadCount - 1);
    const Handle shared(new Shared(deaths));
    TqRefList<Shared> changing;
    OnEightThreads([&](unsigned int thread) {
        if (thread == 0) {
            while (copying != 0) {
                while (changing.count < 60) changing.InsertSlot(1, shared.object);
                while (changing.count > 0) changing.RemoveSlot(1);
            }
            return;
        }
        TqRefList<Shared> mine;
        for (int i = 0; i < 1000; ++i) {
            const TqRefList<Shared> copy(changing);
            EXPECT_EQ(ItemsOf(copy), Items(copy.count, shared.object));
            mine = changing;
            EXPECT_EQ(ItemsOf(mine), Items(mine.count, shared.object));
        }
        --copying;
    });
    EXPECT_EQ(shared.object->refCount, 1);
    EXPECT_EQ(deaths, 0);
}

// Swapping looks at the count before it takes the lock.
TEST(Threads, SwapSlotsOfAReferenceListThatOtherThreadsChange) {
    std::atomic<int> deaths(0);
    TqRefList<Shared> list;
    for (unsigned int i = 1; i <= 4; ++i) list.InsertSlot(i, new Shared(deaths));
    OnEightThreads([&](unsigned int thread) {
        for (int i = 0; i < 500; ++i) {
            if (thread % 2 == 0) {
                list.SwapItems(1, 3);
            } else {
                list.InsertSlot(1, new Shared(deaths));
                list.RemoveSlot(1);
            }
        }
    });
    EXPECT_EQ(list.count, 4u);
    list.RemoveAllItems();
    EXPECT_EQ(deaths, 4 + 4 * 500);
}

TEST(Threads, HoldTheItemsOfAListThatIsCleared) {
    std::atomic<int> deaths(0);
    TqRefList<Shared> list;
    const Handle shared(new Shared(deaths));
    for (unsigned int i = 1; i <= 100; ++i) list.InsertSlot(i, shared.object);
    OnEightThreads([&](unsigned int thread) {
        if (thread == 0) list.RemoveAllItems();
        for (int i = 0; i < 1000; ++i) const Handle mine(static_cast<Shared*>(shared.object));
    });
    EXPECT_EQ(shared.object->refCount, 1);
    EXPECT_EQ(deaths, 0);
}

TEST(Threads, AssignToAReferenceListThatOthersChange) {
    std::atomic<int> deaths(0);
    const Handle shared(new Shared(deaths));
    TqRefList<Shared> target;
    OnEightThreads([&](unsigned int thread) {
        TqRefList<Shared> mine;
        for (unsigned int i = 1; i <= 20 + thread; ++i) mine.InsertSlot(i, shared.object);
        for (int i = 0; i < 200; ++i) {
            if (thread % 2 == 0) {
                target = mine;
            } else {
                target.InsertSlot(1, shared.object);
            }
        }
    });
    EXPECT_EQ(shared.object->refCount, 1 + static_cast<int>(target.count));
    target.RemoveAllItems();
    EXPECT_EQ(shared.object->refCount, 1);
}

TEST(Threads, SwapItemsOfOneReferenceList) {
    std::atomic<int> deaths(0);
    TqRefList<Shared> list;
    for (unsigned int i = 1; i <= threadCount; ++i) list.InsertSlot(i, new Shared(deaths));
    const Items before = ItemsOf(list);
    OnEightThreads([&](unsigned int thread) {
        for (unsigned int i = 0; i < 2000; ++i) {
            list.SwapItems(thread + 1, i % threadCount + 1);
        }
    });
    const Items after = ItemsOf(list);
    EXPECT_TRUE(std::is_permutation(before.begin(), before.end(), after.begin()));
    list.RemoveAllItems();
    EXPECT_EQ(deaths, 8);
}

TEST(Threads, AssignDifferentListsFromOneAndTheSame) {
    std::atomic<int> deaths(0);
    TqRefList<Shared> source;
    for (unsigned int i = 1; i <= 20; ++i) source.InsertSlot(i, new Shared(deaths));
    OnEightThreads([&](unsigned int) {
        TqRefList<Shared> mine;
        for (int i = 0; i < 50; ++i) mine = source;
        EXPECT_EQ(mine.count, 20u);
    });
    for (unsigned int i = 1; i <= 20; ++i)
        EXPECT_EQ(static_cast<TqBaseObject*>(source.slots[i])->refCount, 1);
    source.RemoveAllItems();
    EXPECT_EQ(deaths, 20);
}

}  // namespace
