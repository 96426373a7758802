#include "TqMakeRef.h"

#include <gtest/gtest.h>

#include <memory>
#include <utility>

#include "Objects.h"
#include "Reports.h"
#include "SecondBase.h"

namespace {

class Owning : public TqBaseObject {
public:
    explicit Owning(std::unique_ptr<int> given) : number(std::move(given)) {}
    std::unique_ptr<int> number;
};

TEST(TqMakeRef, HoldsTheOnlyReferenceOnANewObject) {
    int deaths = 0;
    {
        const TqRef<Mortal> handle = TqMakeRef<Mortal>(deaths);
        EXPECT_EQ(handle->refCount, 1);
    }
    EXPECT_EQ(deaths, 1);
    EXPECT_EQ(TakeReports(), Reports());
}

TEST(TqMakeRef, HandsItsArgumentsOnAsTheyAre) {
    const auto handle = TqMakeRef<Owning>(std::unique_ptr<int>(new int(7)));
    EXPECT_EQ(*handle->number, 7);
}

TEST(TqMakeRef, MakesAnObjectWhoseBaseStandsSecond) {
    EXPECT_EQ(TqMakeRef<NamedObject>("port")->name, "port");
}

}  // namespace
