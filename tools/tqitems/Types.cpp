#include "Types.h"

#include <cstring>

#include "TqBoolean.h"
#include "TqCounter.h"
#include "TqFloat.h"
#include "TqNumber.h"
#include "TqParse.h"
#include "TqRead.h"
#include "TqString.h"
#include "TqText.h"

namespace {

template <class Value>
bool EncodeParsed(const std::string& text, TqBuffer& out) {
    Value value;
    if (std::strlen(text.c_str()) != text.size() || !TqParse(text.c_str(), value)) return false;
    value.ToBuffer(out);
    return true;
}

// The bytes as they are: a string's item differs from a buffer's in nothing, and a string would end
// its characters at a NUL.
bool EncodeBytes(const std::string& bytes, TqBuffer& out) {
    ToBuffer(bytes).ToBuffer(out);
    return true;
}

bool EncodeHex(const std::string& text, TqBuffer& out) {
    std::string bytes;
    return FromHex(text, bytes) && EncodeBytes(bytes, out);
}

template <class Value>
std::string ReadText(TqBuffer& in) {
    Value value;
    value.FromBuffer(in);
    return TqText(value).data;
}

template <class Value>
void Rewrite(TqBuffer& in, TqBuffer& out) {
    Value value;
    value.FromBuffer(in);
    value.ToBuffer(out);
}

const ItemType types[] = {
    {"string", EncodeBytes, ReadText<TqString>, Rewrite<TqString>},
    {"number", EncodeParsed<TqNumber>, ReadText<TqNumber>, Rewrite<TqNumber>},
    {"counter", EncodeParsed<TqCounter>, ReadText<TqCounter>, Rewrite<TqCounter>},
    {"boolean", EncodeParsed<TqBoolean>, ReadText<TqBoolean>, Rewrite<TqBoolean>},
    {"float", EncodeParsed<TqFloat>, ReadText<TqFloat>, Rewrite<TqFloat>},
    {"buffer", EncodeHex, ReadText<TqBuffer>, Rewrite<TqBuffer>},
};

const char hexDigits[] = "0123456789abcdef";

// -1 when it is none.
int DigitValue(char digit) {
    if (digit >= '0' && digit <= '9') return digit - '0';
    const char lower = static_cast<char>(digit | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

}  // namespace

const ItemType* FindType(const std::string& name) {
    for (const ItemType& type : types) {
        if (name == type.name) return &type;
    }
    return nullptr;
}

std::string TypeNames() {
    std::string names;
    for (const ItemType& type : types)
        names += (names.empty() ? "" : ", ") + std::string(type.name);
    return names;
}

TqBuffer ToBuffer(const std::string& bytes) {
    return TqBuffer(reinterpret_cast<const unsigned char*>(bytes.data()),
                    static_cast<unsigned int>(bytes.size()));
}

std::string BytesOf(const TqBuffer& buffer) {
    return std::string(reinterpret_cast<const char*>(buffer.data), buffer.length);
}

std::string ToHex(const std::string& bytes, const char* separator) {
    std::string text;
    for (const char c : bytes) {
        const unsigned char byte = static_cast<unsigned char>(c);
        if (!text.empty()) text += separator;
        text += hexDigits[byte >> 4];
        text += hexDigits[byte & 15];
    }
    return text;
}

bool FromHex(const std::string& text, std::string& bytes) {
    bytes.clear();
    for (std::size_t i = 0; i < text.size(); i += 2) {
        while (i < text.size() && text[i] == ' ') ++i;
        if (i == text.size()) break;
        const int high = DigitValue(text[i]);
        const int low = i + 1 < text.size() ? DigitValue(text[i + 1]) : -1;
        if (high < 0 || low < 0) {
            bytes.clear();
            return false;
        }
        bytes += static_cast<char>(high << 4 | low);
    }
    return true;
}
