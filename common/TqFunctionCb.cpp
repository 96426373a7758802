#include "TqFunctionCb.h"

#include "internal/TqPrivate.h"

namespace {

TQ_REPORTS_AS("TqFunctionCb")

}  // namespace

TqFunctionCb::TqFunctionCb(void (*called)(TqFunctionCb*, TqBaseObject*, TqCallbackData*),
                           void* data)
    : TqCallback(data), function(called) {}

TqFunctionCb::TqFunctionCb(const TqFunctionCb& other)
    : TqCallback(other), function(other.function) {}

TqFunctionCb& TqFunctionCb::operator=(const TqFunctionCb& other) {
    // The base reports as well: a hook sees which of the two was meant.
    TqCallback::operator=(other);
    Report(__LINE__);
    return *this;
}

TqFunctionCb::~TqFunctionCb() {}

TqBaseObject* TqFunctionCb::Clone() const {
    return new TqFunctionCb(*this);
}

void TqFunctionCb::Invoke(TqBaseObject* source, TqCallbackData* data) {
    if (function != nullptr) function(this, source, data);
}
