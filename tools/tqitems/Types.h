#ifndef TYPES_H
#define TYPES_H

#include <string>
#include <vector>

#include "TqBuffer.h"

/// A type that an item may have. All of it is done by the library's own values.
struct ItemType {
    const char* name;

    /// Appends the item of the value that the text is. False when it is none.
    bool (*encode)(const std::string& text, TqBuffer& out);

    /// Reads the item at the read position as this type does and returns the value's text.
    std::string (*read)(TqBuffer& in);

    /// Appends what a value writes that has read the item at the read position.
    void (*rewrite)(TqBuffer& in, TqBuffer& out);
};

/// Null when there is none of this name.
const ItemType* FindType(const std::string& name);

/// The names of all types, with commas between them.
std::string TypeNames();

/// The bytes as a buffer and back.
TqBuffer ToBuffer(const std::string& bytes);
std::string BytesOf(const TqBuffer& buffer);

/// Two hexadecimal digits a byte, with the separator between them.
std::string ToHex(const std::string& bytes, const char* separator = "");

/// The bytes that pairs of hexadecimal digits say; blanks may stand between the pairs. False, and
/// no bytes, when it is anything else.
bool FromHex(const std::string& text, std::string& bytes);

#endif
