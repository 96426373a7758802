// Exceptions of an application's own that pass through the library: from its assertion hook, its
// callbacks, its factories and its values.

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

#include "Objects.h"
#include "Reports.h"
#include "TqBuffer.h"
#include "TqCallbackChain.h"
#include "TqClassRegistry.h"
#include "TqFloat.h"
#include "TqFunctionCb.h"
#include "TqHooks.h"

namespace {

struct Refused {
    std::string by;
};

void Refuse(const char* file, int) {
    throw Refused{file};
}

void RefuseToBeInvoked(TqFunctionCb*, TqBaseObject*, TqCallbackData*) {
    throw Refused{"callback"};
}

TqBaseObject* RefuseToBeMade() {
    throw Refused{"factory"};
}

// Who threw what came out of the action.
std::string Refuser(const std::function<void()>& action) {
    try {
        action();
    } catch (const Refused& refused) {
        return refused.by;
    }
    return "nobody";
}

// A hook that throws, for as long as this lives.
class ThrowingHook {
public:
    ThrowingHook() : before(TqRegisterAssertCb(Refuse)) {}
    ~ThrowingHook() { TqRegisterAssertCb(before); }

    ThrowingHook(const ThrowingHook&) = delete;
    ThrowingHook& operator=(const ThrowingHook&) = delete;

private:
    TqAssertCb before;
};

// A name that cannot be measured.
class Unmeasured : public TqString {
public:
    unsigned int Length() const override { throw Refused{"length"}; }
};

TEST(Exceptions, OfTheHookComeOutOfTheOperationThatReports) {
    const ThrowingHook hook;
    const TqBuffer buffer;
    EXPECT_EQ(Refuser([&] { buffer[0]; }), "TqBuffer");
}

TEST(Exceptions, OfTheHookComeOutThroughOperationsThatCallEachOther) {
    const ThrowingHook hook;
    TqBuffer out;
    EXPECT_EQ(Refuser([&] { TqFloat(2.5f).ToBuffer(out); }), "TqFloat");
    EXPECT_EQ(out.length, 0u);
}

TEST(Exceptions, OfTheHookLeaveAnObjectUncounted) {
    const ThrowingHook hook;
    TqBaseObject object;
    EXPECT_EQ(Refuser([&] { TqBaseObject::IncrementRefCount(&object, 7); }), "TqBaseObject");
    EXPECT_EQ(object.refCount, 0);
    EXPECT_EQ(object.objectMutex.Lock(), 0);
    EXPECT_EQ(object.objectMutex.Unlock(), 0);
}

TEST(Exceptions, OfACallbackComeOutOfItsChain) {
    TqFunctionCb callback(RefuseToBeInvoked, nullptr);
    TqCallbackChain chain;
    chain.InsertSlot(1, static_cast<TqCallback*>(&callback));
    EXPECT_EQ(Refuser([&] { chain.Invoke(nullptr, nullptr); }), "callback");
    EXPECT_EQ(chain.walkDepth, 0u);
}

TEST(Exceptions, EndEachWalkOfAChainThatTheyLeave) {
    TqFunctionCb callback(RefuseToBeInvoked, nullptr);
    TqCallbackChain chain;
    chain.InsertSlot(1, static_cast<TqCallback*>(&callback));
    chain.walkDepth = 2;
    EXPECT_EQ(Refuser([&] { chain.Invoke(nullptr, nullptr); }), "callback");
    EXPECT_EQ(chain.walkDepth, 2u);
    chain.walkDepth = 0;
}

TEST(Exceptions, EndTheWalkOfARegistryThatTheyLeave) {
    TqClassRegistry registry;
    registry.classList.InsertSlot(1, new TqClassInfo("Port", nullptr, nullptr));
    EXPECT_EQ(Refuser([&] { registry.Find(Unmeasured()); }), "length");
    EXPECT_EQ(registry.classList.walkDepth, 0u);
}

TEST(Exceptions, OfAFactoryComeOutOfNewObject) {
    TqClassRegistry registry;
    registry.classList.InsertSlot(1, new TqClassInfo("Port", RefuseToBeMade, nullptr));
    EXPECT_EQ(Refuser([&] { registry.NewObject("Port"); }), "factory");
    EXPECT_EQ(registry.classList.walkDepth, 0u);
}

}  // namespace
