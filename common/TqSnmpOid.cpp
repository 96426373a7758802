#include "TqSnmpOid.h"

#include <cstdlib>

#include "TqString.h"
#include "internal/TqDigits.h"
#include "internal/TqMemory.h"
#include "internal/TqPrivate.h"

namespace {

TQ_REPORTS_APART_AS("TqSnmpOid")

const unsigned int dorvaneSubtree[] = {1, 3, 6, 1, 4, 1, 61999};
const unsigned int malvickSubtree[] = {1, 3, 6, 1, 4, 1, 61999, 1};

std::size_t BytesOf(unsigned int count) {
    return count * sizeof(unsigned int);
}

unsigned int* NewBlock(unsigned int capacity) {
    return static_cast<unsigned int*>(TqAllocate(BytesOf(capacity)));
}

unsigned int* HeapBlock(TqSnmpOid& oid) {
    return oid.values == oid.internalValues ? nullptr : oid.values;
}

void UseInternalValues(TqSnmpOid& oid) {
    oid.values = oid.internalValues;
    oid.count = 0;
    oid.capacity = TqSnmpOid::maxInternalValues;
}

void AppendAll(TqSnmpOid& oid, const unsigned long* numbers, unsigned int count) {
    for (unsigned int i = 0; i < count; ++i) oid.Append(numbers[i]);
}

// By multiples of what there is: an identifier built number by number then doubles, and one that is
// appended whole takes no more than it needs, to the next multiple.
unsigned int SmallestMultiple(unsigned int step, unsigned int needed) {
    // NOLINTNEXTLINE(clang-analyzer-core.DivideZero): no capacity is ever 0
    return step * (needed / step + (needed % step != 0));
}

// The first position below `count` where the two differ, else `count`. Two numbers at a time.
unsigned int FirstDifference(const unsigned int* a, const unsigned int* b, unsigned int count) {
    unsigned int i = 0;
    for (std::uint64_t pairOfA, pairOfB; count - i >= 2; i += 2) {
        std::memcpy(&pairOfA, a + i, sizeof pairOfA);
        std::memcpy(&pairOfB, b + i, sizeof pairOfB);
        if (pairOfA != pairOfB) break;
    }
    // The last number, or the first one of a pair.
    if (i < count && a[i] == b[i]) ++i;
    return i;
}

void Parse(TqSnmpOid& oid, const char* text) {
    if (*text == '\0') return;
    TQ_REPORT_IF(!TqIsDigit(*text));
    do {
        unsigned int number = 0;
        for (unsigned int digit; (digit = TqDigitOf(*text)) < 10; ++text) {
            number = number * 10 + digit;
        }
        TQ_REPORT_IF(*text != '.' && *text != '\0');
        // As Append does, but without a call for each number.
        if (oid.count >= oid.capacity) oid.CheckAllocSize(oid.count + 1);
        oid.values[oid.count] = number;
        ++oid.count;
    } while (*text++ != '\0');
}

__attribute__((noinline, cold)) short FirstTypeId() {
    TqDataType::NextId(&TqSnmpOid::typeId);
    return TqSnmpOid::typeId;
}

template <unsigned int count>
bool BeginsWith(const TqSnmpOid& oid, const unsigned int (&subtree)[count]) {
    if (oid.count < count) return false;
    for (unsigned int i = 0; i < count; ++i) {
        if (oid.values[i] != subtree[i]) return false;
    }
    return true;
}

}  // namespace

short TqSnmpOid::typeId = 0;
const unsigned int TqSnmpOid::maxInternalValues;

TqSnmpOid::TqSnmpOid(const char* text) : internalValues() {
    UseInternalValues(*this);
    Parse(*this, text);
}

TqSnmpOid::TqSnmpOid(const unsigned long* numbers, unsigned int n) : internalValues() {
    UseInternalValues(*this);
    AppendAll(*this, numbers, n);
}

TqSnmpOid::TqSnmpOid(const TqSnmpOid& other) : TqDataType(other), internalValues() {
    UseInternalValues(*this);
    count = other.count;
    if (count > TqSnmpOid::maxInternalValues) {
        capacity = SmallestMultiple(TqSnmpOid::maxInternalValues, count);
        values = NewBlock(capacity);
    }
    TqCopyBytes(values, other.values, BytesOf(count));
}

TqSnmpOid::~TqSnmpOid() {
    std::free(HeapBlock(*this));
}

TqSnmpOid& TqSnmpOid::operator=(const TqSnmpOid& other) {
    Assignment(other);
    return *this;
}

void TqSnmpOid::Append(unsigned long number) {
    CheckAllocSize(count + 1);
    values[count] = static_cast<unsigned int>(number);
    ++count;
}

