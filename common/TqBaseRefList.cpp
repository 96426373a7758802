#include "TqBaseRefList.h"

#include "TqPrivate.h"

namespace {

const char sourceName[] = "TqBaseRefList";

void Lock(const TqBaseRefList& list) {
    TQ_REPORT_IF(list.listMutex.Lock() != 0);
}

void Unlock(const TqBaseRefList& list) {
    TQ_REPORT_IF(list.listMutex.Unlock() != 0);
}

// The object in a slot, or null after a report when there is none. A dead or foreign object is
// reported and returned.
TQ_LOOKS_AT_THE_DEAD TqBaseObject* CheckedItem(const TqBaseRefList& list, unsigned int index) {
    TqBaseObject* item = nullptr;
    if (index <= list.count && list.slots != nullptr) {
        item = static_cast<TqBaseObject*>(list.slots[index]);
    }
    TQ_REPORT_IF(item == nullptr);
    TQ_REPORT_IF(item != nullptr && item->self != item);
    return item;
}

void TakeReference(TqBaseObject* item) {
    if (item != nullptr) TqBaseObject::IncrementRefCount(item, item->seqNum);
}

void DropReference(TqBaseObject* item) {
    if (item != nullptr) TqBaseObject::DecrementRefCount(item, item->seqNum);
}

void TakeReferences(const TqBaseRefList& list) {
    for (unsigned int i = 1; i <= list.count; ++i) TakeReference(CheckedItem(list, i));
}

// The count is read anew before each step: a destructor may change the list.
void DropReferences(const TqBaseRefList& list) {
    for (unsigned int i = 1; i <= list.count; ++i) DropReference(CheckedItem(list, i));
}

}  // namespace

TqBaseRefList::TqBaseRefList() {}

TqBaseRefList::TqBaseRefList(const TqBaseRefList& other) : TqBaseList(other) {
    Lock(*this);
    Lock(other);
    TakeReferences(*this);
    Unlock(other);
    Unlock(*this);
}

TqBaseRefList& TqBaseRefList::operator=(const TqBaseRefList& other) {
    Lock(*this);
    Lock(other);
    TakeReferences(other);
    DropReferences(*this);
    TqBaseList::operator=(other);
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
    TQ_REPORT_IF(a == 0 || a > count);
    TQ_REPORT_IF(b == 0 || b > count);
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
    TqBaseObject* item = CheckedItem(*this, index);
    if (item != nullptr) {
        DropReference(item);
        // The item's destructor may have emptied the list down to here itself.
        if (index <= count) TqBaseList::RemoveSlot(index);
    }
    Unlock(*this);
}

void TqBaseRefList::InsertSlot(unsigned int index, void* item) {
    TQ_REPORT_IF(item == nullptr);
    Lock(*this);
    TakeReference(static_cast<TqBaseObject*>(item));
    TqBaseList::InsertSlot(index, item);
    Unlock(*this);
}

void TqBaseRefList::ReplaceSlot(unsigned int index, void* item) {
    TQ_REPORT_IF(item == nullptr);
    Lock(*this);
    TqBaseObject* old = CheckedItem(*this, index);
    if (old != nullptr) {
        // Both lose a reference and the old item stays, one slot up. Applications have come to rely
        // on it; a true replacement is a removal and an insertion.
        if (item != old) {
            DropReference(old);
            DropReference(static_cast<TqBaseObject*>(item));
        }
        TqBaseList::InsertSlot(index, item);
    }
    Unlock(*this);
}
