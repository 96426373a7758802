#include "TqRef.h"

#include <gtest/gtest.h>

#include <type_traits>
#include <utility>

#include "Objects.h"
#include "Reports.h"
#include "SecondBase.h"

namespace {

using Handle = TqRef<Mortal>;

static_assert(std::is_same<decltype(std::declval<const Handle&>().Get()), Mortal*>::value, "");
static_assert(std::is_same<decltype(*std::declval<const Handle&>()), Mortal&>::value, "");
static_assert(std::is_constructible<bool, Handle>::value, "a handle is a condition");
static_assert(!std::is_convertible<Handle, bool>::value, "and not a number by accident");
static_assert(!std::is_convertible<Handle, Mortal*>::value, "nor a pointer by accident");

TEST(TqRef, GetGivesTheObjectAndAddsNoReference) {
    int deaths = 0;
    Mortal* const object = new Mortal(deaths);
    const Handle handle(object);
    EXPECT_EQ(handle.Get(), object);
    EXPECT_EQ(object->refCount, 1);
}

TEST(TqRef, GetOfAnEmptyHandleIsNull) {
    EXPECT_EQ(Handle().Get(), nullptr);
    EXPECT_EQ(TqRef<NamedObject>().Get(), nullptr) << "also where the base stands second";
    EXPECT_EQ(TakeReports(), Reports());
}

TEST(TqRef, ArrowAndStarReachTheObject) {
    const TqRef<NamedObject> handle(new NamedObject("port"));
    EXPECT_EQ(handle->name, "port");
    EXPECT_EQ((*handle).name, "port");
    (*handle).name = "lag";
    EXPECT_EQ(handle->name, "lag");
}

TEST(TqRef, ReachesAnObjectWhoseBaseStandsSecond) {
    NamedObject* const object = new NamedObject("port");
    const TqRef<NamedObject> handle(object);
    ASSERT_NE(static_cast<void*>(object), static_cast<void*>(static_cast<TqBaseObject*>(object)));
    EXPECT_EQ(handle.Get(), object);
    EXPECT_EQ(&*handle, object);
}

TEST(TqRef, TellsWhetherItIsEmpty) {
    int deaths = 0;
    Handle handle;
    EXPECT_TRUE(handle.IsEmpty());
    EXPECT_FALSE(handle);
    handle = new Mortal(deaths);
    EXPECT_FALSE(handle.IsEmpty());
    EXPECT_EQ(handle ? 1 : 2, 1);
    handle = nullptr;
    EXPECT_TRUE(handle.IsEmpty());
    EXPECT_EQ(deaths, 1);
}

}  // namespace
