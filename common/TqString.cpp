#include "TqString.h"

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "internal/TqItem.h"
#include "internal/TqMemory.h"
#include "internal/TqPrivate.h"

namespace {

const char sourceName[] = "TqString";

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

// Copies the text, up to its first NUL or `count` characters, and fills up with NULs so that
// to[count] is one too. The text may overlap its new place.
void CopyText(char* to, const char* text, unsigned int count) {
    // Never looks behind the first NUL: a count may promise more than the text has.
    const std::size_t copied = strnlen(text, count);
    TqCopyBytes(to, text, copied);
    std::memset(to + copied, 0, count - copied + 1);
}

char* NewBlock(const char* text, unsigned int count) {
    char* block = static_cast<char*>(TqAllocate(std::size_t(count) + 1));
    CopyText(block, text, count);
    return block;
}

void TakeBlock(TqString& string, char* block, unsigned int count) {
    string.data = block;
    string.length = count;
    string.capacity = count + 1;
}

// What the constructors share: the storage is chosen from nothing.
void Construct(TqString& string, const char* text, unsigned int count) {
    // All of it: programs compare and send the area as it lies there.
    std::memset(string.internalData, 0, sizeof string.internalData);
    if (count > constructedInside) {
        TakeBlock(string, NewBlock(text, count), count);
        return;
    }
    CopyText(string.internalData, text, count);
    string.data = string.internalData;
    string.length = count;
    string.capacity = internalCapacity;
}

// What the assignments share: the present storage is kept when the text fits. Bytes of a heap block
// behind its text are always NULs, so those of a longer old text go.
void Assign(TqString& string, const char* text, unsigned int count) {
    if (count >= string.capacity) {
        char* block = NewBlock(text, count);
        FreeBlock(string);
        TakeBlock(string, block, count);
        return;
    }
    CopyText(string.data, text, count);
    if (string.length > count) std::memset(string.data + count, 0, string.length - count);
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

// Appends characters that do not lie in the string itself.
void AppendText(TqString& string, const char* text, unsigned int count) {
    Grow(string, string.length + count);
    TqCopyBytes(string.data + string.length, text, count);
    string.length += count;
    string.data[string.length] = '\0';
}

}  // namespace

short TqString::typeId = ownTypeId;

TqString::TqString(const char* text) {
    if (text == nullptr) text = "";
    Construct(*this, text, static_cast<unsigned int>(std::strlen(text)));
}

TqString::TqString(const char* text, unsigned int count) : data(nullptr), length(0), capacity(0) {
    internalData[0] = '\0';
    SetValue(text, count);
}

TqString::TqString(const TqString& other) : TqDataType(other) {
    Construct(*this, other.data, other.length);
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
        Assign(*this, text, static_cast<unsigned int>(std::strlen(text)));
    }
    return *this;
}

void TqString::SetValue(const char* text, unsigned int count) {
    if (text != nullptr &&
        (TqLiesIn(text, internalData, sizeof internalData) || TqLiesIn(text, data, capacity))) {
        // Clearing would destroy a text that lies in this very string, as it does in a trim.
        char* copy = static_cast<char*>(TqFound(strndup(text, count)));
        SetValue(copy, count);
        std::free(copy);
        return;
    }
    Clear();
    if (text == nullptr || count == 0) return;
    if (count > internalCapacity) {
        TakeBlock(*this, NewBlock(text, count), count);
        return;
    }
    CopyText(internalData, text, count);
    length = count;
}

void TqString::AppendChar(char c) {
    Grow(*this, length + 1);
    data[length] = c;
    ++length;
    data[length] = '\0';
}

void TqString::AppendByte(unsigned char c) {
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
    AppendText(*this, text, count);
    return *this;
}

TqString TqString::operator+(const char* text) const {
    TqString sum(*this);
    sum += text;
    return sum;
}

void TqString::AppendCounter(unsigned int value) {
    char digits[10];
    unsigned int first = sizeof digits;
    do {
        digits[--first] = static_cast<char>('0' + value % 10);
        value /= 10;
    } while (value != 0);
    AppendText(*this, digits + first, static_cast<unsigned int>(sizeof digits) - first);
}

void TqString::AppendNumber(int value) {
    if (value >= 0) {
        AppendCounter(static_cast<unsigned int>(value));
        return;
    }
    AppendChar('-');
    const unsigned int negated = 0u - static_cast<unsigned int>(value);
    // The negation of -2147483648 is still negative and counts as nothing: the text "-0" is kept,
    // peers know it.
    const bool stillNegative = negated > 0x7FFFFFFFu;
    AppendCounter(stillNegative ? 0u : negated);
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
    SetValue(reinterpret_cast<const char*>(payload.bytes), payload.count);
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
    Assign(*this, string.data, string.length);
}

unsigned int TqString::Length() const {
    return length;
}

void TqString::Free() {
    Clear();
}

void TqString::Empty() {
    *this = "";
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
