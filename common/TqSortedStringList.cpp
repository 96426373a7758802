#include "TqSortedStringList.h"

#include "TqPrivate.h"
#include "TqString.h"

namespace {

const char sourceName[] = "TqSortedStringList";

TqString* StringIn(const TqSortedStringList& list, unsigned int index) {
    return static_cast<TqString*>(list.slots[index]);
}

bool IsGreater(const TqString& a, const TqString& b) {
    return std::strcmp(a.data, b.data) > 0;
}

// Where `s` belongs.
unsigned int PlaceOf(const TqString& s, const TqSortedStringList& list) {
    // Sixteen bits, deliberately: the search is linear, and a list that would need more is one for
    // which this class was not made.
    for (unsigned short index = 1; index <= list.count; ++index) {
        if (IsGreater(*StringIn(list, index), s)) return index;
    }
    return list.count + 1;
}

}  // namespace

TqSortedStringList::TqSortedStringList() {}

TqSortedStringList::TqSortedStringList(const TqSortedStringList& other) : TqBaseList(other) {
    TqCallAssert(sourceName, __LINE__);
}

TqSortedStringList& TqSortedStringList::operator=(const TqSortedStringList& other) {
    // No report, unlike the copy constructor: deliberate.
    TqBaseList::operator=(other);
    return *this;
}

TqSortedStringList::~TqSortedStringList() {}

TqString* TqSortedStringList::Add(TqString* s) {
    TQ_REPORT_IF(s == nullptr);
    // Null has no text to compare; the insertion refuses it.
    InsertSlot(s != nullptr ? PlaceOf(*s, *this) : count + 1, s);
    return s;
}

TqString* TqSortedStringList::RemoveItem(unsigned int index) {
    TQ_REPORT_IF(index == 0 || index > count);
    if (index > count) return nullptr;
    TqString* s = slots != nullptr ? StringIn(*this, index) : nullptr;
    // Index 0 is removed like any other, deliberately: the first string drops out of the list.
    RemoveSlot(index);
    return s;
}

TqString* TqSortedStringList::RemoveItem(TqString* s) {
    TQ_REPORT_IF(s == nullptr);
    for (unsigned int i = 1; i <= count; ++i) {
        if (slots[i] == s) return RemoveItem(i);
    }
    return nullptr;
}
