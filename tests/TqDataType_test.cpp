#include "TqDataType.h"

#include <gtest/gtest.h>

#include <memory>
#include <type_traits>

#include "Reports.h"
#include "TqBoolean.h"
#include "TqBuffer.h"
#include "TqCounter.h"
#include "TqNumber.h"
#include "TqString.h"

namespace {

// Read before any test, and so any operation, has run.
const short freeTypeIdAtLoad = TqDataType::currentFreeTypeId;
const short typeIdsAtLoad[] = {TqString::typeId, TqNumber::typeId, TqCounter::typeId,
                               TqBoolean::typeId, TqBuffer::typeId};

static_assert(std::is_abstract<TqDataType>::value, "a value always has a type");
static_assert(sizeof(TqDataType) == sizeof(void*), "no data members");
static_assert(std::has_virtual_destructor<TqDataType>::value, "values are deleted by their root");
static_assert(std::is_same<decltype(TqDataType::currentFreeTypeId), short>::value, "16 bits");

template <class T>
constexpr bool CopiesAndAssigns() {
    return std::is_copy_constructible<T>::value && std::is_copy_assignable<T>::value &&
           std::is_default_constructible<T>::value && std::is_base_of<TqDataType, T>::value &&
           std::is_same<decltype(T::typeId), short>::value;
}
static_assert(CopiesAndAssigns<TqString>(), "");
static_assert(CopiesAndAssigns<TqBuffer>(), "");
static_assert(CopiesAndAssigns<TqNumber>(), "");
static_assert(CopiesAndAssigns<TqCounter>(), "");
static_assert(CopiesAndAssigns<TqBoolean>(), "");

// A value type as an application writes one, with an id that is drawn at run time.
template <int which>
class Celsius : public TqDataType {
public:
    explicit Celsius(int startDegrees = 0) : degrees(startDegrees) {}
    short TypeId() const override {
        NextId(&typeId);
        return typeId;
    }
    TqDataType* Clone() const override { return new Celsius(*this); }
    void ToString(TqString&) const override {}
    void FromString(const char*) override {}
    void ToBuffer(TqBuffer&) const override {}
    void FromBuffer(TqBuffer&) override {}
    int Compare(const TqDataType&) const override { return 0; }
    bool Equals(const TqDataType* other) const override {
        return other != nullptr && static_cast<const Celsius*>(other)->degrees == degrees;
    }
    void Assignment(const TqDataType&) override {}

