#define TQ_BASE_OBJECT_BODY
#include "TqBaseObject.h"

#include "TqClassInfo.h"
#include "internal/TqPrivate.h"

namespace {

const char sourceName[] = "TqBaseObject";

}  // namespace

unsigned int TqBaseObject::nextSeqNum = 1;

TQ_IMPLEMENT_CLASS_MEMBERS(TqBaseObject, nullptr, nullptr)

TqBaseObject::TqBaseObject() : refCount(0), seqNum(0), self(this), destroying(0) {}

TqBaseObject::TqBaseObject(const TqBaseObject& other)
    : refCount(0), seqNum(0), self(this), destroying(0) {
    TQ_REPORT_IF(other.destroying != 0);
}

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
