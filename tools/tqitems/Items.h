#ifndef ITEMS_H
#define ITEMS_H

#include <stdexcept>
#include <string>
#include <vector>

#include "Types.h"

/// Which types items have, one after the other; a list that is through begins anew. Empty: not
/// known.
using TypeList = std::vector<const ItemType*>;

struct Item {
    unsigned int offset;  ///< where its length stands
    std::string payload;
    const ItemType* type;  ///< null: not known
    std::string value;     ///< the text of the value that a reader of that type gets
    bool differs;          ///< such a value does not write what stands here
};

/// What a buffer holds: its items up to its end or to where it is corrupt.
struct Decoded {
    std::vector<Item> items;
    std::string problem;      ///< empty: the buffer is whole
    unsigned int offset = 0;  ///< where it is corrupt

    bool Differs() const;
};

/// What cannot be encoded, in words.
struct NotEncoded : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// The limit of an item's payload.
const unsigned int longestPayload = 99999;

Decoded Decode(const std::string& bytes, const TypeList& types);

/// The item of the value of that type that the text is; without a type the item of a string.
/// Throws NotEncoded when it is none, or too long.
std::string EncodeItem(const std::string& text, const ItemType* type);

/// One item for each line. Throws NotEncoded, with the number of the line.
std::string EncodeLines(const std::string& text, const TypeList& types);

/// The items as a table for people: rows of up to 16 bytes.
std::string ToTable(const Decoded& decoded);

#endif
