#include "TqBuffer.h"

#include <cctype>
#include <cstdint>
#include <cstdlib>

#include "TqString.h"
#include "internal/TqDigits.h"
#include "internal/TqItem.h"
#include "internal/TqMemory.h"
#include "internal/TqPrivate.h"

namespace {

TQ_REPORTS_APART_AS("TqBuffer")

const short ownTypeId = 6;

const unsigned int internalCapacity = sizeof(TqBuffer::internalData);

// The mode is told by the capacity alone and not by where `data` points: applications tell it so
// themselves, and a block of exactly this size reads as they expect.
bool IsInternal(const TqBuffer& buffer) {
    return buffer.capacity == internalCapacity;
}

void ZeroInternalData(TqBuffer& buffer) {
    std::memset(buffer.internalData, 0, internalCapacity);
}

// Every heap block has a byte more than its capacity: the one behind the counted bytes that PutAt
// may store.
unsigned char* NewBlock(unsigned int capacity) {
    return static_cast<unsigned char*>(TqAllocate(std::size_t(capacity) + 1));
}

// How many bytes there are at `data`, counted or not.
std::size_t StorageSize(const TqBuffer& buffer) {
    return IsInternal(buffer) ? internalCapacity : std::size_t(buffer.capacity) + 1;
}

unsigned char* HeapBlock(const TqBuffer& buffer) {
    return IsInternal(buffer) ? nullptr : buffer.data;
}

void UseInternalData(TqBuffer& buffer) {
    buffer.capacity = internalCapacity;
    buffer.data = buffer.internalData;
}

void UseBlock(TqBuffer& buffer, unsigned char* block, unsigned int capacity) {
    buffer.capacity = capacity;
    buffer.data = block;
}

// Overwrites the storage without giving it back; `to` and `from` may be one.
void Copy(TqBuffer& to, const TqBuffer& from) {
    to.length = from.length;
    to.readPosition = from.readPosition;
    if (IsInternal(from)) {
        TqCopyBytes(to.internalData, from.data, internalCapacity);
        UseInternalData(to);
        return;
    }
    unsigned char* block = NewBlock(from.length);
    // As many bytes as there are and not as many as there is room for: a copy is made to be kept.
    TqCopyBytes(block, from.data, from.length);
    ZeroInternalData(to);
    UseBlock(to, block, from.length);
}

// Not `position + count > limit`: the sum may wrap around, and positions come from packets.
bool EndsBeyond(unsigned int position, unsigned int count, unsigned int limit) {
    return count > limit || position > limit - count;
}

// What is not just digits is taken as strtol does: leading blanks and a sign are fine, anything
// else ends the number. A negative length turns into one that no buffer holds.
__attribute__((noinline)) unsigned int ParseUnusualLength(const unsigned char* digits) {
    char text[tqItemDigits + 1];
    std::memcpy(text, digits, tqItemDigits);
    text[tqItemDigits] = '\0';
    return static_cast<unsigned int>(std::strtol(text, nullptr, 10));
}

unsigned int ParseLength(const unsigned char* digits) {
    unsigned int length = 0;
// Also where all else is built for size: whatever is read comes by here.
#pragma GCC unroll 5
    for (unsigned int i = 0; i < tqItemDigits; ++i) {
        const unsigned int digit = TqDigitOf(static_cast<char>(digits[i]));
        if (digit > 9) return ParseUnusualLength(digits);
        length = length * 10 + digit;
    }
    return length;
}

// The read position is a public field, and truncating by hand leaves it behind the end.
unsigned int BytesLeft(const TqBuffer& buffer) {
    return buffer.length > buffer.readPosition ? buffer.length - buffer.readPosition : 0;
}

}  // namespace

short TqBuffer::typeId = ownTypeId;

