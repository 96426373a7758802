#include "Json.h"

#include <algorithm>
#include <cstdio>

namespace {

// Writing.

std::string Quoted(const std::string& text) {
    std::string quoted = "\"";
    for (const char c : text) {
        const unsigned char byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || byte == 0x7F) {
            char escape[8];
            std::snprintf(escape, sizeof(escape), "\\u%04x", static_cast<unsigned int>(byte));
            quoted += escape;
            continue;
        }
        if (c == '"' || c == '\\') quoted += '\\';
        quoted += c;
    }
    return quoted + '"';
}

bool IsAscii(const std::string& text) {
    for (const char c : text) {
        if ((c & 0x80) != 0) return false;
    }
    return true;
}

std::string ToJson(const Item& item) {
    std::string text = "{\"offset\": " + std::to_string(item.offset) +
                       ", \"length\": " + std::to_string(item.payload.size());
    if (item.type != nullptr) {
        text += ", \"type\": " + Quoted(item.type->name);
        if (IsAscii(item.value)) text += ", \"value\": " + Quoted(item.value);
        if (item.differs) text += ", \"differs\": true";
    }
    if (IsAscii(item.payload)) text += ", \"text\": " + Quoted(item.payload);
    return text + ", \"hex\": \"" + ToHex(item.payload) + "\"}";
}

// Reading.

struct Value {
    enum class Kind { word, text, array, object };
    Kind kind = Kind::word;
    std::string text;                // of a word, such as 12 or true, and of a text
    std::vector<std::string> names;  // of an object's elements
    std::vector<Value> elements;

    const Value* Find(const std::string& name) const {
        const auto found = std::find(names.begin(), names.end(), name);
        return found == names.end() ? nullptr : &elements[std::size_t(found - names.begin())];
    }
};

class Reader {
public:
    explicit Reader(const std::string& text) : input(text) {}

    Value Document() {
        Value value = Any(0);
        SkipBlanks();
        if (position != input.size()) Fail("something follows the end");
        return value;
    }

private:
    static const int deepest = 16;

    [[noreturn]] void Fail(const std::string& problem) const {
        throw NotEncoded("JSON, byte " + std::to_string(position) + ": " + problem);
    }

    void SkipBlanks() {
        position = std::min(input.find_first_not_of(" \t\r\n", position), input.size());
    }

    char Next() {
        SkipBlanks();
        return position < input.size() ? input[position] : '\0';
    }

    // Whether that is next; it is taken then.
    bool Take(char c) {
        if (Next() != c) return false;
        ++position;
        return true;
    }

    void Expect(char c) {
        if (!Take(c)) Fail(std::string("'") + c + "' is missing");
    }

    Value Any(int depth) {
        if (depth > deepest) Fail("too many levels");
        Value value;
        if (Take('{')) {
            value.kind = Value::Kind::object;
            Members(value, depth);
        } else if (Take('[')) {
            value.kind = Value::Kind::array;
            Elements(value, depth);
        } else if (Next() == '"') {
            value.kind = Value::Kind::text;
            value.text = Text();
        } else {
            value.text = Word();
        }
        return value;
    }

    void Members(Value& object, int depth) {
        if (Take('}')) return;
        do {
            if (Next() != '"') Fail("the name of a member is missing");
            object.names.push_back(Text());
            Expect(':');
            object.elements.push_back(Any(depth + 1));
        } while (Take(','));
        Expect('}');
    }

    void Elements(Value& array, int depth) {
        if (Take(']')) return;
        do {
            array.elements.push_back(Any(depth + 1));
        } while (Take(','));
        Expect(']');
    }

    // A number, true, false or null.
    std::string Word() {
        const char characters[] =
            "+-.0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
        const std::size_t end =
            std::min(input.find_first_not_of(characters, position), input.size());
        if (end == position) Fail("a value is missing");
        std::string word = input.substr(position, end - position);
        position = end;
        return word;
    }

    std::string Text() {
        std::string text;
        Expect('"');
        while (position < input.size() && input[position] != '"') {
            const char c = input[position++];
            if (static_cast<unsigned char>(c) < 0x20) Fail("a control character in a text");
            if (c == '\\') {
                AppendEscaped(text);
            } else {
                text += c;
            }
        }
        if (position == input.size()) Fail("a text does not end");
        ++position;
        return text;
    }

