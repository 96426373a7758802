#include "TqSortedStringList.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <type_traits>
#include <vector>

#include "Random.h"
#include "Reports.h"
#include "Scale.h"
#include "TqClassInfo.h"
#include "TqString.h"

namespace {

using Items = std::vector<const void*>;

Items ItemsOf(const TqSortedStringList& list) {
    return Items(list.slots + 1, list.slots + 1 + list.count);
}

// The texts in their order, with a blank behind each.
std::string TextsOf(const TqSortedStringList& list) {
    std::string texts;
    for (unsigned int i = 1; i <= list.count; ++i) {
        texts += static_cast<TqString*>(list.slots[i])->data;
        texts += ' ';
    }
    return texts;
}

// A list and the strings in it.
struct Filled {
    explicit Filled(std::initializer_list<const char*> texts)
        : strings(texts.begin(), texts.end()) {
        for (TqString& string : strings) list.Add(&string);
    }
    std::vector<TqString> strings;
    TqSortedStringList list;
};

TEST(TqSortedStringList, IsEmptyAtFirst) {
    const TqSortedStringList list;
    EXPECT_EQ(list.count, 0u);
    EXPECT_EQ(list.capacity, 16u);
}

TEST(TqSortedStringList, AddsTheFirstStringAtIndexOneAndReturnsIt) {
    TqSortedStringList list;
    TqString a("a");
    EXPECT_EQ(list.Add(&a), &a);
    EXPECT_EQ(ItemsOf(list), Items({&a}));
}

TEST(TqSortedStringList, SortsByText) {
    EXPECT_EQ(TextsOf(Filled({"b", "a", "c"}).list), "a b c ");
    EXPECT_EQ(TextsOf(Filled({"c", "b", "a"}).list), "a b c ");
    EXPECT_EQ(TextsOf(Filled({"eth1", "eth10", "eth2", "eth", "lo"}).list),
              "eth eth1 eth10 eth2 lo ");
}

TEST(TqSortedStringList, ReturnsTheStringWhereverItGoes) {
    TqSortedStringList list;
    TqString b("b"), a("a"), c("c");
    EXPECT_EQ(list.Add(&b), &b);
    EXPECT_EQ(list.Add(&a), &a);
    EXPECT_EQ(list.Add(&c), &c);
}

TEST(TqSortedStringList, SortsUpperCaseFirst) {
    EXPECT_EQ(TextsOf(Filled({"B", "a"}).list), "B a ");
    EXPECT_EQ(TextsOf(Filled({"a", "B"}).list), "B a ");
}

TEST(TqSortedStringList, SortsByUnsignedBytes) {
    EXPECT_EQ(TextsOf(Filled({"\xE4", "z"}).list), "z \xE4 ");
    EXPECT_EQ(TextsOf(Filled({"", "\x01"}).list), " \x01 ");
}

TEST(TqSortedStringList, ComparesTextsAndNotCountedLengths) {
    TqString a("a");
    TqString longer;
    longer.SetValue("a", 20);
    TqSortedStringList list;
    list.Add(&longer);
    list.Add(&a);
    EXPECT_EQ(ItemsOf(list), Items({&longer, &a}));
}

TEST(TqSortedStringList, ComparesTextsThatAreHeldInBlocks) {
    const std::string prefix(100, 'x');
    TqString a((prefix + "a").c_str()), b((prefix + "b").c_str());
    TqSortedStringList list;
    list.Add(&b);
    list.Add(&a);
    EXPECT_EQ(ItemsOf(list), Items({&a, &b}));
}

TEST(TqSortedStringList, PutsANewStringBehindThoseWithTheSameText) {
    TqString a1("a"), a2("a"), a3("a"), b("b");
    TqSortedStringList list;
    list.Add(&a1);
    list.Add(&b);
    list.Add(&a2);
    list.Add(&a3);
    EXPECT_EQ(ItemsOf(list), Items({&a1, &a2, &a3, &b}));
}

TEST(TqSortedStringList, TakesTheSameStringTwice) {
    TqString a("a");
    TqSortedStringList list;
    list.Add(&a);
    list.Add(&a);
    EXPECT_EQ(ItemsOf(list), Items({&a, &a}));
}

TEST(TqSortedStringList, AddOfNullIsReportedTwiceAndInsertsNothing) {
    TqSortedStringList list;
    EXPECT_EQ(list.Add(nullptr), nullptr);
    EXPECT_EQ(TakeReports(), Reports({"TqSortedStringList", "TqBaseList"}));
    EXPECT_EQ(list.count, 0u);
    TqString a("a");
    list.Add(&a);
    EXPECT_EQ(list.Add(nullptr), nullptr);
    EXPECT_EQ(TakeReports(), Reports({"TqSortedStringList", "TqBaseList"}));
    EXPECT_EQ(ItemsOf(list), Items({&a}));
}

TEST(TqSortedStringList, RemovesByIndexAndReturnsTheString) {
    Filled filled({"c", "a", "b"});
    EXPECT_EQ(filled.list.RemoveItem(1u), &filled.strings[1]);
    EXPECT_EQ(TextsOf(filled.list), "b c ");
    EXPECT_EQ(filled.list.RemoveItem(2u), &filled.strings[0]);
    EXPECT_EQ(filled.list.RemoveItem(1u), &filled.strings[2]);
    EXPECT_EQ(filled.list.count, 0u);
    EXPECT_STREQ(filled.strings[1].data, "a");
}

TEST(TqSortedStringList, RemovalAboveTheCountIsReportedAndRemovesNothing) {
    Filled filled({"a", "b"});
    EXPECT_EQ(filled.list.RemoveItem(3u), nullptr);
    EXPECT_EQ(filled.list.RemoveItem(0xFFFFFFFFu), nullptr);
    EXPECT_EQ(TakeReports(), Reports({"TqSortedStringList", "TqSortedStringList"}));
    EXPECT_EQ(TextsOf(filled.list), "a b ");
    TqSortedStringList empty;
    EXPECT_EQ(empty.RemoveItem(1u), nullptr);
    EXPECT_EQ(TakeReports(), Reports({"TqSortedStringList"}));
    EXPECT_EQ(empty.count, 0u);
}

TEST(TqSortedStringList, RemovalOfIndexZeroIsReportedAndTakesTheFirstOut) {
    Filled filled({"a", "b", "c"});
    EXPECT_EQ(filled.list.RemoveItem(0u), nullptr);
    EXPECT_EQ(TakeReports(), Reports({"TqSortedStringList"}));
    EXPECT_EQ(TextsOf(filled.list), "b c ");
}

TEST(TqSortedStringList, RemovalOfIndexZeroOfAnEmptyListWrapsTheCount) {
    TqSortedStringList list;
    EXPECT_EQ(list.RemoveItem(0u), nullptr);
    EXPECT_EQ(TakeReports(), Reports({"TqSortedStringList"}));
    EXPECT_EQ(list.count, 0xFFFFFFFFu);
    list.count = 0;
}

TEST(TqSortedStringList, RemovesByIdentity) {
    Filled filled({"a", "b", "c"});
    TqString* b = &filled.strings[1];
    EXPECT_EQ(filled.list.RemoveItem(b), b);
    EXPECT_EQ(TextsOf(filled.list), "a c ");
    EXPECT_EQ(filled.list.RemoveItem(b), nullptr);
    EXPECT_EQ(TextsOf(filled.list), "a c ");
}

TEST(TqSortedStringList, RemovesTheLastStringByIdentity) {
    Filled filled({"a", "b", "c"});
    TqString* c = &filled.strings[2];
    EXPECT_EQ(filled.list.RemoveItem(c), c);
    EXPECT_EQ(TextsOf(filled.list), "a b ");
}

TEST(TqSortedStringList, RemovesTheFirstSlotOfAStringThatIsInItTwice) {
    TqString a("a"), b("b");
    TqSortedStringList list;
    list.Add(&a);
    list.Add(&b);
    list.InsertSlot(3, &a);
    EXPECT_EQ(list.RemoveItem(&a), &a);
    EXPECT_EQ(ItemsOf(list), Items({&b, &a}));
}

TEST(TqSortedStringList, DoesNotRemoveAnotherStringWithTheSameText) {
    Filled filled({"a", "b"});
    TqString a("a");
    EXPECT_EQ(filled.list.RemoveItem(&a), nullptr);
    EXPECT_EQ(TextsOf(filled.list), "a b ");
}

TEST(TqSortedStringList, RemovalFromAnEmptyListGivesNull) {
    TqSortedStringList list;
    TqString a("a");
    EXPECT_EQ(list.RemoveItem(&a), nullptr);
    EXPECT_EQ(list.count, 0u);
}

TEST(TqSortedStringList, RemovalOfNullIsReportedAndTheSearchGoesOn) {
    Filled filled({"a"});
    TqString* const none = nullptr;
    EXPECT_EQ(filled.list.RemoveItem(none), nullptr);
    EXPECT_EQ(TakeReports(), Reports({"TqSortedStringList"}));
    EXPECT_EQ(TextsOf(filled.list), "a ");
    TqSortedStringList empty;
    EXPECT_EQ(empty.RemoveItem(none), nullptr);
    EXPECT_EQ(TakeReports(), Reports({"TqSortedStringList"}));
}

// Notes what reaches the virtual operations.
class Watched : public TqSortedStringList {
public:
    void InsertSlot(unsigned int index, void* item) override {
        calls += "insert " + std::to_string(index) + " ";
        TqSortedStringList::InsertSlot(index, item);
    }
    void RemoveSlot(unsigned int index) override {
        calls += "remove " + std::to_string(index) + " ";
        TqSortedStringList::RemoveSlot(index);
    }
    std::string calls;
};

TEST(TqSortedStringList, ChangesGoThroughTheVirtualOperations) {
    Watched list;
    TqString b("b"), a("a"), c("c");
    list.Add(&b);
    list.Add(&a);
    list.Add(&c);
    list.RemoveItem(&b);
    list.RemoveItem(1u);
    EXPECT_EQ(list.calls, "insert 1 insert 1 insert 3 remove 2 remove 1 ");
}

TEST(TqSortedStringList, InheritedOperationsDoNotKeepTheOrder) {
    Filled filled({"a", "b"});
    TqString c("c");
    filled.list.InsertSlot(1, &c);
    EXPECT_EQ(TextsOf(filled.list), "c a b ");
    filled.list.SwapItems(1, 3);
    EXPECT_EQ(TextsOf(filled.list), "b a c ");
    filled.list.ReplaceSlot(2, &c);
    EXPECT_EQ(TextsOf(filled.list), "b c c ");
}

TEST(TqSortedStringList, CopyIsReportedAndComplete) {
    Filled filled({"b", "a"});
    const TqSortedStringList copy(filled.list);
    EXPECT_EQ(TakeReports(), Reports({"TqSortedStringList"}));
    EXPECT_EQ(ItemsOf(copy), ItemsOf(filled.list));
    EXPECT_NE(copy.slots, filled.list.slots);
}

TEST(TqSortedStringList, AssignmentTakesTheStringsWithoutAReport) {
    Filled filled({"b", "a"});
    Filled other({"c"});
    EXPECT_EQ(&(other.list = filled.list), &other.list);
    EXPECT_EQ(ItemsOf(other.list), ItemsOf(filled.list));
}

TEST(TqSortedStringList, NeverDeletesAString) {
    TqString a("a"), b("b");
    {
        TqSortedStringList list;
        list.Add(&a);
        list.Add(&b);
        list.RemoveItem(&a);
    }
    EXPECT_STREQ(a.data, "a");
    EXPECT_STREQ(b.data, "b");
}

TEST(TqSortedStringList, HasTheDescriptorOfTheBaseObject) {
    EXPECT_EQ(TqSortedStringList().ClassInfo(), TqBaseObject::TqBaseObjectInitInfo());
}

// As many as it holds take half a minute; one of the builds is enough for that.
#ifdef __OPTIMIZE__
const unsigned int mostStrings = 65535;
#else
const unsigned int mostStrings = 20000;
#endif

TEST(TqSortedStringList, SortsAsManyStringsAsItHoldsStably) {
    Random random(1);
    std::vector<TqString> texts(Scaled(mostStrings, 20000));
    std::vector<const void*> expected;
    for (TqString& text : texts) {
        text.AppendCounter(random.Below(static_cast<unsigned int>(texts.size())));
        expected.push_back(&text);
    }
    std::stable_sort(expected.begin(), expected.end(), [](const void* a, const void* b) {
        return std::strcmp(static_cast<const TqString*>(a)->data,
                           static_cast<const TqString*>(b)->data) < 0;
    });
    TqSortedStringList list;
    for (TqString& text : texts) list.Add(&text);
    EXPECT_TRUE(ItemsOf(list) == expected);
}

TEST(TqSortedStringList, GivesItsStringsByNumberAndReportsAnIndexOutOfRange) {
    const Filled filled({"b", "a", "c"});
    const TqSortedStringList& list = filled.list;
    EXPECT_STREQ(list.At(1)->data, "a");
    EXPECT_STREQ(list.At(3)->data, "c");
    EXPECT_EQ(TakeReports(), Reports());
    for (const unsigned int index : {0u, 4u, 0xFFFFFFFFu}) {
        EXPECT_EQ(list.At(index), nullptr);
        EXPECT_EQ(TakeReports(), Reports({"./TqListItems"})) << index;
    }
}

TEST(TqSortedStringList, KnowsItsFirstAndItsLast) {
    const Filled filled({"b", "a", "c"});
    EXPECT_STREQ(filled.list.First()->data, "a");
    EXPECT_STREQ(filled.list.Last()->data, "c");
    const TqSortedStringList empty;
    EXPECT_EQ(empty.First(), nullptr);
    EXPECT_EQ(empty.Last(), nullptr);
    EXPECT_EQ(TakeReports(), Reports());
}

TEST(TqSortedStringList, IsWalkedInOrder) {
    const Filled filled({"b", "a", "c"});
    std::string texts;
    for (const TqString* string : filled.list) {
        EXPECT_EQ(filled.list.walkDepth, 1u);
        texts += string->data;
    }
    EXPECT_EQ(texts, "abc");
    EXPECT_EQ(filled.list.walkDepth, 0u);
}

}  // namespace
