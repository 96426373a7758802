#define TQ_STRING_BODY
#include "TqString.h"

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "internal/TqAppending.h"
#include "internal/TqDigits.h"
#include "internal/TqItem.h"
#include "internal/TqMemory.h"
#include "internal/TqPrivate.h"

namespace {

TQ_REPORTS_AS("TqString")

const short ownTypeId = 1;

const unsigned int internalCapacity = 32;

// The constructors keep one character less inside than SetValue does. Applications read `capacity`,
// and a string of 32 characters tells by it how it was made.
const unsigned int constructedInside = 31;

bool IsInternal(const TqString& string) {
    return string.data == string.internalData;
}

void FreeBlock(TqString& string) {
    if (!IsInternal(string)) std::free(string.data);
}

bool IsSpace(char c) {
    return std::isspace(static_cast<unsigned char>(c)) != 0;
}

int LowerCase(char c) {
    return std::tolower(static_cast<unsigned char>(c));
}

typedef std::size_t Word;

TQ_ALWAYS_INLINE bool HasZeroByte(Word word) {
    const Word ones = ~Word(0) / 0xFF;
    return ((word - ones) & ~word & (ones << 7)) != 0;
}

// What is known of a text and a count of its characters.
enum Extent {
    promised,  // there may be fewer: nothing behind the first NUL is read
    held,      // there are as many and one behind, NULs perhaps among them
    measured   // there are as many, and none is a NUL
};

// Applications set fields by hand: a length that the storage cannot have is only a promise.
Extent ExtentOf(const TqString& string) {
    return string.length < string.capacity ? held : promised;
}

// How many characters of the storage may be other than NUL.
unsigned int UsedPart(const TqString& string) {
    return string.length < string.capacity ? string.length : string.capacity;
}

// Short areas are copied and cleared word by word: calls would take longer.

void ZeroShortArea(char* area, unsigned int count) {
    const Word zero = 0;
    const unsigned int size = sizeof zero;
    const unsigned int half = size / 2;
    if (count < half) {
        for (; count > 0; --count) *area++ = '\0';
        return;
    }
    // The last piece may lie over the one before it.
    if (count < size) {
        std::memcpy(area, &zero, half);
        std::memcpy(area + count - half, &zero, half);
        return;
    }
    const unsigned int last = count - size;
    for (unsigned int i = 0; i < last; i += size) std::memcpy(area + i, &zero, size);
    std::memcpy(area + last, &zero, size);
}

// All of it: programs compare and send the area as it lies there.
void ZeroInside(TqString& string) {
    const unsigned int last = sizeof string.internalData - 1;
    const Word zero = 0;
// Also where all else is built for size: a string is hardly ever made without it.
#pragma GCC unroll 8
    for (unsigned int i = 0; i < last; i += sizeof zero) {
        std::memcpy(string.internalData + i, &zero, sizeof zero);
    }
    string.internalData[last] = '\0';
}

static_assert((sizeof TqString::internalData - 1) % sizeof(Word) == 0, "");

// Copies a word of text, unless it has a NUL.
TQ_ALWAYS_INLINE bool CopyWord(char* to, const char* text) {
    Word word;
    std::memcpy(&word, text, sizeof word);
    if (HasZeroByte(word)) return false;
    std::memcpy(to, &word, sizeof word);
    return true;
}

// Copies the text up to its first NUL or `count` characters, and tells how many those were. It does
// not overlap its new place. The last word goes back over the one before it.
unsigned int CopyShortText(char* to, const char* text, unsigned int count, Extent extent) {
    unsigned int i = 0;
    if (extent != promised && count >= sizeof(Word)) {
        const unsigned int last = count - static_cast<unsigned int>(sizeof(Word));
        while (CopyWord(to + i, text + i)) {
            i += static_cast<unsigned int>(sizeof(Word));
            if (i < last) continue;
            if (CopyWord(to + last, text + last)) return count;
            break;
        }
    }
    for (; i < count && text[i] != '\0'; ++i) to[i] = text[i];
    return i;
}

// Copies all of a text without a NUL, likewise.
TQ_ALWAYS_INLINE void CopyWholeText(char* to, const char* text, unsigned int count) {
    const unsigned int size = sizeof(Word);
    if (count < size) {
        for (unsigned int i = 0; i < count; ++i) to[i] = text[i];
        return;
    }
    const unsigned int last = count - size;
    for (unsigned int i = 0; i < last; i += size) std::memcpy(to + i, text + i, size);
    std::memcpy(to + last, text + last, size);
}

// Copies what CopyShortText does, and puts NULs behind it up to to[end].
void CopyAndFill(char* to, const char* text, unsigned int count, Extent extent, unsigned int end) {
    const unsigned int copied = CopyShortText(to, text, count, extent);
    ZeroShortArea(to + copied, end + 1 - copied);
}

// Copies the text, up to its first NUL or `count` characters, and fills up with NULs so that
// to[count] is one too. The text may overlap its new place.
void CopyText(char* to, const char* text, unsigned int count) {
    // Never looks behind the first NUL: a count may promise more than the text has.
    const std::size_t copied = strnlen(text, count);
    TqCopyBytes(to, text, copied);
    std::memset(to + copied, 0, count - copied + 1);
}

// One pass over the words takes less than a call that copies and one that measures, unless these
// have the wide registers of large processors.
const bool copiesInOnePass = sizeof(Word) == 4;

// The old block, if there is one, stays the caller's: the text may lie there.
TQ_ALWAYS_INLINE void FillNewBlock(TqString& string, const char* text, unsigned int count,
                                   Extent extent) {
    char* block = static_cast<char*>(TqAllocate(std::size_t(count) + 1));
    // Not before: what is told that there is no memory may throw.
    string.data = block;
    string.length = count;
    string.capacity = count + 1;
    if (extent == measured) {
        block[count] = '\0';
        std::memcpy(block, text, count);
    } else if (extent == held && copiesInOnePass) {
        CopyAndFill(block, text, count, extent, count);
    } else {
        CopyText(block, text, count);
    }
}

// Kept out of the constructors, in which short texts would pay for their variables.

__attribute__((noinline)) void TakeText(TqString& string, const char* text, unsigned int count,
                                        Extent extent) {
    FillNewBlock(string, text, count, extent);
}

__attribute__((noinline)) void TakeWholeText(TqString& string, const char* text,
                                             unsigned int count) {
    FillNewBlock(string, text, count, measured);
}

// Whether a long text takes the way of its own that large processors have for those without a NUL.
TQ_ALWAYS_INLINE bool IsTakenWhole(const char* text, unsigned int count, Extent extent) {
    if (copiesInOnePass) return false;
    if (extent == held) return text[count] == '\0' && std::strlen(text) == count;
    return extent == measured;
}

// What the constructors share: the storage is chosen from nothing.
TQ_ALWAYS_INLINE void Construct(TqString& string, const char* text, unsigned int count,
                                Extent extent) {
    ZeroInside(string);
    if (count > constructedInside) {
        if (IsTakenWhole(text, count, extent)) {
            TakeWholeText(string, text, count);
        } else {
            TakeText(string, text, count, extent);
        }
        return;
    }
    if (extent == measured) {
        CopyWholeText(string.internalData, text, count);
    } else {
        CopyShortText(string.internalData, text, count, extent);
    }
    string.data = string.internalData;
    string.length = count;
    string.capacity = internalCapacity;
}

// What the assignments share: the present storage is kept when the text fits. Bytes of a heap block
// behind its text are always NULs, so those of a longer old text go.
void Assign(TqString& string, const char* text, unsigned int count, Extent extent) {
    if (count >= string.capacity) {
        char* old = IsInternal(string) ? nullptr : string.data;
        TakeText(string, text, count, extent);
        std::free(old);
        return;
    }
    const unsigned int used = UsedPart(string);
    if (IsInternal(string) && !TqLiesIn(text, string.internalData, sizeof string.internalData)) {
        CopyAndFill(string.internalData, text, count, extent, count > used ? count : used);
    } else {
        CopyText(string.data, text, count);
        if (used > count) std::memset(string.data + count, 0, used - count);
    }
    string.length = count;
}

// What sets a counted text shares.
void Set(TqString& string, const char* text, unsigned int count, Extent extent) {
    if (text != nullptr && (TqLiesIn(text, string.internalData, sizeof string.internalData) ||
                            TqLiesIn(text, string.data, string.capacity))) {
        // Clearing would destroy a text that lies in this very string, as it does in a trim.
        char* copy = static_cast<char*>(TqFound(strndup(text, count)));
        Set(string, copy, count, promised);
        std::free(copy);
        return;
    }
    string.Clear();
    if (text == nullptr || count == 0) return;
    if (count > internalCapacity) {
        TakeText(string, text, count, extent);
        return;
    }
    CopyAndFill(string.internalData, text, count, extent, count);
    string.length = count;
}

// Makes room for a text of `length` characters. A move out of the object takes the text up to its
// first NUL, as a string copy does, and the rest of the new block is NULs.
void Grow(TqString& string, unsigned int length) {
    if (length < string.capacity) return;
    // To the next multiple of 16 and not by a factor: a device has thousands of strings, few of
    // which grow more than once or twice.
    const unsigned int capacity = (length + 16) / 16 * 16;
    char* block;
    if (IsInternal(string)) {
        block = static_cast<char*>(TqAllocate(capacity));
        CopyText(block, string.data, capacity - 1);
    } else {
        block = static_cast<char*>(TqReallocate(string.data, capacity));
        std::memset(block + string.capacity, 0, capacity - string.capacity);
    }
    string.data = block;
    string.capacity = capacity;
}

}  // namespace

