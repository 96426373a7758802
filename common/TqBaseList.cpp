#define TQ_BASE_LIST_BODY
#include "TqBaseList.h"

#include <cstdlib>

#include "internal/TqMemory.h"
#include "internal/TqPrivate.h"
#include "internal/TqSlots.h"

namespace {

TQ_REPORTS_APART_AS("TqBaseList")

// Fixed, whatever `allocInc` says, which applications set to sizes of their own time. Growth by a
// step and not by a factor: lists on the device are short and memory is scarce.
const unsigned int growthStep = 16;

// One entry more than `capacity` says: `SwapItems` reaches the entry behind the items, and a full
// array has none of its own.
std::size_t SizeOfSlots(unsigned int capacity) {
    return (std::size_t(capacity) + 1) * sizeof(void*);
}

void** NewSlots(unsigned int capacity) {
    return static_cast<void**>(TqAllocate(SizeOfSlots(capacity)));
}

void** CopyOfSlots(const TqBaseList& list) {
    void** slots = NewSlots(list.capacity);
    TqCopyBytes(slots, list.slots, (std::size_t(list.count) + 1) * sizeof(void*));
    return slots;
}

void Resize(TqBaseList& list, unsigned int capacity) {
    list.slots = static_cast<void**>(TqReallocate(list.slots, SizeOfSlots(capacity)));
    list.capacity = capacity;
}

}  // namespace

unsigned int TqBaseList::allocInc = 16;

TqBaseList::TqBaseList()
    // The array is there from the start, so that no operation has to ask; entry 0 alone is read
    // before anything was put into it.
    : capacity(growthStep), count(0), slots(NewSlots(growthStep)), walkDepth(0) {
    slots[0] = nullptr;
}

TqBaseList::TqBaseList(const TqBaseList& other)
    : TqBaseObject(other),
      capacity(other.capacity),
      count(other.count),
      slots(CopyOfSlots(other)),
      walkDepth(0) {}

TqBaseList& TqBaseList::operator=(const TqBaseList& other) {
    TQ_REPORT_IF(walkDepth != 0);
    TqBaseObject::operator=(other);
    // The new array first, and the old one given back last: a list may be assigned to itself.
    void** old = slots;
    slots = CopyOfSlots(other);
    capacity = other.capacity;
    count = other.count;
    std::free(old);
    return *this;
}

TqBaseList::~TqBaseList() {
    TQ_REPORT_IF(walkDepth != 0);
    // Cleared, so that who reads a list after its end meets a null and not another's memory.
    std::free(slots);
    TqClearForGood(slots);
}

void TqBaseList::PreAlloc(unsigned int n) {
    if (capacity < n) Resize(*this, n);
}

unsigned int TqBaseList::FindSlot(void* item) const {
    TQ_REPORT_IF(item == nullptr);
    return TqPlaceOf(*this, item);
}

void TqBaseList::SwapItems(unsigned int a, unsigned int b) {
    TQ_REPORT_IF(!TqIsSlot(*this, a));
    TQ_REPORT_IF(!TqIsSlot(*this, b));
    void* item = slots[a];
    slots[a] = slots[b];
    slots[b] = item;
}

// The array stays: the lists of a device are filled again and again, with as many items each time.
void TqBaseList::RemoveAllItems() {
    count = 0;
}

void TqBaseList::ReplaceSlot(unsigned int index, void* item) {
    if (item == nullptr) {
        Report(__LINE__);
        return;
    }
    slots[index] = item;
}
