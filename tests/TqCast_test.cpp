#include "TqCast.h"

#include <gtest/gtest.h>

#include <type_traits>
#include <utility>

#include "Reports.h"
#include "SecondBase.h"
#include "TqClassInfo.h"
#include "TqFile.h"
#include "TqFunctionCb.h"

namespace {

class Port : public Named, public TqBaseObject {
    TQ_DECLARE_CLASS(Port)
public:
    Port() : Named("port") {}
};

class FastPort : public Port {
    TQ_DECLARE_CLASS(FastPort)
};

class PlainPort : public Port {};

TQ_IMPLEMENT_CLASS(Port, TqBaseObject)
TQ_IMPLEMENT_CLASS(FastPort, Port)

static_assert(std::is_same<decltype(TqCast<Port>(std::declval<TqBaseObject*>())), Port*>::value,
              "");
static_assert(
    std::is_same<decltype(TqCast<Port>(std::declval<const TqFile*>())), const Port*>::value, "");

TEST(TqCast, GivesTheObjectWhenItIsOfTheClass) {
    Port port;
    TqBaseObject* const object = &port;
    EXPECT_EQ(TqCast<Port>(object), &port);
    EXPECT_EQ(TqCast<TqBaseObject>(object), object);
}

TEST(TqCast, GivesTheObjectWhenItsClassDerivesFromTheOneThatIsAsked) {
    FastPort fast;
    PlainPort plain;
    EXPECT_EQ(TqCast<Port>(static_cast<TqBaseObject*>(&fast)), &fast);
    EXPECT_EQ(TqCast<Port>(static_cast<TqBaseObject*>(&plain)), &plain)
        << "a class without a descriptor has its parent's";
}

TEST(TqCast, GivesNullForAnObjectOfAnotherClass) {
    Port port;
    TqFile file;
    EXPECT_EQ(TqCast<FastPort>(&port), nullptr) << "a parent is not its child";
    EXPECT_EQ(TqCast<Port>(&file), nullptr);
    EXPECT_EQ(TqCast<TqCallback>(&file), nullptr);
    EXPECT_EQ(TakeReports(), Reports());
}

TEST(TqCast, GivesNullForNull) {
    EXPECT_EQ(TqCast<Port>(static_cast<TqBaseObject*>(nullptr)), nullptr);
    EXPECT_EQ(TqCast<Port>(static_cast<const TqBaseObject*>(nullptr)), nullptr);
    EXPECT_EQ(TqCast<Port>(TqRef<Port>()), nullptr);
    EXPECT_EQ(TakeReports(), Reports());
}

TEST(TqCast, KeepsAConstantObjectConstant) {
    const Port port;
    const TqBaseObject* const object = &port;
    EXPECT_EQ(TqCast<Port>(object), &port);
    EXPECT_EQ(TqCast<TqFile>(object), nullptr);
}

TEST(TqCast, GivesWhatAHandleHoldsAndAddsNoReference) {
    Port* const port = new FastPort;
    const TqRef<TqBaseObject> handle(port);
    EXPECT_EQ(TqCast<Port>(handle), port);
    EXPECT_EQ(TqCast<TqFile>(handle), nullptr);
    EXPECT_EQ(port->refCount, 1);
}

TEST(TqCast, NeedsNoRegistration) {
    FastPort port;
    EXPECT_EQ(port.IsA("FastPort"), 0);
    EXPECT_EQ(TqCast<FastPort>(&port), &port);
}

}  // namespace
