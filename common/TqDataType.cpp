#define TQ_DATA_TYPE_BODY
#include "TqDataType.h"

short TqDataType::currentFreeTypeId = 12;

TqDataType::~TqDataType() {}

bool TqDataType::DoesNotEqual(const TqDataType* other) const {
    return !Equals(other);
}

void TqDataType::NextId(short* id) {
    // Once and for good: values of that type may have been told by this id already.
    if (*id != 0) return;
    *id = currentFreeTypeId;
    // Not checked for overflow: no process has tens of thousands of types.
    currentFreeTypeId = static_cast<short>(currentFreeTypeId + 1);
}