    void AppendEscaped(std::string& text) {
        static const char letters[] = "\"\\/bfnrt";
        static const char meanings[] = "\"\\/\b\f\n\r\t";
        const char letter = position < input.size() ? input[position++] : '\0';
        if (letter == 'u') {
            AppendUtf8(Point(), text);
            return;
        }
        const std::size_t index = std::string(letters).find(letter);
        if (index == std::string::npos) Fail("an unknown escape");
        text += meanings[index];
    }

    unsigned int FourDigits() {
        std::string bytes;
        if (!FromHex(input.substr(position, 4), bytes) || bytes.size() != 2) {
            Fail("\\u takes four digits");
        }
        position += 4;
        return static_cast<unsigned int>(static_cast<unsigned char>(bytes[0]) << 8 |
                                         static_cast<unsigned char>(bytes[1]));
    }

    // Characters above four digits come as two escapes.
    unsigned int Point() {
        const unsigned int first = FourDigits();
        if (first < 0xD800 || first > 0xDFFF) return first;
        if (first > 0xDBFF || input.compare(position, 2, "\\u") != 0) Fail("half a character");
        position += 2;
        const unsigned int second = FourDigits();
        if (second < 0xDC00 || second > 0xDFFF) Fail("half a character");
        return 0x10000 + ((first & 0x3FF) << 10 | (second & 0x3FF));
    }

    static void AppendUtf8(unsigned int point, std::string& text) {
        if (point < 0x80) {
            text += static_cast<char>(point);
            return;
        }
        const unsigned int more = point < 0x800 ? 1 : point < 0x10000 ? 2 : 3;
        const unsigned int marks[] = {0, 0xC0, 0xE0, 0xF0};
        text += static_cast<char>(marks[more] | point >> (6 * more));
        for (unsigned int i = more; i > 0; --i) {
            text += static_cast<char>(0x80 | (point >> (6 * (i - 1)) & 0x3F));
        }
    }

    const std::string& input;
    std::size_t position = 0;
};

const std::string& TextOf(const Value& value, const char* name) {
    if (value.kind != Value::Kind::text)
        throw NotEncoded(std::string("\"") + name + "\" is no text");
    return value.text;
}

std::string EncodeHexOf(const Value& hex) {
    static const ItemType* const buffer = FindType("buffer");
    return EncodeItem(TextOf(hex, "hex"), buffer);
}

std::string EncodeValueOf(const Value& item, const Value& value) {
    const Value* type = item.Find("type");
    const std::string name = type == nullptr ? "string" : TextOf(*type, "type");
    const ItemType* found = FindType(name);
    if (found == nullptr) throw NotEncoded("\"" + name + "\" is no type");
    if (value.kind == Value::Kind::array || value.kind == Value::Kind::object) {
        throw NotEncoded("\"value\" is neither text nor number");
    }
    return EncodeItem(value.text, found);
}

std::string Encode(const Value& item) {
    if (item.kind != Value::Kind::object) throw NotEncoded("is no object");
    if (const Value* hex = item.Find("hex")) return EncodeHexOf(*hex);
    if (const Value* text = item.Find("text")) return EncodeItem(TextOf(*text, "text"), nullptr);
    if (const Value* value = item.Find("value")) return EncodeValueOf(item, *value);
    throw NotEncoded("has neither \"hex\" nor \"text\" nor \"value\"");
}

// What was corrupt is not in the items, so the buffer cannot be made of them.
const Value& ItemsOf(const Value& document) {
    if (document.kind == Value::Kind::array) return document;
    const Value* items = document.Find("items");
    if (items == nullptr || items->kind != Value::Kind::array)
        throw NotEncoded("JSON: no \"items\"");
    if (document.Find("corrupt") != nullptr) throw NotEncoded("JSON: the buffer was corrupt");
    return *items;
}

}  // namespace

std::string ToJson(const Decoded& decoded) {
    std::string text = "{\"items\": [";
    const char* separator = "\n  ";
    for (const Item& item : decoded.items) {
        text += separator + ToJson(item);
        separator = ",\n  ";
    }
    text += decoded.items.empty() ? "]" : "\n]";
    if (!decoded.problem.empty()) {
        text += ", \"corrupt\": {\"offset\": " + std::to_string(decoded.offset) +
                ", \"problem\": " + Quoted(decoded.problem) + "}";
    }
    return text + "}\n";
}

std::string EncodeJson(const std::string& text) {
    const Value document = Reader(text).Document();
    std::string bytes;
    std::size_t number = 0;
    for (const Value& item : ItemsOf(document).elements) {
        ++number;
        try {
            bytes += Encode(item);
        } catch (const NotEncoded& problem) {
            throw NotEncoded("item " + std::to_string(number) + ": " + problem.what());
        }
    }
    return bytes;
}
