#include "TqCallbackData.h"

#include "internal/TqPrivate.h"

namespace {

TQ_REPORTS_AS("TqCallbackData")

}  // namespace

TqCallbackData::TqCallbackData() {}

TqCallbackData::TqCallbackData(const TqCallbackData&) : TqBaseObject() {
    Report(__LINE__);
}

TqCallbackData& TqCallbackData::operator=(const TqCallbackData&) {
    Report(__LINE__);
    return *this;
}

TqCallbackData::~TqCallbackData() {}
