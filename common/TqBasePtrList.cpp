#include "TqBasePtrList.h"

#include "internal/TqPrivate.h"
#include "internal/TqSlots.h"

namespace {

TQ_REPORTS_AS("TqBasePtrList")

}  // namespace

TqBasePtrList::TqBasePtrList() {}

TqBasePtrList::TqBasePtrList(const TqBasePtrList& other) : TqBaseList(other) {
    Report(__LINE__);
}

TqBasePtrList& TqBasePtrList::operator=(const TqBasePtrList& other) {
    // No report, unlike the copy constructor: applications hand a list over by assigning it and
    // then empty the other one.
    TqBaseList::operator=(other);
    return *this;
}

TqBasePtrList::~TqBasePtrList() {}

void* TqBasePtrList::RemoveItem(unsigned int index) {
    TQ_REPORT_IF(!TqIsSlot(*this, index));
    return TqTakeOut(*this, index);
}

void* TqBasePtrList::RemoveItem(void* item) {
    TQ_REPORT_IF(item == nullptr);
    const unsigned int index = TqPlaceOf(*this, item);
    return index == 0 ? nullptr : TqTakeOut(*this, index);
}