void TqSnmpOid::Append(const TqSnmpOid& other) {
    const unsigned int added = other.count;
    CheckAllocSize(count + added);
    TqCopyBytes(values + count, other.values, BytesOf(added));
    count += added;
}

void TqSnmpOid::Append(const char* text) {
    const TqSnmpOid parsed(text);
    Append(parsed);
}

void TqSnmpOid::CheckAllocSize(unsigned int needed) {
    if (needed <= capacity) return;
    const unsigned int enough = SmallestMultiple(capacity, needed);
    if (HeapBlock(*this) == nullptr) {
        values = NewBlock(enough);
        TqCopyBytes(values, internalValues, BytesOf(count));
    } else {
        values = static_cast<unsigned int*>(TqReallocate(values, BytesOf(enough)));
    }
    capacity = enough;
}

void TqSnmpOid::SetValues(const unsigned long* numbers, unsigned int n) {
    std::free(HeapBlock(*this));
    UseInternalValues(*this);
    AppendAll(*this, numbers, n);
}

void TqSnmpOid::Reset() {
    std::free(HeapBlock(*this));
    UseInternalValues(*this);
    // Only here: `SetValues` leaves old numbers behind the new ones.
    std::memset(internalValues, 0, sizeof internalValues);
}

void TqSnmpOid::Increment() {
    if (count > 0) ++values[count - 1];
}

// The last number is the index of the row's instance and stays: the next column of the same row has
// it too.
void TqSnmpOid::IncrementTableRow() {
    if (count >= 2) ++values[count - 2];
}

bool TqSnmpOid::SameTable(const TqSnmpOid& other) const {
    if (other.count < count) return false;
    // Not the first: walks are told to go on by identifiers of which it was never set.
    for (unsigned int i = 1; i < count; ++i) {
        if (values[i] != other.values[i]) return false;
    }
    return true;
}

bool TqSnmpOid::IsDorvane() const {
    return BeginsWith(*this, dorvaneSubtree);
}

bool TqSnmpOid::IsMalvick() const {
    return BeginsWith(*this, malvickSubtree);
}

short TqSnmpOid::TypeId() const {
    return typeId != 0 ? typeId : FirstTypeId();
}

TqDataType* TqSnmpOid::Clone() const {
    return new TqSnmpOid(*this);
}

void TqSnmpOid::ToString(TqString& out) const {
    // The string's own, and not that of a derived one: it is as much as assigning the empty text.
    out.TqString::Empty();
    for (unsigned int i = 0; i < count; ++i) {
        if (i != 0) out.AppendChar('.');
        // As a signed number: the peers of these texts parse the large ones that way.
        out.AppendNumber(static_cast<int>(values[i]));
    }
}

void TqSnmpOid::FromString(const char* text) {
    count = 0;
    Parse(*this, text);
}

// Empty, like FromBuffer: identifiers travel in packets of their own protocol only.
void TqSnmpOid::ToBuffer(TqBuffer&) const {}

void TqSnmpOid::FromBuffer(TqBuffer&) {}

int TqSnmpOid::Compare(const TqDataType& other) const {
    TQ_REPORT_IF(other.TypeId() != TypeId());
    const TqSnmpOid& oid = TqTakenAs<TqSnmpOid>(other);
    const unsigned int shorter = count < oid.count ? count : oid.count;
    const unsigned int i = FirstDifference(values, oid.values, shorter);
    if (i != shorter) return values[i] < oid.values[i] ? -1 : 1;
    return (count > oid.count) - (count < oid.count);
}

bool TqSnmpOid::Equals(const TqDataType* other) const {
    if (other == nullptr) return false;
    TQ_REPORT_IF(other->TypeId() != TypeId());
    const TqSnmpOid& oid = TqTakenAs<TqSnmpOid>(*other);
    if (count != oid.count) return false;
    // From the end: identifiers of one agent begin alike.
    for (unsigned int i = count; i > 0; --i) {
        if (values[i - 1] != oid.values[i - 1]) return false;
    }
    return true;
}

void TqSnmpOid::Assignment(const TqDataType& other) {
    // Asked first: it may be this call that assigns the id of the type.
    const short otherTypeId = other.TypeId();
    TQ_REPORT_IF(otherTypeId != typeId);
    const TqSnmpOid& oid = TqTakenAs<TqSnmpOid>(other);
    count = oid.count;
    if (count > capacity) {
        std::free(HeapBlock(*this));
        capacity = SmallestMultiple(capacity, count);
        values = NewBlock(capacity);
    }
    TqCopyBytes(values, oid.values, BytesOf(count));
}

TqString* TqSnmpOid::Convert() const {
    TqString* text = new TqString;
    ToString(*text);
    return text;
}
