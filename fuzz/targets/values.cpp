// Values of every class read from arbitrary bytes at arbitrary positions.

#include "../Values.h"
#include "../Fuzz.h"
#include "TqBoolean.h"
#include "TqCounter.h"
#include "TqDateTime.h"
#include "TqFloat.h"
#include "TqNumber.h"
#include "TqRef.h"
#include "TqSnmpOid.h"

namespace Values {

/// A buffer whose bytes end where their block ends: a sanitizer sees a read behind them.
class TightBuffer : public TqBuffer {
public:
    explicit TightBuffer(const std::string& bytes) {
        length = SizeOf(bytes);
        // Any number but 64, which would mean the internal area.
        capacity = length == 64 ? 65 : length;
        data = static_cast<unsigned char*>(std::malloc(length));
        if (length != 0) std::memcpy(data, bytes.data(), length);
    }
};

// The text that the library's own string makes of a payload.
std::string TextOf(const PlainItem& item) {
    return item.payload.c_str();
}

// What is read is what is written, in a buffer where more follows.
template <class Value>
bool ComesBack(const Value& value) {
    TqBuffer buffer;
    value.ToBuffer(buffer);
    const unsigned int length = buffer.length;
    buffer.Append(reinterpret_cast<const unsigned char*>("x"), 1);
    Value read(value);
    read.FromBuffer(buffer);
    return read.Equals(&value) && buffer.readPosition == length;
}

void ReadString(TightBuffer& bytes, const PlainItem& item) {
    TqString string("before");
    string.FromBuffer(bytes);
    MUST(Counted(string) == Padded(item.payload, item.payload.size()));
    MUST(ComesBack(string));
    Tell(Counted(string));
}

void ReadBuffer(TightBuffer& bytes, const PlainItem& item) {
    TqBuffer buffer(BytesOf("before"), 6);
    buffer.FromBuffer(bytes);
    MUST(Counted(buffer) == item.payload && buffer.readPosition == 0);
    MUST(ComesBack(buffer));
    Tell(item.payload);
}

void ReadNumber(TightBuffer& bytes, const PlainItem& item) {
    TqNumber number(77);
    number.FromBuffer(bytes);
    MUST(number.value == NumberOf(TextOf(item)));
    MUST(ComesBack(number) || number.value == INT_MIN);
    Tell(static_cast<unsigned int>(number.value));
}

void ReadCounter(TightBuffer& bytes, const PlainItem& item) {
    TqCounter counter(77);
    counter.FromBuffer(bytes);
    const int number = NumberOf(TextOf(item));
    MUST(counter.count == static_cast<unsigned int>(number > 0 ? number : 0));
    MUST(ComesBack(counter));
    Tell(counter.count);
}

void ReadBoolean(TightBuffer& bytes, const PlainItem& item) {
    TqBoolean flag(1);
    flag.FromBuffer(bytes);
    MUST(flag.state == (NumberOf(TextOf(item)) > 0 ? 1 : 0));
    MUST(ComesBack(flag));
    Tell(static_cast<unsigned int>(flag.state));
}

void ReadFloat(TightBuffer& bytes, const PlainItem& item) {
    TqFloat number(77);
    number.FromBuffer(bytes);
    const float expected = static_cast<float>(std::strtod(TextOf(item).c_str(), nullptr));
    MUST(number.value == expected || (number.value != number.value && expected != expected));
    TqString text;
    number.ToString(text);
    // What comes back is the integer part: texts of fewer than eight characters are reported.
    TakeReports();
    Tell(Counted(text));
}

// These have no item: they report or do nothing, and move nothing.
unsigned int ReadNothing(TightBuffer& bytes, unsigned int kind) {
    const unsigned int position = bytes.readPosition;
    TqDateTime date;
    const tm before = date.time;
    TqSnmpOid oid("1.3");
    TqRef<TqBaseObject> handle;
    TqDataType* const values[] = {&date, &oid, &handle};
    values[kind % 3]->FromBuffer(bytes);
    MUST(bytes.readPosition == position && date.time.tm_sec == before.tm_sec);
    MUST(oid.count == 2 && handle.object == nullptr);
    return kind % 3 == 1 ? 0 : 1;
}

void Fuzz(Input& input) {
    unsigned int kinds[6];
    for (unsigned int& kind : kinds) kind = input.Byte();
    const unsigned int position = input.Number();
    const std::string content = input.Rest();
    TightBuffer bytes(content);
    bytes.readPosition = position;
    void (*const reads[])(TightBuffer&, const PlainItem&) = {ReadString,  ReadBuffer,  ReadNumber,
                                                             ReadCounter, ReadBoolean, ReadFloat};
    for (const unsigned int kind : kinds) {
        if (kind % 7 == 6) {
            MUST(ReadNothing(bytes, kind / 7) == TakeReports());
            continue;
        }
        const PlainItem item = ItemAt(content, bytes.readPosition);
        reads[kind % 7](bytes, item);
        MUST(bytes.readPosition == item.behind);
        MUST(TakeReports() == (item.isWhole || kind % 7 == 5 ? 0 : 1));
        Tell(bytes.readPosition);
    }
}

const Target target("values", Fuzz);

}  // namespace Values
