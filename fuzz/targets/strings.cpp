// Sequences of operations on strings, beside a model that keeps the counted characters, the
// capacity and where they lie.

#include "../Fuzz.h"
#include "../Values.h"

namespace Strings {

struct Model {
    std::string counted;
    unsigned int capacity = 32;
    bool isInside = true;

    std::string Text() const { return counted.c_str(); }

    void Construct(const std::string& text) {
        isInside = text.size() < 32;
        capacity = isInside ? 32 : SizeOf(text) + 1;
        counted = text;
    }
    void Set(const std::string& text, std::size_t count) {
        isInside = count <= 32;
        capacity = isInside ? 32 : static_cast<unsigned int>(count) + 1;
        counted = Padded(text, count);
    }
    void Assign(const std::string& text, std::size_t count) {
        if (count >= capacity) {
            isInside = false;
            capacity = static_cast<unsigned int>(count) + 1;
        }
        counted = Padded(text, count);
    }
    void Append(const std::string& text) {
        const unsigned int length = SizeOf(counted) + SizeOf(text);
        if (length >= capacity) {
            if (isInside) counted = Padded(counted, counted.size());
            isInside = false;
            capacity = (length / 16 + 1) * 16;
        }
        counted += text;
    }
    void TrimFront() {
        std::size_t blanks = 0;
        while (blanks < counted.size() && IsBlank(counted[blanks])) ++blanks;
        if (blanks > 0) Set(counted.substr(blanks), counted.size() - blanks);
    }
    void TrimBack() {
        for (std::size_t i = counted.size(); i > 0 && IsBlank(counted[i - 1]); --i) {
            counted[i - 1] = '\0';
        }
    }
};

struct Modelled {
    TqString string;
    Model model;
};

bool IsAsModelled(const TqString& string, const Model& model) {
    return string.length == model.counted.size() && string.capacity == model.capacity &&
           (string.data == string.internalData) == model.isInside &&
           std::memcmp(string.data, model.counted.c_str(), string.length + 1) == 0;
}

void Assign(Modelled& its, Input& input) {
    switch (input.Below(4)) {
        case 0:
            its.string = static_cast<const char*>(nullptr);
            its.model = Model();
            break;
        case 1: {
            // What lies in the string itself.
            const std::string text = its.model.Text();
            const unsigned int start = text.empty() ? 0 : input.Below(SizeOf(text) % 255 + 1);
            its.string = its.string.data + start;
            its.model.Assign(text.substr(start), text.size() - start);
            break;
        }
        default: {
            const std::string text = input.Text(120);
            its.string.FromString(text.c_str());
            its.model.Assign(text, text.size());
        }
    }
}

void Set(Modelled& its, Input& input) {
    const std::string bytes = input.Bytes(100);
    // A count beyond the bytes is for a text with a NUL behind it.
    const unsigned int count = input.Below(120);
    its.string.SetValue(bytes.c_str(), count);
    its.model.Set(bytes, count);
}

void AppendFloat(Modelled& its, Input& input) {
    const unsigned int bits = input.Number();
    float number;
    std::memcpy(&number, &bits, sizeof number);
    // A NaN's sign is shown, and which one a conversion leaves is the processor's choice.
    if (number != number) number = 0;
    const unsigned char precision = static_cast<unsigned char>(input.Byte());
    char text[512];
    std::snprintf(text, sizeof text, "%.*f", precision, static_cast<double>(number));
    its.string.AppendFloat(number, precision);
    const std::string kept = std::string(text).substr(0, 127);
    for (const char c : kept) its.model.Append(std::string(1, c));
    MUST(TakeReports() == (precision > 99 ? 1 : 0));
}

void Append(Modelled& its, Input& input) {
    switch (input.Below(7)) {
        case 0: {
            const char c = static_cast<char>(input.Byte());
            its.string.AppendChar(c);
            its.model.Append(std::string(1, c));
            break;
        }
        case 1: {
            const unsigned char c = static_cast<unsigned char>(input.Byte());
            its.string.AppendByte(c);
            its.model.Append(std::string(1, static_cast<char>(c)));
            break;
        }
        case 2: {
            const std::string text = input.Text(80);
            its.string += text.c_str();
            its.model.Append(text);
            break;
        }
        case 3: {
            const std::string text = its.model.Text();
            its.string += its.string.data;
            its.model.Append(text);
            break;
        }
        case 4: {
            const unsigned int number = input.Number();
            its.string.AppendCounter(number);
            its.model.Append(std::to_string(number));
            break;
        }
        case 5: {
            const int number = static_cast<int>(input.Number());
            its.string.AppendNumber(number);
            if (number < 0) its.model.Append("-");
            its.model.Append(NumberText(number).substr(number < 0 ? 1u : 0u));
            break;
        }
        default:
            AppendFloat(its, input);
    }
}

void Empty(Modelled& its, Input& input) {
    switch (input.Below(3)) {
        case 0:
            its.string.Clear();
            its.model = Model();
            break;
        case 1:
            its.string.Free();
            its.model = Model();
            break;
        default:
            its.string.Empty();
            its.model.counted.clear();
    }
}

// For texts inside the object only.
void Trim(Modelled& its, Input& input) {
    if (!its.model.isInside) return;
    if (input.Below(2) == 0) {
        its.string.TrimLeadingWS();
        its.model.TrimFront();
    } else {
        its.string.TrimTrailingWS();
        its.model.TrimBack();
    }
}

void Copy(const Modelled& its, Input& input) {
    Model model;
    const TqString copy(its.string);
    model.Construct(Padded(its.model.counted, its.model.counted.size()));
    MUST(IsAsModelled(copy, model));

    const std::string text = input.Text(80);
    const TqString sum = its.string + text.c_str();
    model.Append(text);
    MUST(IsAsModelled(sum, model));

    const std::string bytes = input.Bytes(50);
    const TqString made(bytes.c_str());
    model.Construct(bytes.c_str());
    MUST(IsAsModelled(made, model));
    const TqString counted(bytes.c_str(), SizeOf(bytes));
    model.Set(bytes, bytes.size());
    MUST(IsAsModelled(counted, model));
}

void Compare(const Modelled& one, const Modelled& other) {
    const std::string left = one.model.Text();
    const std::string right = other.model.Text();
    MUST(SignOf(one.string.Compare(other.string)) == SignOf(left.compare(right)));
    const bool areEqual = one.model.counted.size() == other.model.counted.size() && left == right;
    MUST(one.string.Equals(&other.string) == areEqual);
    MUST(one.string.DoesNotEqual(&other.string) == !areEqual);
    MUST(!one.string.Equals(nullptr));
    const int order = SignOf(Lower(left).compare(Lower(right)));
    MUST(TqString::StringICompare(left.c_str(), right.c_str()) == order);
    MUST(one.string.Length() == one.model.counted.size());
    MUST(one.string.IsEmpty() == one.model.counted.empty());
    MUST(one.string.IsNotEmpty() == !one.model.counted.empty());
}

// Through a buffer and back, into the other one.
void Encode(const Modelled& from, Modelled& to) {
    TqBuffer buffer;
    from.string.ToBuffer(buffer);
    MUST(Counted(buffer) == ItemOf(from.model.counted));
    to.string.FromBuffer(buffer);
    to.model.Set(from.model.counted, from.model.counted.size());
    MUST(buffer.readPosition == buffer.length);
}

void Step(Modelled& its, Modelled& other, Input& input) {
    switch (input.Below(9)) {
        case 0:
            return Assign(its, input);
        case 1:
            return Set(its, input);
        case 2:
        case 3:
            return Append(its, input);
        case 4:
            return Empty(its, input);
        case 5:
            return Trim(its, input);
        case 6:
            Copy(its, input);
            return Compare(its, other);
        case 7:
            return Encode(other, its);
        default:
            its.string.Assignment(other.string);
            its.model.Assign(other.model.counted, other.model.counted.size());
    }
}

void Fuzz(Input& input) {
    Modelled pair[2];
    for (int steps = 0; steps < 64 && !input.IsEmpty(); ++steps) {
        const unsigned int which = input.Below(2);
        // Strings are for short texts: what doubles itself starts anew.
        if (pair[which].model.counted.size() > 4000) {
            pair[which].string.Clear();
            pair[which].model = Model();
        }
        Step(pair[which], pair[1 - which], input);
        MUST(IsAsModelled(pair[0].string, pair[0].model));
        MUST(IsAsModelled(pair[1].string, pair[1].model));
        MUST(TakeReports() == 0);
        Tell(pair[which].string.capacity);
    }
    Tell(pair[0].model.counted);
    Tell(pair[1].model.counted);
}

const Target target("strings", Fuzz);

}  // namespace Strings