void TqMakeRoom(TqBuffer& buffer, unsigned int count) {
    if (buffer.capacity - buffer.length >= count) return;
    // Exactly what is needed, no spare room: buffers live as long as their messages wait, and on
    // the device memory is scarcer than time.
    const unsigned int capacity = buffer.length + count;
    unsigned char* block;
    if (IsInternal(buffer)) {
        block = NewBlock(capacity);
        TqCopyBytes(block, buffer.internalData, internalCapacity);
        ZeroInternalData(buffer);
    } else {
        block = static_cast<unsigned char*>(TqReallocate(buffer.data, std::size_t(capacity) + 1));
    }
    UseBlock(buffer, block, capacity);
}

TqBuffer::TqBuffer() : length(0), readPosition(0) {
    UseInternalData(*this);
    ZeroInternalData(*this);
}

TqBuffer::TqBuffer(const unsigned char* bytes, unsigned int count)
    : length(count), readPosition(0) {
    ZeroInternalData(*this);
    if (count > internalCapacity) {
        UseBlock(*this, NewBlock(count), count);
    } else {
        UseInternalData(*this);
    }
    TqCopyBytes(data, bytes, count);
}

TqBuffer::TqBuffer(const TqBuffer& other) : TqDataType(other) {
    Copy(*this, other);
}

TqBuffer::~TqBuffer() {
    if (IsInternal(*this)) return;
    std::free(data);
    TqClearForGood(data);
}

TqBuffer& TqBuffer::operator=(const TqBuffer& other) {
    unsigned char* old = HeapBlock(*this);
    Copy(*this, other);
    std::free(old);
    return *this;
}

void TqBuffer::Clear() {
    std::free(HeapBlock(*this));
    UseInternalData(*this);
    ZeroInternalData(*this);
    length = 0;
    readPosition = 0;
}

void TqBuffer::Append(const unsigned char* bytes, unsigned int count) {
    if (bytes == nullptr) {
        Report(__LINE__);
        return;
    }
    if (capacity - length < count) {
        const bool ownBytes = TqLiesIn(bytes, data, StorageSize(*this));
        const std::size_t offset = ownBytes ? static_cast<std::size_t>(bytes - data) : 0;
        TqMakeRoom(*this, count);
        if (ownBytes) bytes = data + offset;
    }
    TqCopyBytes(data + length, bytes, count);
    length += count;
}

void TqBuffer::Insert(const unsigned char* bytes, unsigned int count, unsigned int position) {
    if (bytes == nullptr) {
        Report(__LINE__);
        return;
    }
    if (count == 0) return;
    if (position >= length) {
        Append(bytes, count);
        return;
    }
    const unsigned int total = length + count;
    // Put together elsewhere and appended to the emptied buffer: short contents then move back
    // inside the object, which applications tell by `capacity`.
    unsigned char* whole = NewBlock(total);
    TqCopyBytes(whole, data, position);
    TqCopyBytes(whole + position, bytes, count);
    TqCopyBytes(whole + position + count, data + position, length - position);
    Clear();
    Append(whole, total);
    std::free(whole);
}

unsigned char TqBuffer::operator[](unsigned int index) const {
    if (index >= length) {
        Report(__LINE__);
        return 0;
    }
    return data[index];
}

void TqBuffer::PutAt(unsigned int index, unsigned char byte) {
    TQ_REPORT_IF(index >= length);
    if (index > length) return;
    // Applications end a text in the buffer this way. Heap blocks have a spare byte for it, the
    // full internal area has none.
    if (index == capacity && IsInternal(*this)) return;
    data[index] = byte;
}

bool TqBuffer::Write(const unsigned char* bytes, unsigned int count, unsigned int position) {
    if (EndsBeyond(position, count, length)) {
        Report(__LINE__);
        return false;
    }
    // A write that ends exactly at the length is done and reported: applications take the report
    // for "the last byte was written", and it was never a failure.
    TQ_REPORT_IF(position + count == length);
    TqCopyBytes(data + position, bytes, count);
    return true;
}

bool TqBuffer::Read(unsigned char* destination, unsigned int count, unsigned int position) const {
    if (EndsBeyond(position, count, length)) {
        Report(__LINE__);
        return false;
    }
    TqCopyBytes(destination, data + position, count);
    return true;
}

