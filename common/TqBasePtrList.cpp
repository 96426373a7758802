#include "TqBasePtrList.h"

#include "TqPrivate.h"

namespace {

const char sourceName[] = "TqBasePtrList";

}  // namespace

TqBasePtrList::TqBasePtrList() {}

TqBasePtrList::TqBasePtrList(const TqBasePtrList& other) : TqBaseList(other) {
    TqCallAssert(sourceName, __LINE__);
}

TqBasePtrList& TqBasePtrList::operator=(const TqBasePtrList& other) {
    // No report, unlike the copy constructor: deliberate.
    TqBaseList::operator=(other);
    return *this;
}

TqBasePtrList::~TqBasePtrList() {}

void* TqBasePtrList::RemoveItem(unsigned int index) {
    TQ_REPORT_IF(index == 0 || index > count);
    if (index > count) return nullptr;
    void* item = slots != nullptr ? slots[index] : nullptr;
    // Index 0 is removed like any other, deliberately: the first item drops out of the list.
    RemoveSlot(index);
    return item;
}

void* TqBasePtrList::RemoveItem(void* item) {
    TQ_REPORT_IF(item == nullptr);
    for (unsigned int i = 1; i <= count; ++i) {
        if (slots[i] == item) return RemoveItem(i);
    }
    return nullptr;
}
