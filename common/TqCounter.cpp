#include "TqCounter.h"

#include "TqString.h"
#include "internal/TqPrivate.h"

namespace {

TQ_REPORTS_AS("TqCounter")

const short ownTypeId = 3;

}  // namespace

short TqCounter::typeId = ownTypeId;

TqCounter::TqCounter(unsigned int number) : count(number) {}

TqCounter::TqCounter(const TqCounter& other) : TqNumber(0), count(other.count) {}

TqCounter& TqCounter::operator=(const TqCounter& other) {
    Assignment(other);
    return *this;
}

short TqCounter::TypeId() const {
    return ownTypeId;
}

TqDataType* TqCounter::Clone() const {
    return new TqCounter(*this);
}

void TqCounter::ToString(TqString& out) const {
    out.Empty();
    out.AppendCounter(count);
}

void TqCounter::FromString(const char* text) {
    TqNumber::FromString(text);
    // The parser is the number's: what it read as negative, or wrapped around to it, counts
    // nothing.
    count = value > 0 ? static_cast<unsigned int>(value) : 0;
}

int TqCounter::Compare(const TqDataType& other) const {
    TQ_REPORT_IF(other.TypeId() != ownTypeId);
    // Wraps around, so that of two counters that were read shortly one after the other the later
    // one is the greater, even across an overflow.
    return static_cast<int>(count - TqFieldTakenAs(other, &TqCounter::count));
}

bool TqCounter::Equals(const TqDataType* other) const {
    if (other == nullptr) return false;
    TQ_REPORT_IF(TypeId() != other->TypeId());
    return count == TqFieldTakenAs(*other, &TqCounter::count);
}

void TqCounter::Assignment(const TqDataType& other) {
    count = TqFieldTakenAs(other, &TqCounter::count);
}

TqCounter::operator int() const {
    return static_cast<int>(count);
}
