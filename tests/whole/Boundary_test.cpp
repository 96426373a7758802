// What crosses the border between an application, here the test program, and the shared library:
// derivation, creation by name, deletion, run-time types, and the templates that both instantiate.

#include <gtest/gtest.h>

#include <typeinfo>

#include "Reports.h"
#include "TqBaseRef.h"
#include "TqBaseRefList.h"
#include "TqCallback.h"
#include "TqClassRegistry.h"
#include "TqNumber.h"
#include "TqString.h"

namespace boundary {

int alive = 0;

class Card : public TqBaseObject {
    TQ_DECLARE_CLASS(Card)
public:
    Card() { ++alive; }
    ~Card() override { --alive; }
};

class LineCard : public Card {
    TQ_DECLARE_CLASS(LineCard)
};

TQ_IMPLEMENT_CLASS(Card, TqBaseObject)
TQ_IMPLEMENT_CLASS(LineCard, Card)

}  // namespace boundary

namespace {

using boundary::Card;
using boundary::LineCard;

// A registry of the test's own: the one of the process is left alone.
class Boundary : public testing::Test {
protected:
    Boundary() {
        TqClassInfo* info = LineCard::LineCardInitInfo();
        // Kept by the test too: the class is used again after this registry has gone.
        TqBaseObject::IncrementRefCount(info, info->seqNum);
        registry.classList.InsertSlot(1, info);
    }
    ~Boundary() override {
        TqClassInfo* info = LineCard::LineCardInitInfo();
        registry.classList.RemoveAllItems();
        --info->refCount;
    }

    TqClassRegistry registry;
};

TEST_F(Boundary, TheLibraryMakesAClassOfTheApplicationByName) {
    TqRef<Card> card(static_cast<Card*>(registry.NewObject("LineCard")));
    EXPECT_EQ(boundary::alive, 1);
    EXPECT_NE(dynamic_cast<LineCard*>(card.object), nullptr);
}

TEST_F(Boundary, TheLibraryDeletesAnObjectOfTheApplication) {
    TqBaseObject* card = registry.NewObject("LineCard");
    TqBaseObject::IncrementRefCount(card, card->seqNum);
    EXPECT_EQ(TqBaseObject::DecrementRefCount(card, card->seqNum), 1);
    EXPECT_EQ(boundary::alive, 0);
}

TEST_F(Boundary, AListOfTheLibraryKeepsAndDeletesObjectsOfTheApplication) {
    TqRefList<Card> cards;
    cards.InsertSlot(1, new LineCard);
    cards.InsertSlot(2, new Card);
    EXPECT_EQ(boundary::alive, 2);
    cards.RemoveAllItems();
    EXPECT_EQ(boundary::alive, 0);
}

TEST_F(Boundary, RunTimeTypesAreTheSameOnBothSides) {
    TqRef<Card> card(static_cast<Card*>(registry.NewObject("LineCard")));
    EXPECT_TRUE(typeid(*card.object) == typeid(LineCard));
    EXPECT_EQ(dynamic_cast<TqCallback*>(card.object), nullptr);

    const TqNumber number(7);
    TqDataType* made = number.Clone();
    EXPECT_TRUE(typeid(*made) == typeid(TqNumber));
    EXPECT_NE(dynamic_cast<TqNumber*>(made), nullptr);
    EXPECT_EQ(dynamic_cast<TqString*>(made), nullptr);
    delete made;
}

TEST_F(Boundary, TemplatesInstantiatedOnBothSidesAreOneType) {
    // The registry's list was made inside the library; the type is named here as well.
    TqBaseList& list = registry.classList;
    EXPECT_TRUE(typeid(list) == typeid(TqRefList<TqClassInfo>));
    EXPECT_EQ(dynamic_cast<TqRefList<TqClassInfo>*>(&list), &registry.classList);
}

TEST_F(Boundary, KinshipIsToldByTheDescriptorsOfBothSides) {
    TqRef<Card> card(static_cast<Card*>(registry.NewObject("LineCard")));
    EXPECT_EQ(card.object->IsA(LineCard::LineCardInfo), 1);
    EXPECT_EQ(card.object->IsA(Card::CardInfo), 1);
    EXPECT_EQ(card.object->IsA(TqBaseObject::TqBaseObjectInfo), 1);
    EXPECT_EQ(card.object->IsA(TqCallback::TqCallbackInitInfo()), 0);
}

TEST_F(Boundary, AFactoryHasOneAddressOnBothSides) {
    EXPECT_EQ(TqCallback::TqCallbackInitInfo()->createFunc, &TqCallbackNewFunc);
    EXPECT_EQ(LineCard::LineCardInfo->createFunc, &boundary::LineCardNewFunc);
}

TEST_F(Boundary, AnOverrideOfTheApplicationIsCalledByTheLibrary) {
    class Doubled : public TqNumber {
    public:
        explicit Doubled(int number) : TqNumber(number) {}
        operator int() const override { return 2 * value; }
    };
    TqString text;
    Doubled(21).ToString(text);
    EXPECT_STREQ(text.data, "42");
}

}  // namespace