char* TqPlaceFor(TqString& string, unsigned int count) {
    Grow(string, string.length + count);
    return string.data + string.length;
}

const char tqDigitPairs[] =
    "00010203040506070809101112131415161718192021222324252627282930313233343536373839"
    "40414243444546474849505152535455565758596061626364656667686970717273747576777879"
    "8081828384858687888990919293949596979899";

const unsigned int tqLeastOfDigits[] = {0,      10,      100,      1000,      10000,
                                        100000, 1000000, 10000000, 100000000, 1000000000};

short TqString::typeId = ownTypeId;

TqString::TqString(const char* text) {
    if (text == nullptr) text = "";
    Construct(*this, text, static_cast<unsigned int>(std::strlen(text)), measured);
}

TqString::TqString(const char* text, unsigned int count) : data(nullptr), length(0), capacity(0) {
    internalData[0] = '\0';
    SetValue(text, count);
}

TqString::TqString(const TqString& other) : TqDataType(other) {
    Construct(*this, other.data, other.length, ExtentOf(other));
}

TqString::~TqString() {
    FreeBlock(*this);
}

TqString& TqString::operator=(const TqString& other) {
    Assignment(other);
    return *this;
}

TqString& TqString::operator=(const char* text) {
    if (text == nullptr) {
        Clear();
    } else {
        Assign(*this, text, static_cast<unsigned int>(std::strlen(text)), measured);
    }
    return *this;
}

