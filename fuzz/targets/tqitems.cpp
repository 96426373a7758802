// What tqitems makes of a buffer, of lines and of JSON.

#include "../../tools/tqitems/Json.h"
#include "../Fuzz.h"
#include "../Values.h"

namespace Tqitems {

TypeList AnyTypes(Input& input) {
    static const char* const names[] = {"string",  "number", "counter",
                                        "boolean", "float",  "buffer"};
    TypeList types(input.Below(4));
    for (const ItemType*& type : types) type = FindType(names[input.Below(6)]);
    return types;
}

// Whether five digits and as many bytes stand there.
bool IsItemAt(const std::string& bytes, std::size_t at) {
    for (std::size_t i = at; i < at + 5; ++i) {
        if (i >= bytes.size() || !IsDigit(bytes[i])) return false;
    }
    return ItemAt(bytes, at).isWhole;
}

// The bytes that such JSON says, or none and false.
bool IsEncoded(const std::string& json, std::string& bytes) {
    try {
        bytes = EncodeJson(json);
        return true;
    } catch (const NotEncoded& problem) {
        MUST(problem.what()[0] != '\0');
        return false;
    }
}

// Without the digits of the bytes: what is left are the texts.
std::string WithoutHex(std::string json) {
    const std::string name = ", \"hex\": \"";
    for (std::size_t at = 0; (at = json.find(name, at)) != std::string::npos;) {
        json.erase(at, json.find('"', at + name.size()) + 1 - at);
    }
    return json;
}

bool IsAscii(const std::string& text) {
    for (const char c : text) {
        if (static_cast<unsigned char>(c) > 127) return false;
    }
    return true;
}

void CheckJson(const Decoded& decoded, const std::string& bytes) {
    const std::string json = ToJson(decoded);
    std::string again;
    MUST(IsEncoded(json, again) == decoded.problem.empty());
    MUST(!decoded.problem.empty() || again == bytes);
    bool areAscii = true;
    for (const Item& item : decoded.items) areAscii = areAscii && IsAscii(item.payload);
    if (!areAscii || !decoded.problem.empty()) return;
    MUST(IsEncoded(WithoutHex(json), again) && again == bytes);
    Tell(json);
}

void DecodeBytes(const std::string& bytes, const TypeList& types) {
    const Decoded decoded = Decode(bytes, types);
    std::size_t at = 0;
    std::size_t count = 0;
    for (; IsItemAt(bytes, at); ++count) {
        const PlainItem expected = ItemAt(bytes, at);
        MUST(count < decoded.items.size());
        const Item& item = decoded.items[count];
        MUST(item.offset == at && item.payload == expected.payload);
        MUST(item.type == (types.empty() ? nullptr : types[count % types.size()]));
        Tell(item.value);
        Tell(item.differs ? 1 : 0);
        at = expected.behind;
    }
    MUST(count == decoded.items.size());
    const bool isThrough = types.empty() || count % types.size() == 0;
    MUST(decoded.problem.empty() == (at == bytes.size() && isThrough));
    MUST(decoded.problem.empty() || decoded.offset == at);
    CheckJson(decoded, bytes);
    Tell(ToTable(decoded));
    Tell(decoded.problem);
}

// Items mostly, one behind the other.
void FuzzBytes(Input& input) {
    const TypeList types = AnyTypes(input);
    std::string bytes;
    for (unsigned int count = input.Below(6); count > 0; --count) {
        bytes += ItemOf(input.Bytes(40));
    }
    DecodeBytes(bytes + input.Rest(), types);
}

void FuzzLines(Input& input) {
    const TypeList types = AnyTypes(input);
    const std::string text = input.Rest();
    std::string bytes;
    try {
        bytes = EncodeLines(text, types);
    } catch (const NotEncoded& problem) {
        MUST(!types.empty());
        return Tell(problem.what());
    }
    Tell(bytes);
    const Decoded decoded = Decode(bytes, TypeList());
    MUST(decoded.problem.empty());
    std::string lines;
    for (const Item& item : decoded.items) lines += item.payload + "\n";
    if (!text.empty() && text.back() != '\n') lines.pop_back();
    MUST(!types.empty() || lines == text);
}

void FuzzJson(Input& input) {
    std::string bytes;
    if (IsEncoded(input.Rest(), bytes)) DecodeBytes(bytes, TypeList());
    Tell(bytes);
}

void Fuzz(Input& input) {
    void (*const kinds[])(Input&) = {FuzzBytes, FuzzLines, FuzzJson};
    kinds[input.Below(3)](input);
    // Values that read themselves report what is no value; texts of floats always do.
    TakeReports();
}

const Target target("tqitems", Fuzz);

}  // namespace Tqitems
