#ifndef VALUES_H
#define VALUES_H

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <string>

#include "TqBuffer.h"
#include "TqString.h"

// What values hold, as standard strings, so that a test compares them with what it expects in one
// line and a failure shows both.

/// A literal with the NULs that stand in it.
template <std::size_t size>
std::string Exactly(const char (&literal)[size]) {
    return std::string(literal, size - 1);
}

/// The counted characters, NULs included.
inline std::string Counted(const TqString& string) {
    return std::string(string.data, string.length);
}

/// The counted bytes.
inline std::string Bytes(const TqBuffer& buffer) {
    return buffer.length == 0
               ? std::string()
               : std::string(reinterpret_cast<const char*>(buffer.data), buffer.length);
}

/// The text form of a value, counted.
inline std::string TextOf(const TqDataType& value) {
    TqString text("what was there before");
    value.ToString(text);
    return Counted(text);
}

/// The item of a value.
inline std::string ItemOf(const TqDataType& value) {
    TqBuffer buffer;
    value.ToBuffer(buffer);
    return Bytes(buffer);
}

/// A pointer as the byte buffer takes it.
inline const unsigned char* AsBytes(const std::string& bytes) {
    return reinterpret_cast<const unsigned char*>(bytes.data());
}

/// A buffer with these bytes, the read position at 0.
inline TqBuffer BufferOf(const std::string& bytes) {
    return TqBuffer(AsBytes(bytes), static_cast<unsigned int>(bytes.size()));
}

/// A buffer whose bytes end where a heap block ends, so that the address sanitizer sees a read
/// beyond them. For reading only.
class TightBuffer : public TqBuffer {
public:
    explicit TightBuffer(const std::string& bytes) {
        length = static_cast<unsigned int>(bytes.size());
        // Any number but 64, which would mean the internal area.
        capacity = length == sizeof internalData ? length + 1 : length;
        data = static_cast<unsigned char*>(std::malloc(length));
        if (length != 0) std::memcpy(data, bytes.data(), length);
    }
};

/// `count` different letters in a row, over and over.
inline std::string Letters(unsigned int count) {
    std::string letters;
    for (unsigned int i = 0; i < count; ++i) letters += static_cast<char>('a' + i % 26);
    return letters;
}

inline std::string HeldInside(const std::string& counted) {
    return "inside, capacity 32: " + counted;
}

inline std::string HeldInBlock(unsigned int capacity, const std::string& counted) {
    return "block, capacity " + std::to_string(capacity) + ": " + counted;
}

/// How and what a string holds. A broken rule of the storage shows in it: there is a NUL behind the
/// counted characters, and a heap block has `capacity` bytes that are NULs from there on.
inline std::string Held(const TqString& string) {
    const bool inside = string.data == string.internalData;
    if (inside && string.capacity != 32) return "inside with another capacity than 32";
    if (string.length > string.capacity) return "longer than the storage";
    const unsigned int end = inside ? string.length + 1 : string.capacity;
    for (unsigned int i = string.length; i < end; ++i) {
        if (string.data[i] != '\0') return "no NUL behind: " + Counted(string);
    }
    return inside ? HeldInside(Counted(string)) : HeldInBlock(string.capacity, Counted(string));
}

inline std::string BytesInside(const std::string& bytes, unsigned int readPosition = 0) {
    return "inside, read at " + std::to_string(readPosition) + ": " + bytes;
}

inline std::string BytesInBlock(unsigned int capacity, const std::string& bytes,
                                unsigned int readPosition = 0) {
    return "block, capacity " + std::to_string(capacity) + ", read at " +
           std::to_string(readPosition) + ": " + bytes;
}

/// How and what a buffer holds.
inline std::string Held(const TqBuffer& buffer) {
    if (buffer.data != buffer.internalData)
        return BytesInBlock(buffer.capacity, Bytes(buffer), buffer.readPosition);
    if (buffer.capacity != 64) return "inside with another capacity than 64";
    return BytesInside(Bytes(buffer), buffer.readPosition);
}

#endif