void TqString::SetValue(const char* text, unsigned int count) {
    Set(*this, text, count, promised);
}

// AppendChar comes here when there is no room.
void TqString::AppendByte(unsigned char c) {
    Grow(*this, length + 1);
    AppendChar(static_cast<char>(c));
}

TqString& TqString::operator+=(const char* text) {
    const unsigned int count = static_cast<unsigned int>(std::strlen(text));
    if (!IsInternal(*this) && TqLiesIn(text, data, capacity)) {
        // Growing may move the block away from under the text.
        const std::size_t offset = static_cast<std::size_t>(text - data);
        Grow(*this, length + count);
        text = data + offset;
    }
    std::memmove(TqPlaceFor(*this, count), text, count);
    TqCountAppended(*this, count);
    return *this;
}

TqString TqString::operator+(const char* text) const {
    TqString sum(*this);
    sum += text;
    return sum;
}

void TqString::AppendCounter(unsigned int value) {
    const unsigned int end = length + TqCountDigits(value);
    Grow(*this, end);
    data[end] = '\0';
    TqPutDigits(data + end, value);
    length = end;
}

void TqString::AppendNumber(int value) {
    unsigned int digits = static_cast<unsigned int>(value);
    if (value < 0) {
        AppendChar('-');
        digits = 0u - digits;
        // The negation of -2147483648 is still negative and counts as nothing: the text "-0" is
        // kept, peers know it.
        if (digits > 0x7FFFFFFFu) digits = 0;
    }
    // One digit is what most numbers of identifiers have.
    if (digits < 10) {
        AppendChar(static_cast<char>('0' + digits));
    } else {
        AppendCounter(digits);
    }
}

