#include "TqBaseRefList.h"

#include "internal/TqPrivate.h"
#include "internal/TqSlots.h"

namespace {

TQ_REPORTS_APART_AS("TqBaseRefList")

void Lock(const TqBaseRefList& list) TQ_TAKES(list.listMutex) {
    TQ_REPORT_IF(list.listMutex.Lock() != 0);
}

void Unlock(const TqBaseRefList& list) TQ_GIVES_BACK(list.listMutex) {
    TQ_REPORT_IF(list.listMutex.Unlock() != 0);
}

// The object in a slot, or null after a report when there is none. A dead or foreign object is
// reported and returned.
TQ_READS_ANY_OBJECT TqBaseObject* CheckedItem(const TqBaseRefList& list, unsigned int index) {
    TqBaseObject* item = static_cast<TqBaseObject*>(TqItemIn(list, index));
    TQ_REPORT_IF(item == nullptr);
    TQ_REPORT_IF(item != nullptr && item->self != item);
    return item;
}

// Before the lock is taken, so the count may be one that another thread is about to change.
TQ_READS_UNLOCKED void ReportUnlessSlots(const TqBaseRefList& list, unsigned int a,
                                         unsigned int b) {
    // Not by a function: the sanitizer would watch that one.
    TQ_REPORT_IF(a == 0 || a > list.count);
    TQ_REPORT_IF(b == 0 || b > list.count);
}

void TakeReference(TqBaseObject* item) {
    if (item != nullptr) TqBaseObject::IncrementRefCount(item, item->seqNum);
}

void DropReference(TqBaseObject* item) {
    TqBaseObject::DecrementRefCount(item, item->seqNum);
}

// Where `item` stands now: at `index`, unless its own destructor changed the list. `noSlot` when it
// stands nowhere any more.
const unsigned int noSlot = 0xFFFFFFFFu;

unsigned int PlaceNow(const TqBaseRefList& list, const TqBaseObject* item, unsigned int index) {
    if (TqItemIn(list, index) == item) return index;
    const unsigned int place = TqPlaceOf(list, item);
    return place == 0 ? noSlot : place;
}

// No destructor runs in here, so the list stays as it is.
void TakeReferences(const TqBaseRefList& list) TQ_NEEDS(list.listMutex) {
    for (unsigned int i = 1; i <= list.count; ++i) TakeReference(CheckedItem(list, i));
}

// The count is read anew before each step: a destructor may change the list. A slot is emptied once
// its reference is dropped, so that what such a destructor does cannot drop it again.
void DropReferences(const TqBaseRefList& list) TQ_NEEDS(list.listMutex) {
    for (unsigned int i = 1; i <= list.count; ++i) {
        TqBaseObject* item = CheckedItem(list, i);
        if (item == nullptr) continue;
        DropReference(item);
        const unsigned int place = PlaceNow(list, item, i);
        if (place != noSlot) list.slots[place] = nullptr;
    }
}

}  // namespace

TqBaseRefList::TqBaseRefList() {}

TqBaseRefList::TqBaseRefList(const TqBaseRefList& other)
    : TqBaseList(static_cast<const TqBaseObject&>(other)) {
    // Slots, capacity and count are taken under both mutexes: the other list may be growing. This
    // one's comes first, here and in an assignment; nobody else can have it yet, so that order
    // costs nothing and is one order for both.
    Lock(*this);
    Lock(other);
    TqBaseList::operator=(other);
    TakeReferences(*this);
    // The other way round than in an assignment: which of two failing releases is reported first is
    // something that hooks see.
    Unlock(other);
    Unlock(*this);
}

TqBaseRefList& TqBaseRefList::operator=(const TqBaseRefList& other) {
    Lock(*this);
    Lock(other);
    // The new references before the old ones go: an object that stands in both lists never comes to
    // 0.
    TakeReferences(other);
    // The destructor of an item let go may change `other`; what this list takes is what it counted.
    TqBaseList counted;
    counted = other;
    DropReferences(*this);
    TqBaseList::operator=(counted);
    Unlock(*this);
    Unlock(other);
    return *this;
}

TqBaseRefList::~TqBaseRefList() {
    Lock(*this);
    DropReferences(*this);
    Unlock(*this);
}

void TqBaseRefList::SwapItems(unsigned int a, unsigned int b) {
    ReportUnlessSlots(*this, a, b);
    Lock(*this);
    TqBaseList::SwapItems(a, b);
    Unlock(*this);
}

void TqBaseRefList::RemoveAllItems() {
    Lock(*this);
    DropReferences(*this);
    TqBaseList::RemoveAllItems();
    Unlock(*this);
}

void TqBaseRefList::RemoveSlot(unsigned int index) {
    Lock(*this);
    // The reference goes while the item still stands in its slot: its destructor may look itself
    // up.
    TqBaseObject* item = CheckedItem(*this, index);
    if (item != nullptr) {
        DropReference(item);
        const unsigned int place = PlaceNow(*this, item, index);
        if (place != noSlot) TqBaseList::RemoveSlot(place);
    }
    Unlock(*this);
}

void TqBaseRefList::InsertSlot(unsigned int index, void* item) {
    TQ_REPORT_IF(item == nullptr);
    Lock(*this);
    // Counted first: once it stands in the list, another thread may remove it again.
    TakeReference(static_cast<TqBaseObject*>(item));
    TqBaseList::InsertSlot(index, item);
    Unlock(*this);
}

void TqBaseRefList::ReplaceSlot(unsigned int index, void* item) {
    TQ_REPORT_IF(item == nullptr);
    Lock(*this);
    TqBaseObject* old = CheckedItem(*this, index);
    if (old != nullptr) {
        // Both lose a reference and the old item stays, one slot up: applications that count on it
        // hold one more reference of their own on each. A true replacement would leave those over.
        if (item != old) {
            DropReference(old);
            if (item != nullptr) DropReference(static_cast<TqBaseObject*>(item));
        }
        // The destructors may have left the list too short for `index`.
        TqBaseList::InsertSlot(index <= count ? index : count + 1, item);
    }
    Unlock(*this);
}
