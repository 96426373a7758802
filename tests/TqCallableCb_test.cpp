#include "TqCallableCb.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <type_traits>
#include <vector>

#include "Reports.h"
#include "TqCallbackChain.h"
#include "TqMakeRef.h"

namespace {

static_assert(!std::is_copy_assignable<TqCallableCb>::value, "");

TEST(TqCallableCb, CallsALambdaWithTheSourceAndTheData) {
    TqBaseObject source;
    TqCallbackData data;
    TqBaseObject* seenSource = nullptr;
    TqCallbackData* seenData = nullptr;
    TqCallableCb callback([&](TqBaseObject* invoker, TqCallbackData* details) {
        seenSource = invoker;
        seenData = details;
    });
    callback.Invoke(&source, &data);
    EXPECT_EQ(seenSource, &source);
    EXPECT_EQ(seenData, &data);
    EXPECT_EQ(callback.UserData(), nullptr);
}

TEST(TqCallableCb, CallsWhatTakesNothing) {
    int calls = 0;
    TqCallableCb callback([&] { ++calls; });
    callback.Invoke(nullptr, nullptr);
    callback.Invoke(nullptr, nullptr);
    EXPECT_EQ(calls, 2);
}

TEST(TqCallableCb, KeepsWhatALambdaCaptured) {
    const std::shared_ptr<int> calls = std::make_shared<int>(0);
    {
        TqCallableCb callback([calls]() mutable { ++*calls; });
        EXPECT_EQ(calls.use_count(), 2);
        callback.Invoke(nullptr, nullptr);
    }
    EXPECT_EQ(*calls, 1);
    EXPECT_EQ(calls.use_count(), 1) << "the callable goes with its callback";
}

int plainCalls = 0;
void CountPlainly() {
    ++plainCalls;
}

TEST(TqCallableCb, CallsFunctionsAndCallableObjects) {
    TqCallableCb plain(CountPlainly);
    plain.Invoke(nullptr, nullptr);
    EXPECT_EQ(plainCalls, 1);
    int calls = 0;
    const std::function<void(TqBaseObject*, TqCallbackData*)> named =
        [&](TqBaseObject*, TqCallbackData*) { ++calls; };
    TqCallableCb holding(named);
    holding.Invoke(nullptr, nullptr);
    EXPECT_EQ(calls, 1);
}

TEST(TqCallableCb, DoesNotCallAnEmptyFunction) {
    const std::function<void(TqBaseObject*, TqCallbackData*)> empty;
    TqCallableCb(empty).Invoke(nullptr, nullptr);
    EXPECT_EQ(TakeReports(), Reports());
}

TEST(TqCallableCb, IsInvokedByAChain) {
    std::vector<int> order;
    TqCallableCb first([&] { order.push_back(1); });
    TqCallableCb second([&] { order.push_back(2); });
    TqCallbackChain chain;
    chain.Append(&first);
    chain.Append(&second);
    chain.Invoke(nullptr, nullptr);
    EXPECT_EQ(order, std::vector<int>({1, 2}));
}

TEST(TqCallableCb, CopiesAndClonesCallTheSame) {
    int calls = 0;
    TqCallableCb callback([&] { ++calls; });
    TqCallableCb copy(callback);
    copy.Invoke(nullptr, nullptr);
    const TqRef<TqBaseObject> clone(callback.Clone());
    static_cast<TqCallback*>(clone.Get())->Invoke(nullptr, nullptr);
    EXPECT_EQ(calls, 2);
    EXPECT_EQ(copy.refCount, 0);
    EXPECT_EQ(TakeReports(), Reports());
}

TEST(TqCallableCb, IsHeldByHandlesAsAnyObject) {
    int calls = 0;
    const auto count = [&] { ++calls; };
    const TqRef<TqCallback> handle(TqMakeRef<TqCallableCb>(count));
    handle->Invoke(nullptr, nullptr);
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(handle->ClassInfo(), TqCallback::TqCallbackInitInfo());
}

TEST(TqCallableCb, LetsAnExceptionThrough) {
    TqCallableCb callback([] { throw 7; });
    TqCallbackChain chain;
    chain.Append(&callback);
    EXPECT_THROW(chain.Invoke(nullptr, nullptr), int);
    EXPECT_EQ(chain.walkDepth, 0u);
}

}  // namespace
