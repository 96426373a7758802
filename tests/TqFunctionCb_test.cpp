#include "TqFunctionCb.h"

#include <gtest/gtest.h>

#include <memory>
#include <type_traits>
#include <typeinfo>

#include "Objects.h"
#include "Reports.h"
#include "TqClassInfo.h"

namespace {

using Function = void (*)(TqFunctionCb*, TqBaseObject*, TqCallbackData*);

static_assert(std::is_base_of<TqCallback, TqFunctionCb>::value, "");
static_assert(std::is_same<decltype(TqFunctionCb::function), Function>::value, "");

struct Call {
    TqFunctionCb* callback;
    TqBaseObject* source;
    TqCallbackData* data;
    void* userData;
};

std::vector<Call> calls;

void Record(TqFunctionCb* callback, TqBaseObject* source, TqCallbackData* data) {
    calls.push_back({callback, source, data, callback->UserData()});
}

void Ignore(TqFunctionCb*, TqBaseObject*, TqCallbackData*) {}

int thing;

class TqFunctionCbCalls : public testing::Test {
protected:
    TqFunctionCbCalls() { calls.clear(); }
};

TEST_F(TqFunctionCbCalls, HoldsItsFunctionAndUserData) {
    const TqFunctionCb callback(Record, &thing);
    EXPECT_EQ(callback.function, Record);
    EXPECT_EQ(callback.UserData(), &thing);
    EXPECT_EQ(callback.refCount, 0);
    EXPECT_TRUE(calls.empty());
}

TEST_F(TqFunctionCbCalls, InvokeCallsTheFunctionWithTheCallbackFirst) {
    TqFunctionCb callback(Record, &thing);
    TqCallback& base = callback;
    TqBaseObject source;
    TqCallbackData data;
    base.Invoke(&source, &data);
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_EQ(calls[0].callback, &callback);
    EXPECT_EQ(calls[0].source, &source);
    EXPECT_EQ(calls[0].data, &data);
    EXPECT_EQ(calls[0].userData, &thing);
}

TEST_F(TqFunctionCbCalls, InvokeHandsNullsOn) {
    TqFunctionCb callback(Record, nullptr);
    callback.Invoke(nullptr, nullptr);
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_EQ(calls[0].callback, &callback);
    EXPECT_EQ(calls[0].source, nullptr);
    EXPECT_EQ(calls[0].data, nullptr);
}

TEST_F(TqFunctionCbCalls, InvokeWithoutAFunctionDoesNothing) {
    TqFunctionCb callback(nullptr, &thing);
    TqBaseObject source;
    callback.Invoke(&source, nullptr);
    EXPECT_EQ(callback.function, nullptr);
    EXPECT_EQ(TakeReports(), Reports());
}

TEST_F(TqFunctionCbCalls, CopyHasTheSameFunctionAndUserData) {
    TqFunctionCb callback(Record, &thing);
    callback.refCount = 2;
    TqFunctionCb copy(callback);
    EXPECT_EQ(TakeReports(), Reports());
    EXPECT_EQ(copy.function, Record);
    EXPECT_EQ(copy.UserData(), &thing);
    EXPECT_EQ(copy.refCount, 0);
    copy.Invoke(nullptr, nullptr);
    EXPECT_EQ(calls.at(0).callback, &copy);
    callback.refCount = 0;
}

TEST(TqFunctionCb, AssigningIsReportedByBothClassesAndCopiesNothing) {
    const TqFunctionCb source(Record, &thing);
    TqFunctionCb target(Ignore, nullptr);
    EXPECT_EQ(&(target = source), &target);
    EXPECT_EQ(TakeReports(), Reports({"TqCallback", "TqFunctionCb"}));
    EXPECT_EQ(target.function, Ignore);
    EXPECT_EQ(target.UserData(), nullptr);
}

TEST(TqFunctionCb, CloneIsAFunctionCallbackOfItsOwn) {
    TqFunctionCb callback(Record, &thing);
    callback.refCount = 2;
    const TqBaseObject& base = callback;
    const std::unique_ptr<TqBaseObject> clone(base.Clone());
    const TqBaseObject& object = *clone;
    ASSERT_TRUE(typeid(object) == typeid(TqFunctionCb));
    const TqFunctionCb& cloned = static_cast<const TqFunctionCb&>(object);
    EXPECT_NE(&cloned, &callback);
    EXPECT_EQ(cloned.function, Record);
    EXPECT_EQ(cloned.UserData(), &thing);
    EXPECT_EQ(cloned.refCount, 0);
    EXPECT_EQ(TakeReports(), Reports());
    callback.refCount = 0;
}

TEST(TqFunctionCb, ItsClassIsTheCallbacks) {
    const TqFunctionCb callback(Record, nullptr);
    const TqBaseObject& object = callback;
    EXPECT_EQ(object.ClassInfo(), TqCallback::TqCallbackInitInfo());
    EXPECT_STREQ(object.ClassInfo()->name.data, "TqCallback");
    EXPECT_EQ(callback.NewInstance(), nullptr);
}

TEST(TqFunctionCb, DestructorClearsSelfInTheMemory) {
    Grave<TqFunctionCb> callback(Ignore, nullptr);
    callback.Bury();
    EXPECT_EQ(callback.Left(&TqBaseObject::self), nullptr);
}

}  // namespace
