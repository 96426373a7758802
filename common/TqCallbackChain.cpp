#include "TqCallbackChain.h"

#include "internal/TqPrivate.h"

namespace {

TQ_REPORTS_AS("TqCallbackChain")

}  // namespace

TqCallbackChain::TqCallbackChain() {}

// Empty, and not the shallow copy of its base: two chains would tell the same callbacks twice.
TqCallbackChain::TqCallbackChain(const TqCallbackChain&) : TqPtrList<TqCallback>() {
    Report(__LINE__);
}

TqCallbackChain& TqCallbackChain::operator=(const TqCallbackChain&) {
    Report(__LINE__);
    return *this;
}

TqCallbackChain::~TqCallbackChain() {}

void TqCallbackChain::Invoke(TqBaseObject* source, TqCallbackData* data) {
    const TqWalk walk(walkDepth);
    // The count is read before every step: what a callback appends is invoked too.
    for (unsigned int i = 1; i <= count; ++i) {
        static_cast<TqCallback*>(slots[i])->Invoke(source, data);
    }
}
