#include "Items.h"

#include <algorithm>
#include <cstdio>

#include "TqRead.h"
#include "TqText.h"

namespace {

const unsigned int lengthDigits = 5;
const std::size_t bytesInRow = 16;

const ItemType* TypeAt(const TypeList& types, std::size_t index) {
    return types.empty() ? nullptr : types[index % types.size()];
}

// One character for each byte, as the library shows a buffer.
std::string Printable(const std::string& bytes) {
    return TqText(ToBuffer(bytes)).data;
}

// Why there is no item at the read position.
std::string Problem(const TqBuffer& in) {
    const unsigned int left = in.length - in.readPosition;
    if (left < lengthDigits) {
        return "an item begins with 5 digits; bytes left: " + std::to_string(left);
    }
    const std::string digits = BytesOf(in).substr(in.readPosition, lengthDigits);
    if (digits.find_first_not_of("0123456789") != std::string::npos) {
        return "an item begins with 5 digits; here is \"" + Printable(digits) + "\" (" +
               ToHex(digits, " ") + ")";
    }
    return "the item says " + digits + " bytes; bytes left: " + std::to_string(left - lengthDigits);
}

// Reads it once more, as a value of the type does.
void ReadTyped(TqBuffer& in, Item& item) {
    const unsigned int end = in.readPosition;
    in.readPosition = item.offset;
    item.value = item.type->read(in);
    in.readPosition = item.offset;
    TqBuffer written;
    item.type->rewrite(in, written);
    const TqBuffer stands(in.data + item.offset, end - item.offset);
    item.differs = !written.Equals(&stands);
    in.readPosition = end;
}

Item ReadItem(TqBuffer& in, unsigned int offset, const ItemType* type, const TqBuffer& payload) {
    Item item = {offset, BytesOf(payload), type, std::string(), false};
    if (type != nullptr) ReadTyped(in, item);
    return item;
}

// Where the list of types is not through, what a reader asks for next is missing.
void CheckEnd(const TypeList& types, Decoded& decoded, unsigned int end) {
    if (types.empty() || decoded.items.size() % types.size() == 0) return;
    decoded.offset = end;
    decoded.problem = std::string("the buffer ends where a ") +
                      TypeAt(types, decoded.items.size())->name + " should be";
}

std::string Row(const std::string& bytes) {
    char row[3 * bytesInRow + 32];
    std::snprintf(row, sizeof(row), "%-47s  %s", ToHex(bytes, " ").c_str(),
                  Printable(bytes).c_str());
    return row;
}

std::string Table(const Item& item, bool hasTypes) {
    char start[48];
    std::snprintf(start, sizeof(start), "%8u  %6zu  ", item.offset, item.payload.size());
    std::string text = start;
    if (hasTypes) {
        std::snprintf(start, sizeof(start), "%-7s  ", item.type->name);
        text += start;
    }
    const std::string indent(text.size(), ' ');
    text += Row(item.payload.substr(0, bytesInRow));
    for (std::size_t i = bytesInRow; i < item.payload.size(); i += bytesInRow) {
        text += "\n" + indent + Row(item.payload.substr(i, bytesInRow));
    }
    if (item.differs) text += "  read as " + Printable(item.value);
    text.erase(text.find_last_not_of(' ') + 1);
    return text + "\n";
}

}  // namespace

bool Decoded::Differs() const {
    return std::any_of(items.begin(), items.end(), [](const Item& item) { return item.differs; });
}

Decoded Decode(const std::string& bytes, const TypeList& types) {
    TqBuffer in = ToBuffer(bytes);
    Decoded decoded;
    while (in.readPosition < in.length) {
        const unsigned int offset = in.readPosition;
        TqBuffer payload;
        if (!TqRead(in, payload)) {
            decoded.offset = offset;
            decoded.problem = Problem(in);
            return decoded;
        }
        const ItemType* type = TypeAt(types, decoded.items.size());
        decoded.items.push_back(ReadItem(in, offset, type, payload));
    }
    CheckEnd(types, decoded, in.length);
    return decoded;
}

std::string EncodeItem(const std::string& text, const ItemType* type) {
    static const ItemType* const string = FindType("string");
    if (type == nullptr) type = string;
    TqBuffer out;
    if (!type->encode(text, out)) {
        throw NotEncoded("\"" + Printable(text) + "\" is no " + type->name);
    }
    const unsigned int length = out.length - lengthDigits;
    if (length > longestPayload) {
        throw NotEncoded(std::to_string(length) + " bytes; an item holds up to " +
                         std::to_string(longestPayload));
    }
    return BytesOf(out);
}

std::string EncodeLines(const std::string& text, const TypeList& types) {
    std::string bytes;
    std::size_t number = 0;
    for (std::size_t start = 0; start < text.size(); ++number) {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        try {
            bytes += EncodeItem(text.substr(start, end - start), TypeAt(types, number));
        } catch (const NotEncoded& problem) {
            throw NotEncoded("line " + std::to_string(number + 1) + ": " + problem.what());
        }
        start = end + 1;
    }
    return bytes;
}

std::string ToTable(const Decoded& decoded) {
    const bool hasTypes = !decoded.items.empty() && decoded.items[0].type != nullptr;
    char heading[96];
    std::snprintf(heading, sizeof(heading), "  offset  length  %s%-47s  text\n",
                  hasTypes ? "type     " : "", "hex");
    std::string text = heading;
    for (const Item& item : decoded.items) text += Table(item, hasTypes);
    return text;
}
