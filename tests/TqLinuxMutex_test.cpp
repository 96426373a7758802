#include "TqLinuxMutex.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <thread>
#include <type_traits>
#include <vector>

namespace {

static_assert(std::is_default_constructible<TqLinuxMutex>::value, "");
static_assert(!std::is_copy_constructible<TqLinuxMutex>::value, "a mutex is never copied");
static_assert(!std::is_copy_assignable<TqLinuxMutex>::value, "a mutex is never copied");

TEST(TqLinuxMutex, StartsFreeAndIsLockedAndUnlockedAgainAndAgain) {
    TqLinuxMutex mutex;
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(mutex.Lock(), 0);
        EXPECT_EQ(mutex.Unlock(), 0);
    }
}

TEST(TqLinuxMutex, LockingTwiceFailsAtOnceAndTheMutexStaysHeld) {
    TqLinuxMutex mutex;
    ASSERT_EQ(mutex.Lock(), 0);
    EXPECT_EQ(mutex.Lock(), EDEADLK);
    EXPECT_EQ(mutex.Unlock(), 0);
    EXPECT_EQ(mutex.Unlock(), EPERM);
}

TEST(TqLinuxMutex, UnlockingAFreeMutexFails) {
    TqLinuxMutex mutex;
    EXPECT_EQ(mutex.Unlock(), EPERM);
    EXPECT_EQ(mutex.Lock(), 0);
    EXPECT_EQ(mutex.Unlock(), 0);
}

TEST(TqLinuxMutex, UnlockingForAnotherThreadFails) {
    TqLinuxMutex mutex;
    ASSERT_EQ(mutex.Lock(), 0);
    int result = 0;
    std::thread([&] { result = mutex.Unlock(); }).join();
    EXPECT_EQ(result, EPERM);
    EXPECT_EQ(mutex.Unlock(), 0);
}

TEST(TqLinuxMutex, KeepsThreadsApart) {
    TqLinuxMutex mutex;
    int count = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int step = 0; step < 5000; ++step) {
                mutex.Lock();
                ++count;
                mutex.Unlock();
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(count, 20000);
}

TEST(TqLinuxMutex, IsFreeForOthersWhileAnotherOneIsHeld) {
    TqLinuxMutex mutex, other;
    ASSERT_EQ(mutex.Lock(), 0);
    EXPECT_EQ(other.Lock(), 0);
    EXPECT_EQ(other.Unlock(), 0);
    EXPECT_EQ(mutex.Unlock(), 0);
}

}  // namespace
