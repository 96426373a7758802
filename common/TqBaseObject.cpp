#include "TqBaseObject.h"

#include "TqClassInfo.h"
#include "internal/TqPrivate.h"

namespace {

const char sourceName[] = "TqBaseObject";

// What both count operations do first. The checks are unlocked reads, and no failure keeps the
// count from changing.
TQ_READS_ANY_OBJECT void CheckAndLock(TqBaseObject* obj, unsigned int seq)
    TQ_TAKES(obj->objectMutex) {
    TQ_REPORT_IF(obj->destroying != 0);
    TQ_REPORT_IF(obj->self != obj);
    TQ_REPORT_IF(obj->seqNum != seq);
    TQ_REPORT_IF(obj->objectMutex.Lock() != 0);
}

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

void TqBaseObject::IncrementRefCount(TqBaseObject* obj, unsigned int seq) {
    if (obj == nullptr) return;
    CheckAndLock(obj, seq);
    ++obj->refCount;
    TQ_REPORT_IF(obj->objectMutex.Unlock() != 0);
}

int TqBaseObject::DecrementRefCount(TqBaseObject* obj, unsigned int seq) {
    if (obj == nullptr) return 0;
    CheckAndLock(obj, seq);
    // Only exactly 0 deletes. A count that was below it already came from one drop too many, and to
    // delete then would be to delete twice.
    const bool last = --obj->refCount == 0;
    if (last) obj->destroying = 1;
    TQ_REPORT_IF(obj->objectMutex.Unlock() != 0);
    // Only after the unlock: the mutex goes with the object.
    if (last) delete obj;
    return last ? 1 : 0;
}
