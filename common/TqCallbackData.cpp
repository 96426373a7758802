#include "TqCallbackData.h"

#include "internal/TqPrivate.h"

namespace {

const char sourceName[] = "TqCallbackData";

}  // namespace

TqCallbackData::TqCallbackData() {}

TqCallbackData::TqCallbackData(const TqCallbackData&) : TqBaseObject() {
    TqCallAssert(sourceName, __LINE__);
}

TqCallbackData& TqCallbackData::operator=(const TqCallbackData&) {
    TqCallAssert(sourceName, __LINE__);
    return *this;
}

TqCallbackData::~TqCallbackData() {}
