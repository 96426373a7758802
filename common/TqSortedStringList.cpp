#include "TqSortedStringList.h"

#include "TqString.h"
#include "internal/TqPrivate.h"
#include "internal/TqSlots.h"

namespace {

TQ_REPORTS_AS("TqSortedStringList")

TqString* StringIn(const TqSortedStringList& list, unsigned int index) {
    return static_cast<TqString*>(list.slots[index]);
}

// How many slots ahead of the walk a string is fetched: they lie anywhere in memory.
const unsigned int fetchedAhead = 8;

// The first character decides nearly always, and takes less than a call.
bool IsGreater(const TqString& a, const TqString& b) {
    const unsigned char firstOfA = static_cast<unsigned char>(*a.data);
    const unsigned char firstOfB = static_cast<unsigned char>(*b.data);
    if (firstOfA != firstOfB) return firstOfA > firstOfB;
    return std::strcmp(a.data, b.data) > 0;
}

// Where `s` belongs.
unsigned int PlaceOf(const TqString& s, const TqSortedStringList& list) {
    // Sixteen bits: the search is linear, and a list that would need more is one for which this
    // class was not made.
    for (unsigned short index = 1; index <= list.count; ++index) {
        // One by one and not by halves: slots may have been set by hand, out of order, and the
        // first greater one is where programs expect the new string.
        if (list.count - index >= fetchedAhead)
            __builtin_prefetch(list.slots[index + fetchedAhead]);
        if (IsGreater(*StringIn(list, index), s)) return index;
    }
    return list.count + 1;
}

}  // namespace

TqSortedStringList::TqSortedStringList() {}

TqSortedStringList::TqSortedStringList(const TqSortedStringList& other) : TqBaseList(other) {
    Report(__LINE__);
}

TqSortedStringList& TqSortedStringList::operator=(const TqSortedStringList& other) {
    // No report, unlike the copy constructor: applications hand a list over by assigning it and
    // then empty the other one.
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
    TQ_REPORT_IF(!TqIsSlot(*this, index));
    return static_cast<TqString*>(TqTakeOut(*this, index));
}

TqString* TqSortedStringList::RemoveItem(TqString* s) {
    TQ_REPORT_IF(s == nullptr);
    const unsigned int index = TqPlaceOf(*this, s);
    return index == 0 ? nullptr : static_cast<TqString*>(TqTakeOut(*this, index));
}
