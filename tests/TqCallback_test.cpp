#include "TqCallback.h"

#include <gtest/gtest.h>

#include <memory>
#include <type_traits>
#include <typeinfo>

#include "Objects.h"
#include "Reports.h"
#include "TqClassInfo.h"

namespace {

static_assert(std::is_base_of<TqBaseObject, TqCallback>::value, "");
static_assert(std::is_abstract<TqCallback>::value, "");
static_assert(std::is_same<decltype(TqCallback::userData), void*>::value, "");

TqClassInfo* const infoAtLoad = TqCallback::TqCallbackInfo;

int thing;

// A callback as an application derives one.
class Recorder : public TqCallback {
public:
    explicit Recorder(void* value) : TqCallback(value) {}
    void Invoke(TqBaseObject* invoker, TqCallbackData* details) override {
        source = invoker;
        data = details;
        ++calls;
    }
    TqBaseObject* source = nullptr;
    TqCallbackData* data = nullptr;
    int calls = 0;
};

TEST(TqCallback, HoldsTheUserDataOfItsConstructor) {
    const Recorder callback(&thing), empty(nullptr);
    EXPECT_EQ(callback.UserData(), &thing);
    EXPECT_EQ(callback.userData, &thing);
    EXPECT_EQ(empty.UserData(), nullptr);
    EXPECT_EQ(callback.refCount, 0);
}

TEST(TqCallback, CopyIsANewObjectWithTheSameUserData) {
    Recorder callback(&thing);
    callback.refCount = 3;
    const Recorder copy(callback);
    EXPECT_EQ(TakeReports(), Reports());
    EXPECT_EQ(copy.UserData(), &thing);
    EXPECT_EQ(copy.refCount, 0);
    EXPECT_EQ(copy.self, &copy);
    callback.refCount = 0;
}

TEST(TqCallback, CopyOfACallbackBeingDestroyedIsNotReported) {
    Recorder callback(&thing);
    callback.destroying = 1;
    const Recorder copy(callback);
    EXPECT_EQ(TakeReports(), Reports());
    EXPECT_EQ(copy.destroying, 0);
}

TEST(TqCallback, AssigningIsReportedAndCopiesNothing) {
    const Recorder source(&thing);
    Recorder target(nullptr);
    TqCallback& callback = target;
    EXPECT_EQ(&(callback = source), &callback);
    EXPECT_EQ(TakeReports(), Reports({"TqCallback"}));
    EXPECT_EQ(target.UserData(), nullptr);
}

TEST(TqCallback, InvokeIsVirtualAndHandsItsArgumentsOn) {
    Recorder recorder(nullptr);
    TqCallback& callback = recorder;
    TqBaseObject source;
    TqCallbackData data;
    callback.Invoke(&source, &data);
    EXPECT_EQ(recorder.source, &source);
    EXPECT_EQ(recorder.data, &data);
    callback.Invoke(nullptr, nullptr);
    EXPECT_EQ(recorder.source, nullptr);
    EXPECT_EQ(recorder.data, nullptr);
    EXPECT_EQ(recorder.calls, 2);
}

TEST(TqCallback, HasADescriptorBelowTheBaseObjects) {
    EXPECT_EQ(infoAtLoad, nullptr);
    const Recorder callback(nullptr);
    const TqBaseObject& object = callback;
    TqClassInfo* info = object.ClassInfo();
    EXPECT_STREQ(info->name.data, "TqCallback");
    EXPECT_EQ(info->parent, TqBaseObject::TqBaseObjectInitInfo());
    EXPECT_EQ(info->createFunc, &TqCallbackNewFunc);
    EXPECT_EQ(info, TqCallback::TqCallbackInfo);
    EXPECT_EQ(info, TqCallback::TqCallbackInitInfo());
    EXPECT_EQ(object.ClassInfo(), info);
}

TEST(TqCallback, IsNeverMadeByName) {
    const Recorder callback(nullptr);
    EXPECT_EQ(TqCallbackNewFunc(), nullptr);
    EXPECT_EQ(callback.NewInstance(), nullptr);
    EXPECT_EQ(callback.ClassInfo()->NewObject(), nullptr);
}

TEST(TqCallback, IsAKindOfItselfAndTheBaseObject) {
    const Recorder callback(nullptr);
    EXPECT_EQ(callback.IsA(TqCallback::TqCallbackInitInfo()), 1);
    EXPECT_EQ(callback.IsA(TqBaseObject::TqBaseObjectInitInfo()), 1);
    EXPECT_EQ(TqBaseObject().IsA(TqCallback::TqCallbackInitInfo()), 0);
    const Registered registered(TqCallback::TqCallbackInitInfo());
    EXPECT_EQ(callback.IsA("TqCallback"), 1);
    EXPECT_EQ(callback.IsA("Recorder"), 0);
}

TEST(TqCallback, CloneIsTheBaseObjects) {
    const Recorder callback(&thing);
    const std::unique_ptr<TqBaseObject> clone(callback.Clone());
    const TqBaseObject& cloned = *clone;
    EXPECT_TRUE(typeid(cloned) == typeid(TqBaseObject));
}

TEST(TqCallback, IsDeletedByItsLastReference) {
    class Counting : public Recorder {
    public:
        explicit Counting(int& deathCount) : Recorder(nullptr), deaths(deathCount) {}
        ~Counting() override { ++deaths; }

    private:
        int& deaths;
    };
    int deaths = 0;
    TqBaseObject* callback = new Counting(deaths);
    Keep(callback);
    EXPECT_EQ(Drop(callback), 1);
    EXPECT_EQ(deaths, 1);
}

TEST(TqCallback, DestructorClearsSelfInTheMemory) {
    Grave<Recorder> callback(&thing);
    callback.Bury();
    EXPECT_EQ(callback.Left(&TqBaseObject::self), nullptr);
}

}  // namespace
