#include "TqCallbackData.h"

#include <gtest/gtest.h>

#include <memory>
#include <type_traits>
#include <typeinfo>

#include "Objects.h"
#include "Reports.h"
#include "TqFunctionCb.h"

namespace {

static_assert(std::is_base_of<TqBaseObject, TqCallbackData>::value, "");
static_assert(sizeof(TqCallbackData) == sizeof(TqBaseObject), "no field is added");

// What an application tells its callbacks.
class Change : public TqCallbackData {
public:
    explicit Change(int changedTo) : value(changedTo) {}
    int value;
};

TEST(TqCallbackData, IsAnObjectWithoutReferences) {
    const TqCallbackData data;
    EXPECT_EQ(data.refCount, 0);
    EXPECT_EQ(data.self, &data);
    EXPECT_EQ(TakeReports(), Reports());
}

TEST(TqCallbackData, CopyIsReportedAndFresh) {
    TqCallbackData data;
    data.refCount = 2;
    const TqCallbackData copy(data);
    EXPECT_EQ(TakeReports(), Reports({"TqCallbackData"}));
    EXPECT_EQ(copy.refCount, 0);
    EXPECT_EQ(copy.self, &copy);
    data.refCount = 0;
}

TEST(TqCallbackData, CopyOfDataBeingDestroyedIsReportedOnce) {
    TqCallbackData data;
    data.destroying = 1;
    const TqCallbackData copy(data);
    EXPECT_EQ(TakeReports(), Reports({"TqCallbackData"}));
}

TEST(TqCallbackData, AssigningIsReportedAndChangesNothing) {
    TqCallbackData source, target;
    source.refCount = 2;
    source.seqNum = 7;
    target.seqNum = 9;
    EXPECT_EQ(&(target = source), &target);
    EXPECT_EQ(TakeReports(), Reports({"TqCallbackData"}));
    EXPECT_EQ(target.refCount, 0);
    EXPECT_EQ(target.seqNum, 9u);
    EXPECT_EQ(target.self, &target);
    source.refCount = 0;
}

TEST(TqCallbackData, ItsClassAndCloneAreTheBaseObjects) {
    const TqCallbackData data;
    EXPECT_EQ(data.ClassInfo(), TqBaseObject::TqBaseObjectInitInfo());
    const std::unique_ptr<TqBaseObject> clone(data.Clone());
    const TqBaseObject& cloned = *clone;
    EXPECT_TRUE(typeid(cloned) == typeid(TqBaseObject));
    EXPECT_EQ(TakeReports(), Reports()) << "not a copy of callback data";
}

TEST(TqCallbackData, TellsACallbackWhatItsClassHolds) {
    static int seen;
    TqFunctionCb callback([](TqFunctionCb*, TqBaseObject*,
                             TqCallbackData* data) { seen = static_cast<Change*>(data)->value; },
                          nullptr);
    Change change(42);
    callback.Invoke(nullptr, &change);
    EXPECT_EQ(seen, 42);
}

TEST(TqCallbackData, DestructorClearsSelfInTheMemory) {
    Grave<TqCallbackData> data;
    data.Bury();
    EXPECT_EQ(data.Left(&TqBaseObject::self), nullptr);
}

}  // namespace