void TqString::AppendFloat(float value, unsigned char precision) {
    TQ_REPORT_IF(precision > 99);
    // Long enough for every float with up to 88 decimals; a longer text is cut, not overrun.
    char work[128] = {0};
    std::snprintf(work, sizeof work, "%.*f", precision, static_cast<double>(value));
    for (const char* c = work; *c != '\0'; ++c) AppendChar(*c);
}

// By the C library's lower case, one byte at a time: what is a letter is what the locale says.
int TqString::StringICompare(const char* a, const char* b) {
    while (*a != '\0' && LowerCase(*a) == LowerCase(*b)) {
        ++a;
        ++b;
    }
    const int difference = LowerCase(*a) - LowerCase(*b);
    return (difference > 0) - (difference < 0);
}

TqString& TqString::TrimLeadingWS() {
    // Trims are for texts held inside and look there whatever `data` points at. A string that has
    // left may have anything there, so the area gets an end of its own.
    if (!IsInternal(*this)) internalData[sizeof internalData - 1] = '\0';
    unsigned int count = 0;
    while (count < length && IsSpace(internalData[count])) ++count;
    if (count != 0) SetValue(internalData + count, length - count);
    return *this;
}

TqString& TqString::TrimTrailingWS() {
    if (length > sizeof internalData) return *this;
    // The length stays: an item written after a trim is as long as its field was before, and
    // readers of fixed fields count on that.
    for (unsigned int i = length; i > 0 && IsSpace(internalData[i - 1]); --i) {
        internalData[i - 1] = '\0';
    }
    return *this;
}

short TqString::TypeId() const {
    return ownTypeId;
}

TqDataType* TqString::Clone() const {
    return new TqString(*this);
}

void TqString::ToString(TqString& out) const {
    // Through the virtual table: `out` may be of a type that an application derived.
    out.Assignment(*this);
}

void TqString::FromString(const char* text) {
    *this = text;
}

void TqString::ToBuffer(TqBuffer& out) const {
    TqWriteItem(out, Length(), data, length);
}

void TqString::FromBuffer(TqBuffer& in) {
    const TqItemPayload payload = TqReadItem(in);
    Set(*this, reinterpret_cast<const char*>(payload.bytes), payload.count, held);
}

int TqString::Compare(const TqDataType& other) const {
    TQ_REPORT_IF(other.TypeId() != ownTypeId);
    return std::strcmp(data, TqTakenAs<TqString>(other).data);
}

bool TqString::Equals(const TqDataType* other) const {
    if (other == nullptr) return false;
    TQ_REPORT_IF(TypeId() != other->TypeId());
    // By the counted lengths first: a text that was trimmed differs from one that never had the
    // blanks.
    const TqString& string = TqTakenAs<TqString>(*other);
    return length == string.length && std::strcmp(data, string.data) == 0;
}

void TqString::Assignment(const TqDataType& other) {
    const TqString& string = TqTakenAs<TqString>(other);
    Assign(*this, string.data, string.length, ExtentOf(string));
}

unsigned int TqString::Length() const {
    return length;
}

void TqString::Free() {
    Clear();
}

// What assigning the empty text does, which always fits.
void TqString::Empty() {
    const unsigned int used = UsedPart(*this);
    if (IsInternal(*this)) {
        ZeroShortArea(data, used);
    } else {
        std::memset(data, 0, used);
    }
    *data = '\0';
    length = 0;
}

bool TqString::IsEmpty() const {
    return length == 0;
}

bool TqString::IsNotEmpty() const {
    return !IsEmpty();
}

void TqString::Clear() {
    FreeBlock(*this);
    data = internalData;
    internalData[0] = '\0';
    length = 0;
    capacity = internalCapacity;
}
