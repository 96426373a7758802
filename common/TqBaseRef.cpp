// A change of a handle is hardly more than these two, so they are compiled in where all else is
// built for size, too.
#define TQ_BASE_OBJECT_BODY TQ_ALWAYS_INLINE
#include "TqBaseRef.h"

#include "internal/TqPrivate.h"

namespace {

TQ_REPORTS_APART_AS("TqBaseRef")

const short ownTypeId = 8;

// Two reports where both are wrong: who reads them tells a dead object, whose stamp is cleared too,
// from a foreign one.
TQ_READS_ANY_OBJECT TQ_ALWAYS_INLINE void CheckHeld(const TqBaseRef& handle) {
    const TqBaseObject* held = handle.object;
    if (held == nullptr) return;
    TQ_REPORT_IF(held->self != held);
    TQ_REPORT_IF(handle.objectSeqNum != held->seqNum);
}

}  // namespace

short TqBaseRef::typeId = ownTypeId;

TqBaseRef::TqBaseRef(TqBaseObject* obj) : object(nullptr), objectSeqNum(0) {
    AssignNewObject(obj);
}

TqBaseRef::TqBaseRef(const TqBaseRef& other) : TqDataType(other), object(nullptr), objectSeqNum(0) {
    // The other handle must not let its object go between the reading and the counting.
    TQ_REPORT_IF(other.refMutex.Lock() != 0);
    AssignNewObject(other.object);
    TQ_REPORT_IF(other.refMutex.Unlock() != 0);
}

TqBaseRef::~TqBaseRef() {
    AssignNewObject(nullptr);
    TqKeepAssigned(this);
}

TqBaseRef& TqBaseRef::operator=(const TqBaseRef& other) {
    // Unlike the copy constructor this does not lock the other handle: two handles that two threads
    // assign to each other crosswise would wait for each other without an end.
    AssignNewObject(other.object);
    return *this;
}

TqBaseRef& TqBaseRef::operator=(TqBaseObject* obj) {
    AssignNewObject(obj);
    return *this;
}

TQ_READS_ANY_OBJECT void TqBaseRef::AssignNewObject(TqBaseObject* obj) {
    // Held until all is done, the end of the old object included: a thread that copies this handle
    // finds the old object alive or the new one, and nothing between.
    TQ_REPORT_IF(refMutex.Lock() != 0);
    CheckHeld(*this);
    if (obj != object) {
        // Null is not counted, and to find that out takes as long there as to call.
        unsigned int stamp = 0;
        // The new one first: it may live by the old one alone.
        if (obj != nullptr) {
            stamp = obj->seqNum;
            TqBaseObject::IncrementRefCount(obj, stamp);
        }
        if (object != nullptr) TqBaseObject::DecrementRefCount(object, objectSeqNum);
        objectSeqNum = stamp;
        object = obj;
    }
    TQ_REPORT_IF(refMutex.Unlock() != 0);
}

TQ_READS_ANY_OBJECT void TqBaseRef::GutCheck() const {
    CheckHeld(*this);
}

short TqBaseRef::TypeId() const {
    return ownTypeId;
}

void TqBaseRef::ToString(TqString&) const {
    Report(__LINE__);
}

void TqBaseRef::FromString(const char*) {
    Report(__LINE__);
}

void TqBaseRef::ToBuffer(TqBuffer&) const {
    Report(__LINE__);
}

void TqBaseRef::FromBuffer(TqBuffer&) {
    Report(__LINE__);
}

int TqBaseRef::Compare(const TqDataType& other) const {
    TQ_REPORT_IF(TypeId() != other.TypeId());
    // 1 says that the two are the same: applications write `if (a.Compare(b))` for that.
    return TqTakenAs<TqBaseRef>(other).object == object ? 1 : 0;
}

void TqBaseRef::Assignment(const TqDataType& other) {
    TQ_REPORT_IF(TypeId() != other.TypeId());
    *this = TqTakenAs<TqBaseRef>(other);
}

int TqBaseRef::SelfTest() {
    return 1;
}