    int degrees;
    static short typeId;
};

template <int which>
short Celsius<which>::typeId = 0;

// Leaves the ids as they were for the tests of the types that draw one.
class TqDataTypeIds : public testing::Test {
protected:
    TqDataTypeIds() : kept(TqDataType::currentFreeTypeId) { TqDataType::currentFreeTypeId = 12; }
    ~TqDataTypeIds() override { TqDataType::currentFreeTypeId = kept; }

private:
    short kept;
};

TEST(TqDataType, FixedTypeIdsCanBeNamedBeforeAnyCall) {
    const short stated[] = {1, 2, 3, 4, 6};
    for (int i = 0; i < 5; ++i) EXPECT_EQ(typeIdsAtLoad[i], stated[i]);
}

TEST(TqDataType, FirstFreeTypeIdIs12) {
    EXPECT_EQ(freeTypeIdAtLoad, 12);
}

TEST(TqDataType, TypeIdsAreTheStatedOnes) {
    EXPECT_EQ(TqString().TypeId(), 1);
    EXPECT_EQ(TqNumber().TypeId(), 2);
    EXPECT_EQ(TqCounter().TypeId(), 3);
    EXPECT_EQ(TqBoolean().TypeId(), 4);
    EXPECT_EQ(TqBuffer().TypeId(), 6);
}

template <class T>
short TypeIdWhenTheMemberSays99() {
    const short kept = T::typeId;
    T::typeId = 99;
    const short id = T().TypeId();
    T::typeId = kept;
    return id;
}

TEST(TqDataType, FixedTypeIdsAreNotReadFromTheMember) {
    EXPECT_EQ(TypeIdWhenTheMemberSays99<TqString>(), 1);
    EXPECT_EQ(TypeIdWhenTheMemberSays99<TqNumber>(), 2);
    EXPECT_EQ(TypeIdWhenTheMemberSays99<TqCounter>(), 3);
    EXPECT_EQ(TypeIdWhenTheMemberSays99<TqBoolean>(), 4);
    EXPECT_EQ(TypeIdWhenTheMemberSays99<TqBuffer>(), 6);
}

TEST_F(TqDataTypeIds, NextIdAssignsTheFreeIdAndCountsUp) {
    short id = 0;
    TqDataType::NextId(&id);
    EXPECT_EQ(id, 12);
    EXPECT_EQ(TqDataType::currentFreeTypeId, 13);
}

TEST_F(TqDataTypeIds, NextIdLeavesAnAssignedIdAlone) {
    const short assignedIds[] = {5, 1, 12, -1, 32767};
    for (const short assigned : assignedIds) {
        short id = assigned;
        TqDataType::NextId(&id);
        EXPECT_EQ(id, assigned);
    }
    EXPECT_EQ(TqDataType::currentFreeTypeId, 12);
}

TEST_F(TqDataTypeIds, NextIdDoesNotMindTheLastId) {
    TqDataType::currentFreeTypeId = 32767;
    short id = 0;
    TqDataType::NextId(&id);
    EXPECT_EQ(id, 32767);
}

TEST_F(TqDataTypeIds, RunTimeIdsAreHandedOutInTheOrderOfAsking) {
    const Celsius<1> first;
    const Celsius<2> second;
    Celsius<1>::typeId = Celsius<2>::typeId = 0;
    EXPECT_EQ(second.TypeId(), 12);
    EXPECT_EQ(first.TypeId(), 13);
    EXPECT_EQ(second.TypeId(), 12);
    EXPECT_EQ(first.TypeId(), 13);
    EXPECT_EQ(Celsius<1>().TypeId(), 13);
    EXPECT_EQ(TqDataType::currentFreeTypeId, 14);
}

TEST(TqDataType, DoesNotEqualIsTheNegationOfTheTypesOwnEquals) {
    const Celsius<3> warm(30), alsoWarm(30), cold(-5);
    const TqDataType& value = warm;
    EXPECT_FALSE(value.DoesNotEqual(&warm));
    EXPECT_FALSE(value.DoesNotEqual(&alsoWarm));
    EXPECT_TRUE(value.DoesNotEqual(&cold));
    EXPECT_TRUE(value.DoesNotEqual(nullptr));
}

TEST(TqDataType, NullIsEqualToNothing) {
    EXPECT_TRUE(TqString().DoesNotEqual(nullptr));
    EXPECT_TRUE(TqNumber().DoesNotEqual(nullptr));
    EXPECT_TRUE(TqCounter().DoesNotEqual(nullptr));
    EXPECT_TRUE(TqBoolean().DoesNotEqual(nullptr));
    EXPECT_EQ(TakeReports(), Reports());
    EXPECT_TRUE(TqBuffer().DoesNotEqual(nullptr));
    EXPECT_EQ(TakeReports(), Reports({"TqBuffer"}));
}

// A value is taken through its root alone, as a list of mixed values does.
void ExpectACloneOf(const TqDataType& value, TqDataType& scratch) {
    const std::unique_ptr<TqDataType> clone(value.Clone());
    EXPECT_NE(clone.get(), &value);
    EXPECT_EQ(clone->TypeId(), value.TypeId());
    EXPECT_TRUE(clone->Equals(&value));
    EXPECT_FALSE(clone->DoesNotEqual(&value));
    EXPECT_EQ(clone->Compare(value), 0);
    EXPECT_TRUE(scratch.DoesNotEqual(&value));
    scratch.Assignment(*clone);
    EXPECT_TRUE(scratch.Equals(&value));
}

TEST(TqDataType, EveryTypeIsClonedAndAssignedThroughItsRoot) {
    TqString string;
    ExpectACloneOf(TqString("text"), string);
    TqNumber number;
    ExpectACloneOf(TqNumber(-42), number);
    TqCounter counter;
    ExpectACloneOf(TqCounter(3000000000u), counter);
    TqBoolean boolean;
    ExpectACloneOf(TqBoolean(1), boolean);
    TqBuffer buffer;
    const unsigned char bytes[] = {1, 0, 2};
    ExpectACloneOf(TqBuffer(bytes, 3), buffer);
}

}  // namespace