void TqBuffer::TruncateAfter(unsigned int count) {
    readPosition = 0;
    if (count <= length) length = count;
}

unsigned char* TqBuffer::AdvanceReadContext(unsigned int count) {
    if (count > BytesLeft(*this)) {
        Report(__LINE__);
        return nullptr;
    }
    readPosition += count;
    return data + readPosition;
}

short TqBuffer::TypeId() const {
    return ownTypeId;
}

TqDataType* TqBuffer::Clone() const {
    return new TqBuffer(*this);
}

void TqBuffer::ToString(TqString& out) const {
    for (unsigned int i = 0; i < length; ++i) {
        out.AppendByte(std::isprint(data[i]) != 0 ? data[i] : '*');
    }
}

void TqBuffer::FromString(const char*) {
    Report(__LINE__);
}

void TqBuffer::ToBuffer(TqBuffer& out) const {
    // Room first: the bytes then stay where they are when this buffer is written into itself.
    TqMakeRoom(out, tqItemDigits + length);
    TqWriteItem(out, length, data, length);
}

void TqBuffer::FromBuffer(TqBuffer& in) {
    Clear();
    const TqItemPayload payload = TqReadItem(in);
    // An empty payload has no bytes to point at, and appending from null is reported.
    if (payload.count != 0) Append(payload.bytes, payload.count);
}

int TqBuffer::Compare(const TqDataType& other) const {
    if (TypeId() != other.TypeId()) {
        Report(__LINE__);
        return -1;
    }
    const TqBuffer& buffer = TqTakenAs<TqBuffer>(other);
    // Bytes first and lengths after them, as words stand in a dictionary.
    const unsigned int shorter = length < buffer.length ? length : buffer.length;
    const int difference = std::memcmp(data, buffer.data, shorter);
    if (difference != 0) return difference;
    return (length > buffer.length) - (length < buffer.length);
}

bool TqBuffer::Equals(const TqDataType* other) const {
    if (other == nullptr || TypeId() != other->TypeId()) {
        Report(__LINE__);
        return false;
    }
    const TqBuffer& buffer = TqTakenAs<TqBuffer>(*other);
    return length == buffer.length && std::memcmp(data, buffer.data, length) == 0;
}

void TqBuffer::Assignment(const TqDataType& other) {
    *this = TqTakenAs<TqBuffer>(other);
}

// Items.

void TqWriteItem(TqBuffer& out, unsigned int statedLength, const void* payload,
                 unsigned int count) {
    // A length of more digits loses its last ones: five bytes are what every reader takes. The item
    // is corrupt then; payloads are limited to 99999 bytes.
    while (statedLength > 99999) statedLength /= 10;
    // In one piece: digits and payload are moved to a larger block once, not twice, and the block
    // has the size that one append of both would give it. Where that sum wraps around there is room
    // for the digits all the same.
    const unsigned int size = tqItemDigits + count;
    TqMakeRoom(out, size > count ? size : tqItemDigits);
    unsigned char* digits = out.data + out.length;
    digits[0] = static_cast<unsigned char>('0' + statedLength / 10000);
    TqPutPair(digits + 1, statedLength / 100 % 100);
    TqPutPair(digits + 3, statedLength % 100);
    out.length += tqItemDigits;
    out.Append(static_cast<const unsigned char*>(payload), count);
}

TqItemPayload TqReadItem(TqBuffer& in) {
    unsigned int count = tqItemDigits;
    if (count <= BytesLeft(in)) {
        count = ParseLength(in.data + in.readPosition);
        in.readPosition += tqItemDigits;
        if (count <= BytesLeft(in)) {
            const TqItemPayload payload = {in.data + in.readPosition, count};
            in.readPosition += count;
            return payload;
        }
    }
    // Which it cannot, and reports.
    in.AdvanceReadContext(count);
    // What is left is used up: a loop that reads until the buffer is empty must come to its end.
    in.readPosition = in.length;
    return {nullptr, 0};
}
