#include "TqNumber.h"

#include <cstring>

#include "TqString.h"
#include "internal/TqDigits.h"
#include "internal/TqItem.h"
#include "internal/TqPrivate.h"

namespace {

TQ_REPORTS_AS("TqNumber")

const short ownTypeId = 2;

// The whole vocabulary of true words: stored configurations use each of them, and a word more would
// turn a 0 of theirs into a 1.
const char* const trueWords[] = {"T", "Y", "On", "Yes", "One", "True", "Open", "Enable", "Enabled"};

// There is one digit at least.
int ParseDigits(const char* digits, bool negative) {
    // Unsigned, so that the wrap-around at 32 bits is defined.
    unsigned int value = 0;
    unsigned int digit = TqDigitOf(*digits);
    do {
        value = value * 10 + digit;
        digit = TqDigitOf(*++digits);
    } while (digit < 10);
    return static_cast<int>(negative ? 0u - value : value);
}

// Nine words, and only for a text without digits: a loop will do. It is kept out of what reads the
// digits, which would make room for its variables.
__attribute__((noinline)) void ParseWord(int& value, const char* text) {
    value = 0;
    for (const char* word : trueWords) {
        if (TqString::StringICompare(text, word) == 0) value = 1;
    }
}

}  // namespace

short TqNumber::typeId = ownTypeId;

TqNumber::TqNumber(int number) : value(number) {}

TqNumber::TqNumber(const TqNumber& other) : TqDataType(other), value(other.value) {}

TqNumber& TqNumber::operator=(const TqNumber& other) {
    Assignment(other);
    return *this;
}

short TqNumber::TypeId() const {
    return ownTypeId;
}

TqDataType* TqNumber::Clone() const {
    return new TqNumber(*this);
}

void TqNumber::ToString(TqString& out) const {
    out.Empty();
    out.AppendNumber(int(*this));
}

void TqNumber::FromString(const char* text) {
    const bool negative = *text == '-';
    if (negative || *text == '+') ++text;
    if (TqIsDigit(*text)) {
        value = ParseDigits(text, negative);
    } else {
        ParseWord(value, text);
    }
}

void TqNumber::ToBuffer(TqBuffer& out) const {
    // By the virtual ToString, so that counters and booleans write their own text.
    TqString text;
    ToString(text);
    TqWriteItem(out, text.length, text.data, text.length);
}

void TqNumber::FromBuffer(TqBuffer& in) {
    // And by the virtual FromString, likewise.
    const TqItemPayload payload = TqReadItem(in);
    // Nearly every text is short, and needs no string of its own to end in a NUL.
    char text[32];
    if (payload.count < sizeof text) {
        TqCopyBytes(text, payload.bytes, payload.count);
        text[payload.count] = '\0';
        FromString(text);
    } else {
        FromString(TqString(reinterpret_cast<const char*>(payload.bytes), payload.count).data);
    }
}

int TqNumber::Compare(const TqDataType& other) const {
    TQ_REPORT_IF(other.TypeId() != ownTypeId);
    return TqWrappedDifference(value, TqTakenAs<TqNumber>(other).value);
}

bool TqNumber::Equals(const TqDataType* other) const {
    if (other == nullptr) return false;
    TQ_REPORT_IF(TypeId() != other->TypeId());
    return int(TqTakenAs<TqNumber>(*other)) == value;
}

void TqNumber::Assignment(const TqDataType& other) {
    value = TqTakenAs<TqNumber>(other).value;
}

TqNumber::operator int() const {
    return value;
}
