#include "TqBoolean.h"

#include "TqString.h"
#include "internal/TqPrivate.h"

namespace {

TQ_REPORTS_AS("TqBoolean")

const short ownTypeId = 4;

}  // namespace

short TqBoolean::typeId = ownTypeId;

TqBoolean::TqBoolean(int flag) : state(flag != 0) {}

TqBoolean::TqBoolean(const char* text) : state(0) {
    StringToValue(text);
}

// `value` is what the parser left behind and no part of the flag; a copy starts without it.
TqBoolean::TqBoolean(const TqBoolean& other) : TqNumber(0), state(other.state) {}

TqBoolean& TqBoolean::operator=(const TqBoolean& other) {
    Assignment(other);
    return *this;
}

void TqBoolean::StringToValue(const char* text) {
    TqNumber::FromString(text);
    // Above 0 and not other than 0: a "-1" in a configuration means off.
    state = value > 0;
}

short TqBoolean::TypeId() const {
    return ownTypeId;
}

TqDataType* TqBoolean::Clone() const {
    return new TqBoolean(*this);
}

void TqBoolean::ToString(TqString& out) const {
    out = state != 0 ? "True" : "False";
}

void TqBoolean::FromString(const char* text) {
    StringToValue(text);
}

int TqBoolean::Compare(const TqDataType& other) const {
    TQ_REPORT_IF(other.TypeId() != ownTypeId);
    return TqWrappedDifference(state, TqFieldTakenAs(other, &TqBoolean::state));
}

bool TqBoolean::Equals(const TqDataType* other) const {
    if (other == nullptr) return false;
    TQ_REPORT_IF(TypeId() != other->TypeId());
    return (state != 0) == (TqFieldTakenAs(*other, &TqBoolean::state) != 0);
}

void TqBoolean::Assignment(const TqDataType& other) {
    state = TqFieldTakenAs(other, &TqBoolean::state);
}

TqBoolean::operator int() const {
    return state;
}
