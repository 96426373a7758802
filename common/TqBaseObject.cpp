#define TQ_BASE_OBJECT_BODY
#include "TqBaseObject.h"

#include "TqClassInfo.h"
#include "internal/TqPrivate.h"

namespace {

TQ_REPORTS_APART_AS("TqBaseObject")

}  // namespace

unsigned int TqBaseObject::nextSeqNum = 1;

TQ_IMPLEMENT_CLASS_MEMBERS(TqBaseObject, nullptr, nullptr)

// The stamp is the same for every object: nothing hands out others, and a handle that compares its
// copy of one with what is left of a dead object is told by `self` and not by the stamp.
TqBaseObject::TqBaseObject() : refCount(0), seqNum(0), self(this), destroying(0) {}

TqBaseObject::TqBaseObject(const TqBaseObject& other)
    : refCount(0), seqNum(0), self(this), destroying(0) {
    TQ_REPORT_IF(other.destroying != 0);
}

// Count, stamp, mutex and `self` are the object's identity, which no assignment carries over.
TqBaseObject& TqBaseObject::operator=(const TqBaseObject&) {
    return *this;
}

TqBaseObject::~TqBaseObject() {
    TQ_REPORT_IF(refCount != 0);
    TQ_REPORT_IF(self != this);
    TqClearForGood(seqNum);
    TqClearForGood(self);
}

TqBaseObject* TqBaseObject::Clone() const {
    return new TqBaseObject(*this);
}

int TqBaseObject::IsA(TqClassInfo* info) const {
    TQ_REPORT_IF(info == nullptr);
    TqClassInfo* own = ClassInfo();
    TQ_REPORT_IF(own == nullptr);
    return own == nullptr ? 0 : own->IsA(info);
}

int TqBaseObject::IsA(const char* name) const {
    TQ_REPORT_IF(name == nullptr);
    TqClassInfo* own = ClassInfo();
    TQ_REPORT_IF(own == nullptr);
    return own == nullptr ? 0 : own->IsA(name);
}
