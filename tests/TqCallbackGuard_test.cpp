#include "TqCallbackGuard.h"

#include <gtest/gtest.h>

#include <type_traits>

#include "Reports.h"
#include "SecondBase.h"
#include "TqCallableCb.h"

namespace {

static_assert(!std::is_copy_constructible<TqCallbackGuard>::value, "one guard, one removal");
static_assert(!std::is_copy_assignable<TqCallbackGuard>::value, "");

class TqCallbackGuardOf : public testing::Test {
protected:
    int calls = 0;
    TqCallableCb count{[this] { ++calls; }};
    TqCallbackChain chain;
};

TEST_F(TqCallbackGuardOf, KeepsTheCallbackInTheChainForItsScope) {
    {
        const TqCallbackGuard guard(chain, count);
        EXPECT_EQ(chain.Last(), &count);
        chain.Invoke(nullptr, nullptr);
    }
    EXPECT_EQ(chain.count, 0u);
    chain.Invoke(nullptr, nullptr);
    EXPECT_EQ(calls, 1);
}

TEST_F(TqCallbackGuardOf, TakesTheCallbackOutWhenAnExceptionLeavesTheScope) {
    try {
        const TqCallbackGuard guard(chain, count);
        throw 7;
    } catch (int) {
    }
    EXPECT_EQ(chain.count, 0u);
}

TEST_F(TqCallbackGuardOf, LeavesOtherCallbacksInTheChain) {
    TqCallableCb other([] {});
    const TqCallbackGuard outer(chain, other);
    { const TqCallbackGuard guard(chain, count); }
    EXPECT_EQ(chain.count, 1u);
    EXPECT_EQ(chain.First(), &other);
}

TEST_F(TqCallbackGuardOf, DoesNotMindThatTheCallbackIsGoneAlready) {
    {
        const TqCallbackGuard guard(chain, count);
        EXPECT_TRUE(chain.Remove(&count));
    }
    EXPECT_EQ(chain.count, 0u);
    EXPECT_EQ(TakeReports(), Reports());
}

TEST_F(TqCallbackGuardOf, TakesACallbackWhoseBaseStandsSecond) {
    NamedCallback callback("tell");
    {
        const TqCallbackGuard guard(chain, callback);
        chain.Invoke(nullptr, nullptr);
    }
    EXPECT_EQ(callback.calls, 1);
    EXPECT_EQ(chain.count, 0u);
}

}  // namespace
