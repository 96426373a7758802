#ifndef TQ_ITEM_H
#define TQ_ITEM_H

// The item, the one form in which values lie in a byte buffer: five ASCII digits with the length of
// the payload, then the payload. It belongs to the byte buffer, whose source defines it; the
// string, through which every other type encodes itself, uses it too.

class TqBuffer;

/// How many digits state the payload's length in front of it.
const unsigned int tqItemDigits = 5;

/// The payload of an item that was read. The bytes lie in the source buffer.
struct TqItemPayload {
    const unsigned char* bytes;
    unsigned int count;
};

/// Appends an item of `count` bytes at `payload` that states `statedLength`. The payload is
/// not moved by making room in `out`. Of a length above 99999 only the first five digits are
/// written. Null is reported as `TqBuffer::Append` does, and the digits stay.
void TqWriteItem(TqBuffer& out, unsigned int statedLength, const void* payload, unsigned int count);

/// Takes the item at the read position and moves that past it. An incomplete item is reported by
/// the buffer and uses up the rest of it, so that a loop of reads ends; the payload is then empty.
TqItemPayload TqReadItem(TqBuffer& in);

/// Makes room for `count` more bytes, sized as `TqBuffer::Append` does.
void TqMakeRoom(TqBuffer& buffer, unsigned int count);

#endif
