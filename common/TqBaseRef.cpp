#include "TqBaseRef.h"

#include "TqPrivate.h"

namespace {

const char sourceName[] = "TqBaseRef";

}  // namespace

short TqBaseRef::typeId = 8;

TqBaseRef::TqBaseRef(TqBaseObject* obj) : object(nullptr), objectSeqNum(0) {
    AssignNewObject(obj);
}

TqBaseRef::TqBaseRef(const TqBaseRef& other) : TqDataType(other), object(nullptr), objectSeqNum(0) {
    TQ_REPORT_IF(other.refMutex.Lock() != 0);
    AssignNewObject(other.object);
    TQ_REPORT_IF(other.refMutex.Unlock() != 0);
}

TqBaseRef::~TqBaseRef() {
    AssignNewObject(nullptr);
    TqKeepAssigned(this);
}

TqBaseRef& TqBaseRef::operator=(const TqBaseRef& other) {
    // Unlike the copy constructor this does not lock the other handle, deliberately: two handles
    // assigned to each other crosswise cannot wait for each other.
    AssignNewObject(other.object);
    return *this;
}

TqBaseRef& TqBaseRef::operator=(TqBaseObject* obj) {
    AssignNewObject(obj);
    return *this;
}

void TqBaseRef::AssignNewObject(TqBaseObject* obj) {
    TQ_REPORT_IF(refMutex.Lock() != 0);
    GutCheck();
    if (obj != object) {
        const unsigned int stamp = obj == nullptr ? 0 : obj->seqNum;
        // The new one first: it may live by the old one alone.
        TqBaseObject::IncrementRefCount(obj, stamp);
        TqBaseObject::DecrementRefCount(object, objectSeqNum);
        objectSeqNum = stamp;
        object = obj;
    }
    TQ_REPORT_IF(refMutex.Unlock() != 0);
}

TQ_LOOKS_AT_THE_DEAD void TqBaseRef::GutCheck() const {
    if (object == nullptr) return;
    TQ_REPORT_IF(object->self != object);
    TQ_REPORT_IF(objectSeqNum != object->seqNum);
}

short TqBaseRef::TypeId() const {
    return 8;
}

void TqBaseRef::ToString(TqString&) const {
    TqCallAssert(sourceName, __LINE__);
}

void TqBaseRef::FromString(const char*) {
    TqCallAssert(sourceName, __LINE__);
}

void TqBaseRef::ToBuffer(TqBuffer&) const {
    TqCallAssert(sourceName, __LINE__);
}

void TqBaseRef::FromBuffer(TqBuffer&) {
    TqCallAssert(sourceName, __LINE__);
}

int TqBaseRef::Compare(const TqDataType& other) const {
    TQ_REPORT_IF(TypeId() != other.TypeId());
    // A test of identity, not an order, deliberately: 1 says that the two are the same.
    return TqTakenAs<TqBaseRef>(other).object == object ? 1 : 0;
}

void TqBaseRef::Assignment(const TqDataType& other) {
    TQ_REPORT_IF(TypeId() != other.TypeId());
    *this = TqTakenAs<TqBaseRef>(other);
}

int TqBaseRef::SelfTest() {
    return 1;
}
