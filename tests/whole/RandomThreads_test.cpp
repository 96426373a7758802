// Random operations of several threads on everything that the headers let them share: objects,
// handles, reference lists, a registry that is only looked into. With mutexes that fail when told,
// some calls of theirs fail meanwhile. The thread sanitizer watches in its preset.
//
// Short by itself; `scripts/soak threads MINUTES` has it run for long.

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "Objects.h"
#include "Random.h"
#include "Reports.h"
#include "Sanitizers.h"
#include "TqBaseRef.h"
#include "TqBaseRefList.h"
#include "TqCallback.h"
#include "TqClassRegistry.h"
#include "UdpSocket.h"
#ifdef TQ_HAVE_FAULTS
#include "TqLinuxMutex.h"
#endif

namespace {

// Counts without an order, which would be one of the threads as well: the thread sanitizer would
// then take what they do without a lock for what one does after the other.
class Count {
public:
    unsigned int Add(unsigned int some) {
        return count.fetch_add(some, std::memory_order_relaxed) + some;
    }
    void TakeOne() { count.fetch_sub(1, std::memory_order_relaxed); }
    operator unsigned int() const { return count.load(std::memory_order_relaxed); }
    void Clear() { count.store(0, std::memory_order_relaxed); }

private:
    std::atomic<unsigned int> count;
};

Count living;

class Counted : public TqBaseObject {
public:
    Counted() { living.Add(1); }
    ~Counted() override { living.TakeOne(); }
};

using Handle = TqRef<Counted>;
using List = TqRefList<Counted>;

Count failures;

#ifdef TQ_HAVE_FAULTS

Count mutexCalls;

int FailSome(const TqLinuxMutex*, bool, int result) {
    if (result != 0 || mutexCalls.Add(1) % 997 != 0) return result;
    failures.Add(1);
    return 11;
}

#endif

// The failures that are asked for are reported, and nothing else is.
Count reports;

void CountReport(const char*, int) {
    reports.Add(1);
}

Count steps;

// What all threads share. Lists are assigned in one direction only. What is removed from `full` was
// put there before, so that it always has its first items.
struct Shared {
    Shared() {
        for (int i = 0; i < 3; ++i) full.InsertSlot(1, new Counted);
    }

    Handle handles[4];
    List lists[3];
    List full;
};

class Worker {
public:
    Worker(Shared& sharedByAll, unsigned int seed) : shared(sharedByAll), random(seed) {}

    void Step() {
        Handle& handle = shared.handles[random.Below(4)];
        const unsigned int place = random.Below(3);
        List& list = shared.lists[place];
        switch (random.Below(14)) {
            case 0:
                handle = new Counted;
                break;
            case 1:
                handle = mine.Get();
                break;
            case 2:
                handle.AssignNewObject(nullptr);
                break;
            case 3:
                mine = Handle(handle);
                break;
            case 4:
                mine.Assignment(*std::unique_ptr<TqDataType>(handle.Clone()));
                break;
            case 5:
                list.InsertSlot(1, new Counted);
                break;
            case 6:
                InsertOwn(list);
                break;
            case 7:
                own = list;
                break;
            case 8:
                UseCopy(list);
                break;
            case 9:
                list.RemoveAllItems();
                break;
            case 10:
                AssignOwn(list);
                break;
            case 11:
                if (place > 0) shared.lists[place - 1] = list;
                break;
            case 12:
                ChangeFull(shared.full);
                break;
            default:
                LookUp();
        }
    }

private:
    void InsertOwn(List& list) {
        if (!mine.IsEmpty()) list.InsertSlot(1, static_cast<TqBaseObject*>(mine.Get()));
    }

    // Not `own`, which is assigned the other way round: the sanitizer takes orders for mistakes
    // that no two threads can meet.
    void AssignOwn(List& list) {
        List made;
        for (int i = 0; i < 3; ++i) InsertOwn(made);
        list = made;
    }

    // A copy belongs to this thread: it may be read, changed and walked.
    static void UseCopy(const List& list) {
        List copy(list);
        for (const Counted* each : copy) EXPECT_EQ(each->self, each);
        if (copy.count > 1) copy.SwapItems(1, copy.count);
        while (copy.count > 20) copy.RemoveSlot(copy.count);
    }

    void ChangeFull(List& full) {
        full.InsertSlot(random.Below(3) + 1, new Counted);
        full.SwapItems(random.Below(3) + 1, random.Below(3) + 1);
        full.RemoveSlot(random.Below(3) + 1);
    }

    static void LookUp() {
        EXPECT_NE(Counted().ClassInfo(), nullptr);
        EXPECT_EQ(TqBaseObject::TqBaseObjectInitInfo(), TqBaseObject::TqBaseObjectInfo);
    }

    Shared& shared;
    Random random;
    Handle mine;
    List own;
};

#ifdef TQ_THREAD_SANITIZED
const long long usualMilliseconds = 5000;
#else
const long long usualMilliseconds = 1000;
#endif

long long Milliseconds() {
    const char* const seconds = std::getenv("TQ_SOAK_SECONDS");
    return seconds != nullptr ? std::atoll(seconds) * 1000 : usualMilliseconds;
}

unsigned int Seed() {
    const char* const seed = std::getenv("TQ_SOAK_SEED");
    return seed != nullptr ? static_cast<unsigned int>(std::atoi(seed)) : 1;
}

TEST(RandomThreads, NeitherLoseNorForgetAnObject) {
    TqBaseObject::TqBaseObjectInitInfo();
    for (Count* const each : {&living, &failures, &reports, &steps}) each->Clear();
    const TqAssertCb before = TqRegisterAssertCb(CountReport);
#ifdef TQ_HAVE_FAULTS
    TqWatchMutexes(FailSome);
#endif
    {
        Shared shared;
        const long long end = Now() + Milliseconds();
        std::vector<std::thread> threads;
        for (unsigned int i = 0; i < 4; ++i) {
            threads.emplace_back([&shared, end, i] {
                Worker worker(shared, Seed() * 100 + i);
                do {
                    for (int step = 0; step < 100; ++step) worker.Step();
                    steps.Add(100);
                } while (Now() < end);
            });
        }
        for (std::thread& thread : threads) thread.join();
    }
#ifdef TQ_HAVE_FAULTS
    TqWatchMutexes(nullptr);
    EXPECT_GT(failures, 0u);
#endif
    TqRegisterAssertCb(before);
    EXPECT_EQ(living, 0u);
    EXPECT_EQ(reports, failures);
    std::printf("[   STEPS  ] %u, with %u failing mutex calls, from seed %u\n", +steps, +failures,
                Seed());
}

}  // namespace
