#include "TqCallback.h"

#include "TqClassInfo.h"
#include "internal/TqPrivate.h"

namespace {

TQ_REPORTS_AS("TqCallback")

}  // namespace

TQ_IMPLEMENT_ABSTRACT_CLASS(TqCallback, TqBaseObject)

TqCallback::TqCallback(void* data) : userData(data) {}

TqCallback::TqCallback(const TqCallback& other) : TqBaseObject(), userData(other.userData) {}

// A callback in a chain is known by its address; giving it another's data would change whom it
// tells.
TqCallback& TqCallback::operator=(const TqCallback&) {
    Report(__LINE__);
    return *this;
}

TqCallback::~TqCallback() {}

void* TqCallback::UserData() const {
    return userData;
}
