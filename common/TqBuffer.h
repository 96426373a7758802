#ifndef TQ_BUFFER_H
#define TQ_BUFFER_H

#include "TqDataType.h"

/// The byte value: a growable array of bytes with a read position, and the medium through which
/// every value is sent. Type id 6.
///
/// What values write into a buffer are items, one behind the other with no tag between them: five
/// ASCII digits with the payload's length ("%05u") and the payload. A reader knows which types to
/// expect:
///
///     TqBuffer buffer;
///     TqNumber(42).ToBuffer(buffer);     // 0000242
///     TqString("ok").ToBuffer(buffer);   // 00002ok
///     number.FromBuffer(buffer);         // 42
///     string.FromBuffer(buffer);         // ok
///
/// Ownership: the buffer owns its storage and copies what it is given, which may lie in the buffer
/// itself.
/// Lock: none. Reports: source "TqBuffer".
///
/// The bytes are held inside the object exactly when `capacity` is 64: every operation decides by
/// that number. It follows, and is kept, that a heap block of exactly 64 bytes (the copy of a
/// larger buffer that was truncated to 64, or a small copy that grew to it) is taken as internal
/// from then on: it reads well, but is never freed, and growing further loses its contents.
class TQ_API TqBuffer : public TqDataType {
public:
    TqBuffer();

    /// Takes `count` bytes: inside up to 64, else in a heap block of exactly `count`.
    TqBuffer(const unsigned char* bytes, unsigned int count);

    /// Copies bytes and read position. The copy of a buffer in heap mode has a heap block of
    /// exactly `other.length` bytes.
    TqBuffer(const TqBuffer& other);

    ~TqBuffer() override;

    /// Gives the heap block back and copies as the copy constructor.
    TqBuffer& operator=(const TqBuffer& other);

    /// Makes the buffer empty, internal and zeroed, with the read position at 0.
    void Clear();

    /// Appends `count` bytes. Null `bytes` is reported and nothing happens. What does not fit the
    /// capacity moves to a heap block of exactly the new length: there is no spare room.
    void Append(const unsigned char* bytes, unsigned int count);

    /// Inserts `count` bytes before `position`, which is cut to `length`. Null `bytes` is reported
    /// and nothing happens. An insert before the end rebuilds the buffer: the read position is 0
    /// then, and the storage chosen anew.
    void Insert(const unsigned char* bytes, unsigned int count, unsigned int position);

    /// The byte at `index`. One not below `length` is reported and gives 0.
    unsigned char operator[](unsigned int index) const;

    /// Stores a byte. An `index` not below `length` is reported; one equal to it still stores, just
    /// behind the counted bytes and without counting it, where the storage has room for it (a full
    /// internal area has none). A larger one stores nothing.
    void PutAt(unsigned int index, unsigned char byte);

    /// Overwrites `count` bytes at `position` and returns true. A write that would end beyond
    /// `length` is reported, writes nothing and returns false; one that ends exactly at it is
    /// reported too.
    bool Write(const unsigned char* bytes, unsigned int count, unsigned int position);

    /// Copies `count` bytes at `position` to `destination` and returns true. One that would end
    /// beyond `length` is reported, copies nothing and returns false.
    bool Read(unsigned char* destination, unsigned int count, unsigned int position) const;

    /// Sets the read position to 0 and, when `count` is at most `length`, `length` to `count`. The
    /// storage is kept.
    void TruncateAfter(unsigned int count);

    /// Moves the read position `count` bytes on and returns a pointer to the byte there, valid
    /// until the next change. Fewer bytes left are reported; the position stays and the result is
    /// null.
    unsigned char* AdvanceReadContext(unsigned int count);

    short TypeId() const override;
    TqDataType* Clone() const override;

    /// Appends one character per byte to `out`, without clearing it as other types do: programs put
    /// a title there first. The character is the byte itself when printable, else "*".
    void ToString(TqString& out) const override;

    /// Not supported: reports and changes nothing.
    void FromString(const char* text) override;

    /// A length above 99999 does not fit the five digits and gives a corrupt item.
    void ToBuffer(TqBuffer& out) const override;

    /// Clears this buffer, then takes the payload of the item.
    void FromBuffer(TqBuffer& in) override;

    /// Compares as `memcmp`; with equal beginnings the shorter buffer comes first (-1, 0 or 1).
    /// Another type is reported and gives -1.
    int Compare(const TqDataType& other) const override;

    /// Whether all bytes are equal. Null and another type are reported and give false.
    bool Equals(const TqDataType* other) const override;

    void Assignment(const TqDataType& other) override;

    unsigned int length;             ///< bytes in use
    unsigned int capacity;           ///< 64 while internal, else the size of the heap block
    unsigned int readPosition;       ///< where the next item is read
    unsigned char* data;             ///< the bytes: `internalData` or a heap block
    unsigned char internalData[64];  ///< room for short contents

    static short typeId;  ///< 6, for naming the id without an object
};

#endif
