#include "TqCallbackChain.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <type_traits>
#include <typeinfo>
#include <vector>

#include "Objects.h"
#include "Reports.h"
#include "SecondBase.h"
#include "TqFunctionCb.h"

namespace {

static_assert(std::is_base_of<TqPtrList<TqCallback>, TqCallbackChain>::value, "");
static_assert(!std::is_base_of<TqCallback, TqCallbackChain>::value, "");
static_assert(sizeof(TqCallbackChain) == sizeof(TqBasePtrList), "no field is added");

void Append(TqCallbackChain& chain, TqCallback* callback) {
    chain.InsertSlot(chain.count + 1, callback);
}

// A callback that does what it was made for.
class Doing : public TqCallback {
public:
    explicit Doing(std::function<void()> whenInvoked) : TqCallback(nullptr), action(whenInvoked) {}
    void Invoke(TqBaseObject* invoker, TqCallbackData* details) override {
        source = invoker;
        data = details;
        ++calls;
        if (action) action();
    }

    std::function<void()> action;
    TqBaseObject* source = nullptr;
    TqCallbackData* data = nullptr;
    int calls = 0;
};

class TqCallbackChainOf : public testing::Test {
protected:
    std::vector<int> order;
    Doing first{[this] { order.push_back(1); }};
    Doing second{[this] { order.push_back(2); }};
    Doing third{[this] { order.push_back(3); }};
    TqCallbackChain chain;
};

using Order = std::vector<int>;

TEST(TqCallbackChain, StartsEmptyAndInvokesNothing) {
    TqCallbackChain chain;
    EXPECT_EQ(chain.count, 0u);
    EXPECT_EQ(chain.capacity, 16u);
    chain.Invoke(nullptr, nullptr);
    EXPECT_EQ(chain.walkDepth, 0u);
}

TEST_F(TqCallbackChainOf, InvokesEveryCallbackInSlotOrderWithTheSameArguments) {
    TqBaseObject source;
    TqCallbackData data;
    Append(chain, &second);
    Append(chain, &third);
    chain.InsertSlot(1, static_cast<TqCallback*>(&first));
    chain.Invoke(&source, &data);
    EXPECT_EQ(order, Order({1, 2, 3}));
    for (const Doing* callback : {&first, &second, &third}) {
        EXPECT_EQ(callback->source, &source);
        EXPECT_EQ(callback->data, &data);
        EXPECT_EQ(callback->calls, 1);
    }
    EXPECT_EQ(chain.walkDepth, 0u);
}

TEST_F(TqCallbackChainOf, InvokesACallbackOncePerSlot) {
    Append(chain, &first);
    Append(chain, &second);
    Append(chain, &first);
    chain.Invoke(nullptr, nullptr);
    EXPECT_EQ(order, Order({1, 2, 1}));
}

TEST_F(TqCallbackChainOf, InvokesFunctionCallbacksAmongOthers) {
    TqFunctionCb function(
        [](TqFunctionCb* callback, TqBaseObject*, TqCallbackData*) {
            static_cast<Order*>(callback->UserData())->push_back(9);
        },
        &order);
    Append(chain, &first);
    Append(chain, &function);
    chain.Invoke(nullptr, nullptr);
    EXPECT_EQ(order, Order({1, 9}));
}

TEST_F(TqCallbackChainOf, DoesNotInvokeWhatWasRemoved) {
    Append(chain, &first);
    Append(chain, &second);
    EXPECT_EQ(chain.RemoveItem(static_cast<TqCallback*>(&first)), &first);
    chain.Invoke(nullptr, nullptr);
    EXPECT_EQ(order, Order({2}));
}

TEST_F(TqCallbackChainOf, InvokeIsAWalkOverTheList) {
    std::vector<unsigned int> depths;
    Doing outer([&] {
        depths.push_back(chain.walkDepth);
        if (depths.size() == 1) chain.Invoke(nullptr, nullptr);
    });
    Append(chain, &outer);
    chain.Invoke(nullptr, nullptr);
    EXPECT_EQ(depths, std::vector<unsigned int>({1, 2}));
    EXPECT_EQ(chain.walkDepth, 0u);
}

TEST_F(TqCallbackChainOf, InvokeKeepsAWalkOfTheCaller) {
    Append(chain, &first);
    chain.walkDepth = 3;
    chain.Invoke(nullptr, nullptr);
    EXPECT_EQ(chain.walkDepth, 3u);
    chain.walkDepth = 0;
}

TEST_F(TqCallbackChainOf, InvokesWhatIsAppendedOnTheWay) {
    Doing appending([this] { Append(chain, &third); });
    Append(chain, &appending);
    Append(chain, &second);
    chain.Invoke(nullptr, nullptr);
    EXPECT_EQ(order, Order({2, 3}));
    EXPECT_EQ(TakeReports(), Reports());
    EXPECT_EQ(chain.count, 3u);
}

TEST_F(TqCallbackChainOf, StopsWhereTheChainEndsByThen) {
    Doing removing([this] { chain.RemoveSlot(3); });
    Append(chain, &removing);
    Append(chain, &second);
    Append(chain, &third);
    chain.Invoke(nullptr, nullptr);
    EXPECT_EQ(order, Order({2}));
    EXPECT_EQ(TakeReports(), Reports());
}

TEST_F(TqCallbackChainOf, ACallbackThatRemovesItselfHidesTheNextOne) {
    Doing once(nullptr);
    once.action = [&] { chain.RemoveItem(static_cast<TqCallback*>(&once)); };
    Append(chain, &once);
    Append(chain, &second);
    Append(chain, &third);
    chain.Invoke(nullptr, nullptr);
    EXPECT_EQ(order, Order({3})) << "slot 2 is the third callback by then";
    order.clear();
    chain.Invoke(nullptr, nullptr);
    EXPECT_EQ(order, Order({2, 3}));
    EXPECT_EQ(once.calls, 1);
}

TEST_F(TqCallbackChainOf, ACallbackThatIsInsertedBelowIsNotInvokedThisTime) {
    bool done = false;
    Doing inserting([&] {
        if (!done) chain.InsertSlot(1, static_cast<TqCallback*>(&first));
        done = true;
    });
    Append(chain, &inserting);
    chain.Invoke(nullptr, nullptr);
    EXPECT_EQ(order, Order());
    EXPECT_EQ(inserting.calls, 2) << "it moved up to the next slot";
}

TEST_F(TqCallbackChainOf, EmptyingTheChainOnTheWayEndsIt) {
    Doing clearing([this] { chain.RemoveAllItems(); });
    Append(chain, &clearing);
    Append(chain, &second);
    chain.Invoke(nullptr, nullptr);
    EXPECT_EQ(order, Order());
    EXPECT_EQ(chain.walkDepth, 0u);
}

TEST_F(TqCallbackChainOf, AssigningFromInsideACallbackIsReported) {
    TqCallbackChain other;
    Doing assigning([&] { chain = other; });
    Append(chain, &assigning);
    chain.Invoke(nullptr, nullptr);
    EXPECT_EQ(TakeReports(), Reports({"TqCallbackChain"}));
    EXPECT_EQ(chain.count, 1u);
}

TEST_F(TqCallbackChainOf, AssigningTheListFromInsideACallbackIsReportedAsAWalk) {
    TqBasePtrList other;
    Doing assigning([&] { static_cast<TqBasePtrList&>(chain) = other; });
    Append(chain, &assigning);
    chain.Invoke(nullptr, nullptr);
    EXPECT_EQ(TakeReports(), Reports({"TqBaseList"}));
    EXPECT_EQ(chain.count, 0u);
}

TEST(TqCallbackChain, DestroyingItDuringAWalkIsReported) {
    {
        TqCallbackChain chain;
        chain.walkDepth = 1;
    }
    EXPECT_EQ(TakeReports(), Reports({"TqBaseList"}));
}

TEST_F(TqCallbackChainOf, CopyIsReportedAndEmpty) {
    Append(chain, &first);
    const TqCallbackChain copy(chain);
    EXPECT_EQ(TakeReports(), Reports({"TqCallbackChain"}));
    EXPECT_EQ(copy.count, 0u);
    EXPECT_EQ(copy.capacity, 16u);
    EXPECT_EQ(chain.count, 1u);
}

TEST_F(TqCallbackChainOf, CopyOfAChainBeingDestroyedIsReportedOnce) {
    chain.destroying = 1;
    const TqCallbackChain copy(chain);
    EXPECT_EQ(TakeReports(), Reports({"TqCallbackChain"}));
}

TEST_F(TqCallbackChainOf, AssigningIsReportedAndChangesNothing) {
    TqCallbackChain other;
    Append(chain, &first);
    Append(other, &second);
    Append(other, &third);
    EXPECT_EQ(&(chain = other), &chain);
    EXPECT_EQ(TakeReports(), Reports({"TqCallbackChain"}));
    EXPECT_EQ(ItemsOf(chain), Items({static_cast<TqCallback*>(&first)}));
    EXPECT_EQ(other.count, 2u);
}

TEST(TqCallbackChain, DestroyingItLeavesItsCallbacksAlive) {
    Doing callback(nullptr);
    {
        TqCallbackChain chain;
        Append(chain, &callback);
        EXPECT_EQ(callback.refCount, 0);
    }
    callback.Invoke(nullptr, nullptr);
    EXPECT_EQ(callback.calls, 1);
    EXPECT_EQ(callback.self, &callback);
}

TEST_F(TqCallbackChainOf, ItsClassAndCloneAreTheBaseObjects) {
    Append(chain, &first);
    EXPECT_EQ(chain.ClassInfo(), TqBaseObject::TqBaseObjectInitInfo());
    const std::unique_ptr<TqBaseObject> clone(chain.Clone());
    const TqBaseObject& cloned = *clone;
    EXPECT_TRUE(typeid(cloned) == typeid(TqBaseObject));
    EXPECT_EQ(TakeReports(), Reports()) << "not a copy of a chain";
}

TEST(TqCallbackChain, DestructorForgetsTheArrayInTheMemory) {
    Grave<TqCallbackChain> chain;
    chain.Bury();
    EXPECT_EQ(chain.Left(&TqBaseList::slots), nullptr);
    EXPECT_EQ(chain.Left(&TqBaseObject::self), nullptr);
}

TEST_F(TqCallbackChainOf, RefusesANullCallback) {
    chain.InsertSlot(1, nullptr);
    EXPECT_EQ(TakeReports(), Reports({"TqBaseList"}));
    EXPECT_EQ(chain.count, 0u);
}

TEST(TqCallbackChain, AThousandCallbacksThatEachAppendOneAreAllInvokedInOneWalk) {
    const unsigned int thousand = 1000;
    TqCallbackChain chain;
    std::vector<std::unique_ptr<Doing>> callbacks;
    std::vector<unsigned int> order;
    unsigned int appended = 0;
    const auto append = [&](std::function<void()> action) {
        const unsigned int number = chain.count + 1;
        callbacks.emplace_back(new Doing([&order, number, action] {
            order.push_back(number);
            if (action) action();
        }));
        Append(chain, callbacks.back().get());
    };
    for (unsigned int i = 0; i < thousand; ++i) {
        append([&] {
            EXPECT_EQ(chain.walkDepth, 1u);
            if (appended++ < thousand) append(nullptr);
        });
    }

    chain.Invoke(nullptr, nullptr);
    EXPECT_EQ(chain.count, 2 * thousand);
    EXPECT_EQ(chain.walkDepth, 0u);
    ASSERT_EQ(order.size(), 2 * thousand);
    for (unsigned int i = 0; i < 2 * thousand; ++i) EXPECT_EQ(order[i], i + 1);
    EXPECT_EQ(TakeReports(), Reports());

    order.clear();
    chain.Invoke(nullptr, nullptr);
    EXPECT_EQ(order.size(), 2 * thousand) << "the first thousand append no more";
}

TEST_F(TqCallbackChainOf, AppendsGivesAndRemovesItsCallbacksByType) {
    chain.Append(&first);
    chain.Append(&second);
    EXPECT_EQ(chain.At(2), &second);
    EXPECT_EQ(chain.First(), &first);
    EXPECT_EQ(chain.Last(), &second);
    EXPECT_TRUE(chain.Remove(&first));
    EXPECT_FALSE(chain.Remove(&first));
    chain.Invoke(nullptr, nullptr);
    EXPECT_EQ(order, Order({2}));
}

TEST_F(TqCallbackChainOf, IsWalkedByRangeFor) {
    chain.Append(&first);
    chain.Append(&second);
    for (TqCallback* callback : chain) callback->Invoke(nullptr, nullptr);
    EXPECT_EQ(order, Order({1, 2}));
    EXPECT_EQ(chain.walkDepth, 0u);
}

TEST(TqCallbackChain, InvokesAndRemovesACallbackWhoseBaseStandsSecond) {
    NamedCallback callback("tell");
    TqCallbackChain chain;
    chain.Append(&callback);
    chain.Invoke(nullptr, nullptr);
    EXPECT_EQ(callback.calls, 1);
    EXPECT_EQ(chain.RemoveItem(&callback), nullptr)
        << "the untyped removal takes the other address";
    EXPECT_TRUE(chain.Remove(&callback));
    EXPECT_EQ(chain.count, 0u);
}

}  // namespace
